#!/usr/bin/env bash
# Makes the packages for Debian of what is built already.
#   packaging/debian/make.sh BUILD_FOLDER PACKAGES_FOLDER
# The build was configured with CMAKE_INSTALL_PREFIX=/usr, so that its files go where Debian has them.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$here/../..
build=$(realpath "$1") packages=$(realpath "$2")
version=$(sed -n 's/^project([A-Za-z]* VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
major=${version%%.*}
runtime=liborvanth-core-math$major development=liborvanth-core-math-dev

grep -q '^CMAKE_INSTALL_PREFIX:.*=/usr$' "$build/CMakeCache.txt" ||
    { echo "make.sh: $build is not configured with CMAKE_INSTALL_PREFIX=/usr" >&2; exit 1; }

work=$build/debian
rm -rf "$work"
mkdir -p "$work/source/debian/source"
cd "$work/source/debian"
sed "s/@MAJOR@/$major/" "$here/control.in" >control
{ cat "$here/copyright.in"; sed 's/^/ /; s/^ $/ ./; 1s/^/Comment:\n/' "$root/THIRD_PARTY_NOTICES.md"; } >copyright
cp "$here/rules" .
cp "$here/runtime.install" "$runtime.install"
cp "$here/runtime.lintian-overrides" "$runtime.lintian-overrides"
cp "$here/development.install" "$development.install"
echo "debian/tmp/usr/share/doc/*/THIRD_PARTY_NOTICES.md" >"$runtime.docs"
cp "$root/CHANGELOG.md" ..
echo "3.0 (quilt)" >source/format
# The date of the commit makes packages of one commit equal.
SOURCE_DATE_EPOCH=$(git -C "$root" log -1 --format=%ct)
export SOURCE_DATE_EPOCH
cat >changelog <<END
orvanth-core-math ($version-1) unstable; urgency=medium

  * Version $version; CHANGELOG.md beside this file says what changed.

 -- $(sed -n 's/^Maintainer: //p' control)  $(date -u -R -d "@$SOURCE_DATE_EPOCH")
END
cd ..
# The release build has no debug information, so there is no package of it.
DEB_BUILD_OPTIONS=noautodbgsym ORVANTH_BUILD=$build dpkg-buildpackage --build=binary --no-sign --no-check-builddeps
cp "$work"/*.deb "$packages"
