#!/usr/bin/env bash
# Lintian has no error for the packages, they install, serve a program through pkg-config and CMake, and go without a trace.
#   packaging/debian/check.sh PACKAGES_FOLDER
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
consumer=$here/../../tests/frame/consumer
runtime=$(ls "$1"/liborvanth-core-math[0-9]*.deb) development=$(ls "$1"/liborvanth-core-math-dev_*.deb)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
root=$scratch/root

echo "== lintian"
lintian --fail-on error "$runtime" "$development"

echo "== installation"
# Another root with what is installed here on its list, so that dpkg judges the dependencies.
mkdir -p "$root/var/lib/dpkg/updates" "$root/var/lib/dpkg/info" "$root/etc"
cp /var/lib/dpkg/status "$root/var/lib/dpkg/"
[ ! -e /var/lib/dpkg/arch ] || cp /var/lib/dpkg/arch "$root/var/lib/dpkg/"
# Without a list of its files dpkg warns of every package.
dpkg-query -W -f "$root/var/lib/dpkg/info/\${binary:Package}.list\n" | xargs touch
dpkg --root="$root" --force-not-root --force-script-chrootless --install "$runtime" "$development"
dpkg-deb -f "$runtime" Depends | grep -q libopenblas0 || { echo "the dependency on OpenBLAS is missing"; exit 1; }
libdir=$root/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)
for library in libOrvanth.Core.Math.so.1 libOrvanth.Core.Math.Shield.so.1; do
    [ -e "$libdir/$library" ] || { echo "$library is not in the folder for libraries of this architecture"; exit 1; }
    if readelf -d "$libdir/$library" | grep -E 'RPATH|RUNPATH'; then echo "$library has a search path of its own"; exit 1; fi
done
export LD_LIBRARY_PATH=$libdir

echo "== through CMake"
cmake -G Ninja -S "$consumer" -B "$scratch/cmake" -DCMAKE_PREFIX_PATH="$root/usr" >/dev/null
cmake --build "$scratch/cmake" >/dev/null
"$scratch/cmake/consumer"

echo "== through pkg-config"
export PKG_CONFIG_PATH=$libdir/pkgconfig
read -ra flags <<<"$(pkg-config --cflags --libs orvanth-core-math)"
cc -std=c11 -Wall -Werror "$consumer/main.c" "${flags[@]}" -o "$scratch/consumer"
"$scratch/consumer"
read -ra flags <<<"$(pkg-config --cflags --libs orvanth-core-math-shield)"
"$here/../../examples/hosts/check.sh" "$here/../../examples/hosts/dunnett.c" \
    sh -c 'cc -std=c11 -Wall -Werror "$@" -lm -o "$0" && "$0"' "$scratch/dunnett" \
    "$here/../../examples/hosts/dunnett.c" "${flags[@]}"

echo "== removal"
dpkg --root="$root" --force-not-root --force-script-chrootless --purge \
    "$(dpkg-deb -f "$runtime" Package)" "$(dpkg-deb -f "$development" Package)"
left=$(find "$root" -iname '*orvanth*')
[ -z "$left" ] || { echo "these files are left:"; echo "$left"; exit 1; }
echo "the packages install, serve and go"
