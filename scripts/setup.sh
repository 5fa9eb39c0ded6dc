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
# What apt and the packages have to say is of interest only when they fail.
quietly() {
    local said
    said=$("${as_root[@]}" apt-get -qq -o DPkg::Lock::Timeout=300 "$@" </dev/null 2>&1) && return
    printf '%s\n' "$said" >&2
    return 1
}
echo "setup: fetching the lists of packages"
quietly update
echo "setup: installing ${missing[*]}; this can take some minutes"
quietly install -y --no-install-recommends "${missing[@]}"
