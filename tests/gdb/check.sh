#!/usr/bin/env bash
# Has gdb show the values of a built tests/gdb/values.cpp and compares what it writes with tests/gdb/expected:
# tests/gdb/check.sh PROGRAM [PRINTERS]. Without PRINTERS, gdb must find them itself.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)

options=(-iex "set debuginfod enabled off")
[[ $# -lt 2 ]] || options+=(-ex "source $2")
options+=(-ex "set print pretty off" -ex "set width 0" -ex "break stop" -ex run -ex up -ex "echo values:\\n")
while read -r command; do options+=(-ex "$command"); done <"$here/commands"

LC_ALL=C.UTF-8 gdb -batch -nx "${options[@]}" "$1" 2>&1 </dev/null |
    sed '1,/^values:$/d; s/0x[0-9a-f]\+/ADDRESS/g; s/^\$[0-9]* = //' |
    diff "$here/expected" -
