#!/usr/bin/env bash
# Makes the reference of the public headers in build/reference/html; fails when Doxygen has anything to say about their
# comments. Every operation of the library's own classes must have one; in support/ some speak for themselves.
set -euo pipefail
cd "$(dirname "$0")/.."

# The headers that an installation has.
mapfile -t named < <(sed -n '/^set(public_headers/,/)/p' cmake/Install.cmake | grep -o '[a-z/]*/[A-Za-z]*\.h')
plumbing=(record/parts/{CookieIndex,FieldList,GapVector,OnDemand,ParamList,Query}.h view/parts/{Attachment,RowArray,RowIndex}.h)
mapfile -t own < <(printf '%s\n' "${named[@]}" | grep -vxF "$(printf '%s\n' "${plumbing[@]}")")

reference() { # SETTING...
    { cat docs/reference/Doxyfile && printf '%s\n' "$@"; } | doxygen -
}

mkdir -p build/reference
reference "INPUT = ${own[*]}" "OUTPUT_DIRECTORY = build/reference/own" "WARN_IF_UNDOCUMENTED = YES"
reference "INPUT = support ${named[*]}" "FILE_PATTERNS = *.h" "EXTRACT_ALL = YES"
echo "reference: build/reference/html/index.html"
