#!/usr/bin/env bash
# Builds tests/consumer against an installed kesta by way of CMake and of pkg-config, and runs it:
# scripts/check-consumer.sh [PREFIX LIBDIR]. Without them, against the kesta that the system has.
set -euo pipefail
cd "$(dirname "$0")/.."

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
if [[ $# -gt 0 ]]; then
    export CMAKE_PREFIX_PATH=$1 PKG_CONFIG_PATH=$2/pkgconfig LD_LIBRARY_PATH=$2
fi

cmake -S tests/consumer -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$work/build" -- --quiet
(cd "$work" && build/consumer)

# shellcheck disable=SC2046  # flags are words
g++ -std=c++17 -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror tests/consumer/main.cpp \
    -o "$work/by-pkg-config" $(pkg-config --cflags --libs kesta)
(cd "$work" && ./by-pkg-config)
