#!/usr/bin/env bash
# Makes sure that README.md and the documents in docs/ say what is so:
#  - each ```console block shows what its "$ " lines print, standard error included. The blocks of a document are one
#    session in a temporary folder with examples/sample.ale;
#  - each ```cpp block stands, as it is or indented, in the last examples/*.cpp that the document names before it;
#  - links to files lead somewhere;
#  - README.md's table of commands has each command of the program, and no other.
# Usage: check-examples.sh [--update] [PROGRAM]
# PROGRAM is build/release/bin/kesta when it is left out. --update writes what the commands print into the documents.
set -euo pipefail
cd "$(dirname "$0")/.."

update=false
if [[ ${1:-} == --update ]]; then
    update=true
    shift
fi
program=$(realpath "${1:-build/release/bin/kesta}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

fail() {
    echo "check-examples: $*" >&2
    failures=$((failures + 1))
}

# The console blocks of a document, with their fences.
blocks() { awk '/^```console$/ {inside = 1} inside {print} inside && /^```$/ {inside = 0}' "$1"; }

# Makes a script of them that prints the blocks as they ought to be. Each command sees the exit code of the one before.
as_script() {
    awk -v quote="'" '
        function show(text) { gsub(quote, quote "\\" quote quote, text); print "printf \"%s\\n\" " quote text quote }
        /^```/ { show($0); next }
        /^\$ / { show($0); print "(exit $status)"; print substr($0, 3); print "status=$?" }'
}

run_session() {
    local folder=$1
    mkdir "$folder"
    cp examples/sample.ale "$folder"
    mkdir -p "$work/bin"
    ln -sf "$program" "$work/bin/kesta"
    (
        cd "$folder"
        env -i PATH="$work/bin:$PATH" HOME="$folder" LC_ALL=C.UTF-8 status=0 \
            timeout 60 bash --norc "$folder.sh" </dev/null 2>&1
    )
}

# Puts the blocks of the second file into the places of those of the first.
with_blocks() {
    awk -v real="$2" '
        /^```console$/ { while ((getline line < real) > 0) { print line; if (line == "```") break }; inside = 1 }
        !inside { print }
        inside && /^```$/ { inside = 0 }' "$1"
}

check_sessions() {
    local document=$1 name=${1//\//-}
    blocks "$document" >"$work/$name.shown"
    [[ -s $work/$name.shown ]] || return 0
    as_script <"$work/$name.shown" >"$work/$name.sh"
    # Comma-separated tables end their lines with CR LF, which nobody sees.
    run_session "$work/$name" | tr -d '\r' >"$work/$name.real" || fail "the session of $document ended early"
    if $update; then
        with_blocks "$document" "$work/$name.real" >"$work/$name.new"
        cat "$work/$name.new" >"$document"
    else
        diff --label "$document" --label "what is printed" -u "$work/$name.shown" "$work/$name.real" ||
            fail "$document shows what is not printed"
    fi
}

stands_in() {
    local indented
    indented=$(awk '{print (/./ ? "    " : "") $0}' <<<"$1")
    [[ $(<"$2") == *"$1"* || $(<"$2") == *"$indented"* ]]
}

check_code() {
    local document=$1 line block="" source="" inside=false
    while IFS= read -r line; do
        if $inside && [[ $line == '```' ]]; then
            inside=false
            [[ -f $source ]] && stands_in "${block%$'\n'}" "$source" ||
                fail "$document: not in ${source:-any example}: ${block%%$'\n'*} ..."
        elif $inside; then
            block+=$line$'\n'
        elif [[ $line == '```cpp' ]]; then
            inside=true
            block=""
        elif [[ $line =~ .*(examples/[a-z_]+\.cpp) ]]; then
            source=${BASH_REMATCH[1]}
        fi
    done <"$document"
}

check_links() {
    local document=$1 target
    while IFS= read -r target; do
        [[ $target == *://* || -e $(dirname "$document")/$target ]] || fail "$document: no such file: $target"
    done < <(awk '/^```/ {code = !code} !code' "$document" | grep -o '](\([^)#]*\)' | sed 's/^](//' | grep . || true)
}

check_commands() {
    diff --label "README.md" --label "kesta --help" -u <(sed -n 's/^| `kesta \([a-z]*\).*/\1/p' README.md | sort) \
        <("$program" --help | awk '/^Subcommands:/ {inside = 1; next} /^$/ {inside = 0} inside {print $1}' | sort) ||
        fail "README.md's table of commands is not that of the program"
}

check_commands
for document in *.md docs/*.md; do
    check_sessions "$document"
    check_code "$document"
    check_links "$document"
done
[[ $failures -eq 0 ]]
