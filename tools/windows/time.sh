#!/usr/bin/env bash
# Times of a few exports of the three builds on this machine, as a table: benchmarks/windows/time.c on each.
#   time.sh LINUX_LIBRARY
set -euo pipefail
linux=$(realpath "$1")
cd "$(dirname "$0")/../.."
work=$PWD/build/windows/time
mkdir -p "$work"
flags=(-std=gnu11 -O2 -Wall)
cc "${flags[@]}" benchmarks/windows/time.c -o "$work/time" -ldl
x86_64-w64-mingw32-gcc-posix "${flags[@]}" benchmarks/windows/time.c -o "$work/time64.exe"
i686-w64-mingw32-gcc-posix "${flags[@]}" benchmarks/windows/time.c -o "$work/time32.exe"
"$work/time" "$linux" >"$work/linux"
for width in 64 32; do
    tools/windows/wine.sh "$width" "$work/time$width.exe" "Z:$PWD/build/win$width/src/Orvanth.Core.Math.dll" |
        tr -d '\r' >"$work/win$width"
done
echo "| export | Linux | win64 | win32 |"
echo "|---|---|---|---|"
join "$work/linux" "$work/win64" | join - "$work/win32" | awk '{ printf "| `%s` | %s | %s | %s |\n", $1, $2, $3, $4 }'
