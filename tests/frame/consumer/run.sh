#!/usr/bin/env bash
# Installs the build tree into a scratch prefix and builds the consumer both ways.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

cmake --install "$build" --prefix "$scratch/prefix" >/dev/null
[ -n "$(find "$scratch/prefix" -name THIRD_PARTY_NOTICES.md)" ] || { echo "the notices are not installed"; exit 1; }
echo "through the CMake package:"
cmake -G Ninja -S "$here" -B "$scratch/cmake" -DCMAKE_PREFIX_PATH="$scratch/prefix" >/dev/null
cmake --build "$scratch/cmake" >/dev/null
"$scratch/cmake/consumer"
echo "through pkg-config:"
PKG_CONFIG_PATH=$(dirname "$(find "$scratch/prefix" -name orvanth-core-math.pc)")
export PKG_CONFIG_PATH
read -ra flags <<<"$(pkg-config --cflags --libs orvanth-core-math)"
cc -std=c11 -Wall -Werror "$here/main.c" "${flags[@]}" -o "$scratch/consumer"
LD_LIBRARY_PATH=$(pkg-config --variable=libdir orvanth-core-math) "$scratch/consumer"
