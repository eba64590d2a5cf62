#!/usr/bin/env bash
# Every preset configures, and what is missing is named with the command that brings it.
#   configure.sh SOURCE_TREE
set -euo pipefail
cd "$1"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0

presets=$(cmake --list-presets=configure | sed -n 's/^  "\([^"]*\)".*/\1/p')
for preset in $presets; do
    if cmake --preset "$preset" -B "$scratch/$preset" >"$scratch/log" 2>&1; then
        echo "preset $preset: configures"
    elif grep -qE 'tools/(install_packages|fetch_lbfgsb|fetch_windows_sources)[.]sh' "$scratch/log"; then
        echo "preset $preset: names what this machine lacks: $(grep -E 'missing' "$scratch/log" | head -1)"
    else
        echo "preset $preset fails:"; cat "$scratch/log"; failed=1
    fi
    rm -rf "${scratch:?}/$preset"
done

names() { # <what is missing> <command that brings it> <argument of cmake that hides it>
    if cmake --preset dev -B "$scratch/without" "$3" >"$scratch/log" 2>&1; then
        echo "without $1 the preset dev configures all the same"; failed=1
    elif ! tr -s ' \n' ' ' <"$scratch/log" | grep -qF "$2" || ! grep -q "$1" "$scratch/log"; then
        echo "without $1 the message does not name it or does not say '$2':"; cat "$scratch/log"; failed=1
    fi
    rm -rf "$scratch/without"
}
names libboost-dev 'tools/install_packages.sh build' -DCMAKE_DISABLE_FIND_PACKAGE_Boost=ON
names libgtest-dev 'tools/install_packages.sh check' -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON
names lbfgsb 'tools/fetch_lbfgsb.sh' -DORVANTH_LBFGSB_SOURCES=/nowhere
exit $failed
