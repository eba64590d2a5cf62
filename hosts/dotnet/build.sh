#!/usr/bin/env bash
# Builds the assembly with Mono's compiler and lays the native libraries beside it.
#   build.sh FOLDER_OF_THE_LIBRARIES OUTPUT_FOLDER
set -euo pipefail
libraries=$1 output=$2
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$output"
mapfile -t sources < <(find "$here/src" -name '*.cs' | sort)
mcs -nologo -target:library -unsafe -optimize -warnaserror -langversion:7.2 -out:"$output/Orvanth.Core.Math.dll" \
    -doc:"$output/Orvanth.Core.Math.xml" "${sources[@]}"
cp "$here/src/Orvanth.Core.Math.dll.config" "$output"
if [ "$libraries" != none ]; then
    cp -L "$libraries/libOrvanth.Core.Math.Shield.so" "$libraries/libOrvanth.Core.Math.so.1" "$output"
fi
