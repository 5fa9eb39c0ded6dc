#!/usr/bin/env bash
# Builds the Debian packages in build/package/packages, has lintian look at them, and checks what they bring: the program
# runs, its manual page is sound, applications build with the library, gdb shows its types. On a machine that is for checks (CI is set) dpkg installs them and removes them
# again; on others they are unpacked into a temporary folder.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh package
packages=build/package/packages
rm -rf "$packages"
if ! cpack --config build/package/CPackConfig.cmake -B "$packages" >build/package/cpack.log 2>&1; then
    cat build/package/cpack.log >&2
    exit 1
fi
lintian --allow-root --fail-on error,warning "$packages"/*.deb

names=(libkesta1 libkesta-dev kesta)
for name in "${names[@]}"; do
    version=$(dpkg-deb --field "$packages/${name}"_*.deb Version)
    if [[ $version != "$(dpkg-parsechangelog --file cmake/packages/changelog --show-field Version)" ]]; then
        echo "check-packages: $name is of version $version, which cmake/packages/changelog does not begin with" >&2
        exit 1
    fi
done

work=$(mktemp -d)
root=
libraries=/usr/lib/$(dpkg-architecture --query DEB_HOST_MULTIARCH)
installed=()
printers=()
if [[ -n ${CI:-} ]]; then
    trap 'rm -rf "$work"; dpkg --purge "${names[@]}" >/dev/null' EXIT
    dpkg --install "$packages"/*.deb >/dev/null
else
    trap 'rm -rf "$work"' EXIT
    root=$work/root
    for package in "$packages"/*.deb; do dpkg-deb --extract "$package" "$root"; done
    export LD_LIBRARY_PATH=$root$libraries PKG_CONFIG_PATH=$root$libraries/pkgconfig
    installed=("$root/usr" "$root$libraries")
    printers=("$root/usr/share/gdb/auto-load$libraries"/*.py)
fi
scripts/check-consumer.sh "${installed[@]}"

# gdb finds the views of the types by itself where the system keeps its libraries.
# shellcheck disable=SC2046  # flags are words
g++ -std=c++17 -g tests/gdb/values.cpp -o "$work/values" $(pkg-config --cflags --libs kesta)
tests/gdb/check.sh "$work/values" "${printers[@]}"

[[ $("$root/usr/bin/kesta" --version) == "$version"* ]]

mandoc -T lint "$root/usr/share/man/man1/kesta.1.gz"
warnings=$(MANWIDTH=80 man --warnings --local-file "$root/usr/share/man/man1/kesta.1.gz" 2>&1 >/dev/null)
[[ -z $warnings ]] || { echo "$warnings" >&2; exit 1; }
