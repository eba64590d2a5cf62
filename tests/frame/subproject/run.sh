#!/usr/bin/env bash
# Takes the source tree as a part of another project: configured by add_subdirectory, built and run by FetchContent.
#   run.sh SOURCE_TREE L_BFGS_B_SOURCES
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
# Beside build/dev, since ccache finds objects again by paths relative to the build folder.
mkdir -p "$1/build"
scratch=$(mktemp -d "$1/build/part-XXXXXX")
trap 'rm -rf "$scratch"*' EXIT

# Warnings are errors as in the preset dev: with the flags below ccache finds the objects of that preset.
settings=(-G Ninja -S "$here" -DORVANTH="$1" -DORVANTH_LBFGSB_SOURCES="$2" -DORVANTH_WERROR=ON
          -DCMAKE_BUILD_TYPE=Release -DCMAKE_EXPORT_COMPILE_COMMANDS=ON)
if command -v ccache >/dev/null; then
    export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$1} CCACHE_NOHASHDIR=1
    settings+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
configure() { # <how> <flags of C and C++>
    cmake "${settings[@]}" "-DCMAKE_C_FLAGS_RELEASE=$2" "-DCMAKE_CXX_FLAGS_RELEASE=$2" -DHOW="$1" -B "$scratch-$1" \
        >"$scratch/log" 2>&1 || { cat "$scratch/log"; exit 1; }
}

# The flags of a common release build have NDEBUG; the library's own come after them and take it back.
configure add_subdirectory "-O3 -DNDEBUG"
commands=$(grep '"command": .* -c .*/src/.*[.]cpp"' "$scratch-add_subdirectory/compile_commands.json")
if grep -v -- ' -DNDEBUG .* -UNDEBUG ' <<<"$commands"; then
    echo "with NDEBUG in the flags of the host the library's assertions are off in the files above"
    exit 1
fi

configure FetchContent "-O2 -g1"
cmake --build "$scratch-FetchContent" --target host -j2 >"$scratch/log" 2>&1 || { cat "$scratch/log"; exit 1; }
"$scratch-FetchContent/host"
