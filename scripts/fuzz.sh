#!/usr/bin/env bash
# Runs every fuzzer for so many seconds: scripts/fuzz.sh [SECONDS], 10 when not said. Each fuzz/NAME.cpp is a fuzzer,
# fuzz/seeds/NAME/ holds its first inputs. What a run learns stays in build/fuzz/corpus/NAME, an input that fails in
# build/fuzz/.
set -euo pipefail
cd "$(dirname "$0")/.."

if ! compgen -G 'fuzz/*.cpp' >/dev/null; then
    echo "fuzz: no fuzzers"
    exit 0
fi
scripts/build.sh fuzz fuzzers
for source in fuzz/*.cpp; do
    name=$(basename "$source" .cpp)
    inputs=("build/fuzz/corpus/$name")
    mkdir -p "${inputs[0]}"
    [[ ! -d fuzz/seeds/$name ]] || inputs+=("fuzz/seeds/$name")
    echo "fuzz: $name"
    "build/fuzz/bin/fuzz_$name" -max_total_time="${1:-10}" -timeout=10 -rss_limit_mb=2048 -verbosity=0 -print_funcs=0 \
        -print_final_stats=1 -artifact_prefix=build/fuzz/ "${inputs[@]}" </dev/null
done
