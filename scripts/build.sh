#!/usr/bin/env bash
# Configures and builds a preset in build/PRESET: scripts/build.sh PRESET [TARGET...]. Quiet unless something fails;
# uses ccache when it is there.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=$1
shift
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
fi
echo "build: $preset"
mkdir -p "build/$preset"
if ! cmake --preset "$preset" >"build/$preset/configure.log" 2>&1; then
    cat "build/$preset/configure.log" >&2
    exit 1
fi
cmake --build --preset "$preset" ${1:+--target "$@"} -- --quiet
