#!/usr/bin/env bash
# Installs what the build and the tests need on Debian 12; called with "ci", what the checks need too, with "bench", what
# scripts/bench.sh needs. Does nothing when nothing is missing.
set -euo pipefail

packages=(g++ cmake ninja-build libgtest-dev libbenchmark-dev libcli11-dev)
if [[ ${1:-} == ci ]]; then
    packages+=(clang clang-format clang-tidy gcovr libclang-rt-dev libc6-dbg pkg-config valgrind)
    packages+=(bash-completion doxygen dpkg-dev file fish gdb lintian man-db mandoc python3 zsh)
elif [[ ${1:-} == bench ]]; then
    packages+=(python3 python3-matplotlib)
fi

if ! command -v apt-get >/dev/null; then
    echo "setup: not a Debian system; make sure that these are installed: ${packages[*]}" >&2
    exit 0
fi

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
    [[ $status == installed* ]] || missing+=("$package")
done
[[ ${#missing[@]} -gt 0 ]] || exit 0

as_root=(env DEBIAN_FRONTEND=noninteractive)
[[ $(id -u) == 0 ]] || as_root=(sudo "${as_root[@]}")
echo "setup: installing ${missing[*]}"
"${as_root[@]}" apt-get update -qq -o DPkg::Lock::Timeout=300 </dev/null
"${as_root[@]}" apt-get install -y -qq --no-install-recommends -o DPkg::Lock::Timeout=300 "${missing[@]}" \
    </dev/null >/dev/null
