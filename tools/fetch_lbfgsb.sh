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
mkdir -p "$work"/{lists/partial,sources.list.d,archives/partial,cache}
chmod -R a+rX "$work"

# The machine's own mirror of Debian, asked for sources; nothing of the machine's set-up is changed.
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
own=(-o Dir::State::lists="$work/lists" -o Dir::Cache="$work/cache" -o Dir::Cache::archives="$work/archives"
     -o APT::Sandbox::User= -o APT::Update::Post-Invoke= -o APT::Update::Post-Invoke-Success=)
find_mirror() {
    apt-get "$@" indextargets --format '$(ORIGIN)|$(CODENAME)|$(COMPONENT)|$(REPO_URI)' 'Created-By: Packages' |
        awk -F'|' -v r="$release" '$1 == "Debian" && $2 == r && $3 == "main" && !found { found = 1; print $4 }'
}
mirror=$(find_mirror)
if [ -z "$mirror" ]; then  # this machine's lists were never fetched, or were cleaned away
    apt-get -qq "${own[@]}" update
    mirror=$(find_mirror "${own[@]}")
fi
if [ -z "$mirror" ]; then
    echo "fetch_lbfgsb.sh: no Debian mirror for '$release' among apt's sources" >&2
    exit 1
fi
keyring=/usr/share/keyrings/debian-archive-keyring.gpg
signed=; [ ! -e "$keyring" ] || signed="[signed-by=$keyring] "
echo "deb-src ${signed}$mirror $release main" >"$work/sources.list.d/source.list"
apt=(-qq -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$work/sources.list.d" "${own[@]}")
apt-get "${apt[@]}" update
(cd "$work" && apt-get "${apt[@]}" source --download-only "lbfgsb=$version")

tarball=$(echo "$work"/lbfgsb_*.orig.tar.*)
echo "$original  $tarball" | sha256sum --check --quiet
mkdir "$work/tree"
tar -xf "$tarball" -C "$work/tree" --strip-components=1
tar -xf "$(echo "$work"/lbfgsb_*.debian.tar.*)" -C "$work/tree"
patch --quiet --directory="$work/tree" -p1 <"$work/tree/debian/patches/replace-linpack-with-lapack.patch"

# timer.f stays behind: ours is in src/optimise.
mkdir -p "$target"
cp "$work/tree/lbfgsb.f" "$work/tree/License.txt" "$target"
echo "$version" >"$target/complete"
