#!/usr/bin/env bash
# Asks each shell what it completes after the program's name: tests/completion/cases in bash, zsh and fish, with the program and
# the completions of a build: scripts/check-completions.sh [PRESET], release when not said. A shell that is not there is
# left out, unless this is a machine for checks (CI is set).
set -euo pipefail
cd "$(dirname "$0")/.."

build=$PWD/build/${1:-release}
tests=$PWD/tests/completion
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export PATH=$build/bin:$PATH HOME=$work
mkdir "$work/logs"
cd "$work/logs"
kesta import "$tests/columns.csv" -o "day 1.log" >/dev/null

grep '^kesta' "$tests/cases" >"$work/expected"
sed 's/ =>.*//' "$work/expected" >"$work/cases"
check() {
    local shell=$1
    shift
    if [[ -z ${CI:-} ]] && ! command -v "$shell" >/dev/null; then
        echo "check-completions: no $shell here"
        return
    fi
    timeout 60 "$shell" "$@" "$build/manual/kesta.$shell" <"$work/cases" >"$work/$shell"
    diff "$work/expected" "$work/$shell" || {
        echo "check-completions: $shell does not offer what it should" >&2
        exit 1
    }
    echo "check-completions: $shell: $(wc -l <"$work/cases") lines completed"
}
check bash --norc "$tests/bash.sh"
check zsh --no-rcs "$tests/zsh.zsh"
check fish --no-config "$tests/fish.fish"
