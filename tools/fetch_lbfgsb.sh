#!/usr/bin/env bash
# Brings the Fortran sources of L-BFGS-B 3.0 to third_party/lbfgsb, as published and in LAPACK form:
# the original tarball of Debian's source package with its LAPACK patch alone. The package's other
# patches change trial points and what is printed, so the packaged library is not used.
#   tools/fetch_lbfgsb.sh          does nothing if the sources are there
#   tools/fetch_lbfgsb.sh --again  fetches them anew
set -euo pipefail
cd "$(dirname "$0")/.."

target=third_party/lbfgsb
# What the reference traces were made with. Another tarball is another minimiser.
version=3.0+dfsg.4-1
original=fac447dbae700bc1055fad3b150cec51c39e4b25ab73abd1f823b39c8c0099d8

if [ -e "$target/complete" ] && [ "${1:-}" != --again ]; then exit 0; fi
echo "== fetching the sources of L-BFGS-B ($version) into $target"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
tools/debian_source.sh "lbfgsb=$version" "$original" "$work/tree"
patch --quiet --directory="$work/tree" -p1 <"$work/tree/debian/patches/replace-linpack-with-lapack.patch"

# timer.f stays behind: ours is in src/optimise.
mkdir -p "$target"
cp "$work/tree/lbfgsb.f" "$work/tree/License.txt" "$target"
echo "$version" >"$target/complete"
