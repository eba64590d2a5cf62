#!/usr/bin/env bash
# Brings the sources of a Debian package: its original tarball, checked and unpacked, with the package's folder debian/.
#   tools/debian_source.sh PACKAGE=VERSION SHA256 FOLDER
# SHA256 is that of the original tarball. FOLDER must not exist. No patch of the package is applied.
set -euo pipefail

stop() { printf 'debian_source.sh: %s\n' "$@" >&2; exit 1; }
[ $# -eq 3 ] || stop "give PACKAGE=VERSION, the SHA-256 of the original tarball, and the folder to make"
wanted=$1 original=$2 folder=$(realpath -m "$3")
package=${wanted%%=*}
[ ! -e "$folder" ] || stop "$folder is there already"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work"/{lists/partial,sources.list.d,archives/partial,cache,tree}
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
[ -n "$mirror" ] || stop "no Debian mirror for '$release' among apt's sources"
keyring=/usr/share/keyrings/debian-archive-keyring.gpg
signed=; [ ! -e "$keyring" ] || signed="[signed-by=$keyring] "
echo "deb-src ${signed}$mirror $release main" >"$work/sources.list.d/source.list"
apt=(-qq -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$work/sources.list.d" "${own[@]}")
apt-get "${apt[@]}" update
(cd "$work" && apt-get "${apt[@]}" source --download-only "$wanted")

tarball=$(echo "$work/$package"_*.orig.tar.*[!c])  # the signature of a tarball ends in .asc
echo "$original  $tarball" | sha256sum --check --quiet
tar -xf "$tarball" -C "$work/tree" --strip-components=1
tar -xf "$(echo "$work/$package"_*.debian.tar.*)" -C "$work/tree"
mkdir -p "$(dirname "$folder")"
mv "$work/tree" "$folder"
