#!/usr/bin/env bash
# Checks that the release build's program and libraries carry what makes faults harder to exploit: tables that are
# read-only after the start, no executable stack, stack canaries, checked calls of the C library, a program that loads
# anywhere. Another build's folder may be given.
set -euo pipefail
cd "$(dirname "$0")/.."

build=${1:-build/release}
failed=0
require() { # FILE WHAT PATTERN TEXT
    grep -Eq -- "$3" <<<"$4" || {
        echo "check-hardening: $1: $2" >&2
        failed=1
    }
}

libraries=("$build"/lib/lib{OS,zr,misc,kesta}.so)
for file in "$build/bin/kesta" "${libraries[@]}"; do
    segments=$(readelf --segments --wide "$file")
    dynamic=$(readelf --dynamic --wide "$file")
    require "$file" "tables stay writable" 'GNU_RELRO' "$segments"
    require "$file" "functions are looked up after the start" '\((FLAGS|BIND_NOW|FLAGS_1)\).*NOW' "$dynamic"
    require "$file" "the stack is executable" 'GNU_STACK .* RW  ' "$segments"
    require "$file" "code is changed at the start" '^clean$' "$(grep -q TEXTREL <<<"$dynamic" || echo clean)"
    require "$file" "the stack has no canaries" ' __stack_chk_fail' "$(readelf --dyn-syms --wide "$file")"
done
require "$build/bin/kesta" "does not load anywhere" '\(FLAGS_1\).* PIE' "$(readelf --dynamic --wide "$build/bin/kesta")"
# Not every file has calls that can be checked.
require "$build/lib" "calls of the C library are not checked" ' __[a-z]+_chk@' \
    "$(readelf --dyn-syms --wide "$build/bin/kesta" "${libraries[@]}")"
exit "$failed"
