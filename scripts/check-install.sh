#!/usr/bin/env bash
# Installs the release build under a prefix, moves the prefix, and checks it from outside: the program runs, every header
# stands on its own, applications build with it by way of CMake and of pkg-config.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh release
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install build/release --prefix "$work/first" >/dev/null
mv "$work/first" "$work/moved"
prefix=$work/moved

"$prefix/bin/kesta" --help >/dev/null

# Operator new and delete, and what of the standard library was compiled against them, are each library's own business.
if nm --dynamic --defined-only "$prefix"/lib/lib*.so | grep -E ' [TVWu] _Z(n[wa]|d[la]|(T[ISTV]|Z?)(N|NK)?St)'; then
    echo "check-install: a library exports operator new or delete, or templates of the standard library" >&2
    exit 1
fi

warnings=(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
(cd "$prefix/include/kesta" && find . -name '*.h' -printf '#include "%P"\n') | while read -r include; do
    g++ -std=c++17 "${warnings[@]}" -fsyntax-only -I "$prefix/include/kesta" -x c++ - <<<"$include"
done

scripts/check-consumer.sh "$prefix" "$prefix/lib"
