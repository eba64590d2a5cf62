#!/usr/bin/env bash
# The installed tree serves a consumer that is cross-compiled through its CMake package, and one that is linked by hand.
#   consumer.sh BUILD_FOLDER TOOLCHAIN C_COMPILER EMULATOR...
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$1 toolchain=$2 compiler=$3
shift 3
# Below the build folder, which the 32-bit Wine sees.
scratch=$(mktemp -d "$build/consumer.XXXXXX")
trap 'rm -rf "$scratch"' EXIT

cmake --install "$build" --prefix "$scratch/prefix" >/dev/null
for file in bin/Orvanth.Core.Math.dll bin/Orvanth.Core.Math.Shield.dll lib/libOrvanth.Core.Math.dll.a \
            lib/Orvanth.Core.Math.lib lib/Orvanth.Core.Math.Shield.lib include/orvanth/core_math.h; do
    [ -e "$scratch/prefix/$file" ] || { echo "$file is not installed"; exit 1; }
done
echo "through the CMake package:"
cmake -G Ninja -S "$here/../frame/consumer" -B "$scratch/cmake" -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
      -DOrvanthCoreMath_ROOT="$scratch/prefix" -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH >/dev/null
cmake --build "$scratch/cmake" >/dev/null
cp "$scratch/prefix/bin/Orvanth.Core.Math.dll" "$scratch/cmake"
"$@" "$scratch/cmake/consumer.exe"
echo "with the import library for Visual C++:"
"$compiler" -std=c11 -Wall -Werror -I"$scratch/prefix/include" "$here/../frame/consumer/main.c" \
    "$scratch/prefix/lib/Orvanth.Core.Math.lib" -o "$scratch/cmake/by_hand.exe"
"$@" "$scratch/cmake/by_hand.exe"
