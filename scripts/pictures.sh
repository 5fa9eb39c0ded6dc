#!/usr/bin/env bash
# Draws the documentation's pictures, docs/session.svg and docs/timeline.svg, from what the program really does with
# examples/sample.ale.
# Usage: pictures.sh [--check] [PROGRAM]
# PROGRAM is build/release/bin/kesta when it is left out. --check changes nothing and fails when a picture would change.
set -euo pipefail
cd "$(dirname "$0")/.."

check=false
if [[ ${1:-} == --check ]]; then
    check=true
    shift
fi
program=$(realpath "${1:-build/release/bin/kesta}")
docs=$PWD/docs
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp examples/sample.ale "$work"
cd "$work"
export LC_ALL=C.UTF-8

session() {
    local command
    while IFS= read -r command; do
        printf '$ %s\n' "$command"
        kesta() { "$program" "$@"; }
        eval "$command" 2>&1
    done <<'END'
kesta import sample.ale -o low-water.log
kesta show low-water.log --columns Name,Reel,"Start time",Notes --rows 3-6
kesta find low-water.log Notes=circle -o selects.log
kesta tag low-water.log --where Notes=circle
kesta timeline low-water.log --text --width 96
END
}

# A terminal with its own background, so that it looks alike on light and dark pages. Each line is as wide as its
# characters, whatever the font.
as_terminal() {
    LC_ALL=C awk '
        function columns(text) { gsub(/[\200-\277]/, "", text); return length(text) }  # of UTF-8
        function escaped(text) { gsub(/&/, "\\&amp;", text); gsub(/</, "\\&lt;", text); gsub(/>/, "\\&gt;", text); return text }
        { lines[NR] = $0; if (columns($0) > widest) widest = columns($0) }
        END {
            wide = 8.4; high = 19; margin = 20
            width = int(widest * wide + 2 * margin + 0.5)
            height = NR * high + 2 * margin
            printf "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%d\" height=\"%d\" viewBox=\"0 0 %d %d\" role=\"img\" aria-label=\"A session with kesta in a terminal\">\n", width, height, width, height
            print " <style>text{font:14px ui-monospace,SFMono-Regular,Menlo,Consolas,\"DejaVu Sans Mono\",monospace;fill:#c9d1d9;white-space:pre}.command{fill:#7ee787}</style>"
            printf " <rect width=\"%d\" height=\"%d\" rx=\"8\" fill=\"#161b22\"/>\n", width, height
            for (i = 1; i <= NR; ++i) {
                if (lines[i] == "") continue
                printf " <text x=\"%d\" y=\"%d\" textLength=\"%.1f\" xml:space=\"preserve\"%s>%s</text>\n", margin, margin + i * high - 5,
                    columns(lines[i]) * wide, lines[i] ~ /^\$ / ? " class=\"command\"" : "", escaped(lines[i])
            }
            print "</svg>"
        }'
}

session >session.txt
as_terminal <session.txt >session.svg
"$program" timeline low-water.log -o timeline.svg
for picture in session.svg timeline.svg; do
    if $check; then
        diff "$docs/$picture" "$picture" >/dev/null || { echo "docs/$picture is not what the program does now; run scripts/pictures.sh" >&2; exit 1; }
    else
        cat "$picture" >"$docs/$picture"
    fi
done
