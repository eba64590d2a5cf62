#!/usr/bin/env bash
# Takes the source tree as a part of another project: configured by add_subdirectory, built and run by FetchContent.
#   run.sh SOURCE_TREE L_BFGS_B_SOURCES
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
# Beside build/dev, since ccache finds objects again by paths relative to the build folder.
mkdir -p "$1/build"
scratch=$(mktemp -d "$1/build/part-XXXXXX")
trap 'rm -rf "$scratch"*' EXIT

# The flags of a common release build, with NDEBUG. Apart from NDEBUG they are those of the preset dev, whose objects
# ccache then finds.
settings=(-G Ninja -S "$here" -DORVANTH="$1" -DORVANTH_LBFGSB_SOURCES="$2" -DORVANTH_WERROR=ON
          -DCMAKE_BUILD_TYPE=Release
          "-DCMAKE_C_FLAGS_RELEASE=-O2 -g1 -DNDEBUG" "-DCMAKE_CXX_FLAGS_RELEASE=-O2 -g1 -DNDEBUG")
if command -v ccache >/dev/null; then
    export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$1} CCACHE_NOHASHDIR=1
    settings+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
configure() { # <how>
    cmake "${settings[@]}" -DHOW="$1" -B "$scratch-$1" >"$scratch/log" 2>&1 || { cat "$scratch/log"; exit 1; }
}
configure add_subdirectory
configure FetchContent
cmake --build "$scratch-FetchContent" --target host -j2 >"$scratch/log" 2>&1 || { cat "$scratch/log"; exit 1; }
"$scratch-FetchContent/host"
