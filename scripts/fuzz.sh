#!/usr/bin/env bash
# Runs every fuzzer, or the named ones, for so many seconds each: scripts/fuzz.sh [SECONDS [NAME...]], 10 when not said.
# Each fuzz/NAME.cpp is a fuzzer. First it must pass all inputs of fuzz/corpus/NAME/, which stays as it is: what a run
# learns goes to build/fuzz/corpus/NAME, where the next run begins, an input that fails to build/fuzz/. That input is
# run again by build/fuzz/bin/fuzz_NAME INPUT, and kept in fuzz/corpus/NAME/ when its fault is mended.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-10}
shift || true
[[ $# -gt 0 ]] || set -- $(basename -s .cpp fuzz/*.cpp)
scripts/build.sh fuzz "${@/#/fuzz_}"

# Files that the fuzzers write: in memory where possible, and gone even when a fuzzer fails.
TMPDIR=$(mktemp -d "$([[ -w /dev/shm ]] && echo /dev/shm || echo "${TMPDIR:-/tmp}")/kesta-fuzz-XXXXXX")
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT

# Inputs of full length at once; standard output and error are the program's, and of no interest.
options=(-timeout=10 -rss_limit_mb=2048 -max_len=8192 -len_control=0 -entropic=0 -close_fd_mask=3
         -verbosity=0 -print_funcs=0 -artifact_prefix=build/fuzz/)
for name in "$@"; do
    learnt=build/fuzz/corpus/$name
    log=build/fuzz/$name.txt
    mkdir -p "$learnt"
    fuzzer=("build/fuzz/bin/fuzz_$name" "${options[@]}")
    if ! "${fuzzer[@]}" -runs=0 "fuzz/corpus/$name" </dev/null >"$log" 2>&1 ||
        ! "${fuzzer[@]}" -max_total_time="$seconds" -print_final_stats=1 "$learnt" "fuzz/corpus/$name" \
            </dev/null >"$log" 2>&1; then
        tail -n 100 "$log" >&2
        echo "fuzz: $name: failed" >&2
        exit 1
    fi
    echo "fuzz: $name: $(awk '/number_of_executed_units/ {print $2}' "$log") inputs passed"
done
