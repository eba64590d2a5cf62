#!/usr/bin/env bash
# Makes build/windows/root32: a small Debian for i386 with the 32-bit Wine. Needs root, the network and three minutes.
# An earlier one is kept. What stands in the way is the last line of the output, with the exit code 3.
set -euo pipefail
cd "$(dirname "$0")/../.."
root=$PWD/build/windows/root32
[ ! -e "$root/complete" ] || exit 0

stop() { echo "$1"; exit 3; }
[ "$(id -u)" = 0 ] || stop "only root can make the system that the 32-bit Wine needs"
command -v debootstrap >/dev/null || stop "debootstrap is missing: tools/install_packages.sh windows"
unshare --mount true 2>/dev/null || stop "this machine allows no mounts of a process's own"

release=$(. /etc/os-release && echo "$VERSION_CODENAME")
mirror=$(apt-get indextargets --format '$(ORIGIN)|$(CODENAME)|$(COMPONENT)|$(REPO_URI)' 'Created-By: Packages' |
         awk -F'|' -v r="$release" '$1 == "Debian" && $2 == r && $3 == "main" && !found { found = 1; print $4 }')
mirror=${mirror:-http://deb.debian.org/debian}
log=$PWD/build/windows/root32.log
mkdir -p build/windows
rm -rf --one-file-system "$root"
echo "== a 32-bit system with Wine in $root"
debootstrap --arch=i386 --variant=minbase "$release" "$root" "$mirror" >"$log" 2>&1 || {
    tail -5 "$log"; stop "debootstrap could not make a 32-bit system; its log is $log"; }
# The version of Wine in the updates may need packages of the updates.
printf 'deb %s %s main\n' "$mirror" "$release" "$mirror" "$release-updates" >"$root/etc/apt/sources.list"
find /etc/apt/apt.conf.d -name '*prox*' -exec cp {} "$root/etc/apt/apt.conf.d/" \;
ROOT=$root unshare --mount bash -c '
    set -e
    mount -t proc proc "$ROOT/proc"
    export DEBIAN_FRONTEND=noninteractive
    chroot "$ROOT" apt-get update -qq
    chroot "$ROOT" apt-get install -y -qq --no-install-recommends wine32
    chroot "$ROOT" apt-get clean
' >>"$log" 2>&1 || { tail -5 "$log"; stop "the 32-bit Wine could not be installed; the log is $log"; }
touch "$root/complete"
