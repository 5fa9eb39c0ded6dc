#!/usr/bin/env bash
# Compares what applications are built against with the lists of tests/interface/: the symbols that the shared libraries
# export, one a line without the compiler's helpers (thunks, names of types, tables of construction), and the slots of
# iKST's virtual table. When a difference is a decision, scripts/check-interface.sh --accept writes the lists again.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C

lists=tests/interface
scripts/build.sh release kesta misc zr OS
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for library in OS zr misc kesta; do
    nm --dynamic --defined-only --demangle "build/release/lib/lib$library.so" | cut -d ' ' -f 3- |
        grep -vE '^(VTT for|typeinfo name for|(non-)?virtual thunk to) ' | sort -u >"$work/lib$library.symbols"
done

# The compiler's own account of the table: it tells overloads apart and knows the slots of operations without a body.
cat >"$work/source.cpp" <<'END'
#include "record/iKST.h"
iKST::~iKST() = default;
END
clang++ -std=c++17 -I . -Xclang -fdump-vtable-layouts -S -o /dev/null "$work/source.cpp" |
    sed -n "/^VTable indices for 'iKST'/,/^$/ s/^ *\([0-9]* |\)/\1/p" >"$work/iKST.vtable"

if [[ ${1:-} == --accept ]]; then
    mkdir -p $lists
    cp "$work"/*.symbols "$work/iKST.vtable" $lists/
elif ! diff --unified=0 --exclude='source.*' $lists "$work"; then
    echo "check-interface: applications built before this change may not run with it;" \
        "if it is a decision, run scripts/check-interface.sh --accept and commit $lists" >&2
    exit 1
fi
