#!/usr/bin/env bash
# Makes the zip files for Windows and tries what a package holds.
#   package.sh zip FOLDER          orvanth-core-math-VERSION-win64.zip and -win32.zip in FOLDER
#   package.sh try-zip FOLDER      unpacks both and runs a small host on their DLLs under Wine
#   package.sh try-nupkg FILE      the same for the DLLs of the .NET package
set -euo pipefail
cd "$(dirname "$0")/../.."
version=$(sed -n 's/^project([A-Za-z]* VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
work=$PWD/build/windows/package
declare -A compiler=([64]=x86_64-w64-mingw32-gcc-posix [32]=i686-w64-mingw32-gcc-posix)
declare -A rid=([64]=win-x64 [32]=win-x86)

name() { echo "orvanth-core-math-$version-win$1"; }

make_zip() { # <width> <folder>
    rm -rf "$work/stage"
    cmake --preset "win$1" >/dev/null
    cmake --build --preset "win$1" --target core_math core_math_shield core_math_import_library core_math_shield_import_library
    cmake --install "build/win$1" --prefix "$work/stage/$(name "$1")" >/dev/null
    rm -f "$2/$(name "$1").zip"
    (cd "$work/stage" && /usr/bin/python3 -m zipfile -c "$2/$(name "$1").zip" "$(name "$1")")
}

# Each DLL lies alone in a folder, so that a file that it needs besides would be missed.
try() { # <width> <DLL> <function>
    if [ "$1" = 32 ] && ! why=$(tools/windows/make_root32.sh); then
        echo "not run in 32 bits: ${why##*$'\n'}"
        return
    fi
    rm -rf "$work/try"
    mkdir -p "$work/try"
    "${compiler[$1]}" -std=c11 -Wall -Werror tests/windows/host.c -o "$work/try/host.exe"
    cp "$2" "$work/try"
    tools/windows/wine.sh "$1" "$work/try/host.exe" "Z:$work/try/$(basename "$2")" "$3"
}

unpack() { # <archive>
    rm -rf "$work/unpacked"
    /usr/bin/python3 -m zipfile -e "$1" "$work/unpacked"
}

mkdir -p "$work"
case "${1:-}" in
    zip) for width in 64 32; do make_zip "$width" "$(realpath "$2")"; done ;;
    try-zip)
        for width in 64 32; do
            unpack "$2/$(name "$width").zip"
            found=$work/unpacked/$(name "$width")
            for file in include/orvanth/core_math.h lib/Orvanth.Core.Math.lib lib/libOrvanth.Core.Math.dll.a; do
                [ -e "$found/$file" ] || { echo "$(name "$width").zip lacks $file"; exit 1; }
            done
            try "$width" "$found/bin/Orvanth.Core.Math.dll" NormalICDF
            try "$width" "$found/bin/Orvanth.Core.Math.Shield.dll" SafeNormalICDF
        done ;;
    try-nupkg)
        for width in 64 32; do
            unpack "$2"
            try "$width" "$work/unpacked/runtimes/${rid[$width]}/native/Orvanth.Core.Math.Shield.dll" SafeNormalICDF
        done ;;
    *) sed -n '2,5s/^# \{0,1\}//p' "$0"; exit 2 ;;
esac
