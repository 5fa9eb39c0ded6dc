#!/usr/bin/env bash
# Configures and builds a preset in build/PRESET: scripts/build.sh PRESET [TARGET...]. Says how far it is, and nothing
# else unless something fails; uses ccache when it is there.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=$1
shift
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
fi

# Of Ninja's lines "[STEP/STEPS] WHAT" one for each tenth of the way; all of its other lines.
progress() {
    local line tenth told=0
    while IFS= read -r line; do
        if [[ $line =~ ^\[([0-9]+)/([0-9]+)\]\  ]]; then
            tenth=$((10 * BASH_REMATCH[1] / BASH_REMATCH[2]))
            if ((tenth > told && BASH_REMATCH[2] >= 20)); then
                told=$tenth
                echo "build: $preset, ${tenth}0 %"
            fi
        elif [[ $line != "ninja: no work to do." ]]; then
            printf '%s\n' "$line"
        fi
    done
}

echo "build: $preset"
mkdir -p "build/$preset"
if ! cmake --preset "$preset" >"build/$preset/configure.log" 2>&1; then
    cat "build/$preset/configure.log" >&2
    exit 1
fi
cmake --build --preset "$preset" ${1:+--target "$@"} | progress
