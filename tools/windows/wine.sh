#!/usr/bin/env bash
# Runs a program for Windows by Wine.
#   wine.sh 64|32 PROGRAM [ARGUMENTS]
# The 32-bit Wine lives in a system of its own, build/windows/root32 (make_root32.sh), where this project's folder has
# the same path; entering it needs root.
set -euo pipefail
project=$(cd "$(dirname "$0")/../.." && pwd)
width=$1
shift

# No messages of Wine, no menus on the desktop, no questions about packages for .NET and HTML.
settings=(WINEPATH="Z:$project/build/win$width/src" WINEDEBUG=-all "WINEDLLOVERRIDES=mscoree,mshtml=;winemenubuilder.exe=d" OPENBLAS_NUM_THREADS=1)

# Where several programs start at once, one of some hundred starts of Wine ends at once with 1 and without a word. Such a
# start is repeated; a program that fails as quickly by itself fails again.
run() { # <command ...>
    local begin=${EPOCHREALTIME/[.,]/} status=0
    "$@" || status=$?
    if [ "$status" = 1 ] && [ $((${EPOCHREALTIME/[.,]/} - begin)) -lt 200000 ]; then
        echo "wine.sh: the program ended at once with 1 and is started again" >&2
        status=0
        "$@" || status=$?
    fi
    exit "$status"
}

if [ "$width" = 64 ]; then
    mkdir -p "$project/build/windows"
    run env "${settings[@]}" WINEPREFIX="$project/build/windows/wine64" /usr/lib/wine/wine64 "$@"
fi
root=$project/build/windows/root32
[ -x "$root/usr/lib/wine/wine" ] || { echo "wine.sh: there is no 32-bit Wine; run tools/windows/make_root32.sh" >&2; exit 1; }
export ORVANTH_ROOT32=$root ORVANTH_PROJECT=$project ORVANTH_FOLDER=$PWD
# The mounts are seen by this process alone and end with it.
run unshare --mount bash -c '
    set -e
    mkdir -p "$ORVANTH_ROOT32$ORVANTH_PROJECT"
    mount --bind "$ORVANTH_PROJECT" "$ORVANTH_ROOT32$ORVANTH_PROJECT"
    mount --rbind /dev "$ORVANTH_ROOT32/dev"
    mount -t proc proc "$ORVANTH_ROOT32/proc"
    exec chroot "$ORVANTH_ROOT32" /usr/bin/env --chdir="$ORVANTH_FOLDER" "$@"
' -- "${settings[@]}" WINEPREFIX=/wine32 /usr/lib/wine/wine "$@"
