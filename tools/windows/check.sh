#!/usr/bin/env bash
# Builds both widths for Windows and tests them under Wine.
#   tools/windows/check.sh
# Why the tests in 32 bits were left out, if they were, stands in build/windows/skipped afterwards.
set -euo pipefail
cd "$(dirname "$0")/../.."
export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$PWD} CCACHE_NOHASHDIR=1
mkdir -p build/windows
rm -f build/windows/skipped

tools/install_packages.sh windows
tools/fetch_windows_sources.sh

lines=()
step() { # <what> <command ...>
    local what=$1 start=$SECONDS
    shift
    printf '\n== windows: %s\n' "$what"
    "$@" || { echo "windows: $what failed"; exit 1; }
    lines+=("$(printf '%-40s %5d s' "$what" $((SECONDS - start)))")
}
build() { # <preset>
    cmake --preset "$1" >"build/windows/$1.log" 2>&1 || { cat "build/windows/$1.log"; return 1; }
    cmake --build --preset "$1"
}

# The tests start many programs at once; the folder of Wine's settings is made before them.
step "64 bits: build" build win64
step "64 bits: Wine's settings" tools/windows/wine.sh 64 wineboot --init
step "64 bits: tests" ctest --preset win64 -j2
step "32 bits: build" build win32
if why=$(tools/windows/make_root32.sh); then
    step "32 bits: Wine's settings" tools/windows/wine.sh 32 wineboot --init
    step "32 bits: tests" ctest --preset win32 -j2
else
    why=${why##*$'\n'}
    echo "windows: the tests in 32 bits are skipped: $why"
    echo "$why" >build/windows/skipped
fi
printf '\n== windows: times\n'
printf '%s\n' "${lines[@]}"
