#!/usr/bin/env bash
# Builds the .NET assembly with Mono, runs its tests and its programs, makes the package and runs a program against it.
#   hosts/dotnet/check.sh [BUILD_FOLDER]      default: build/dev, built if it has no libraries
set -euo pipefail
cd "$(dirname "$0")/../.."
root=$PWD
tools/install_packages.sh hosts
build=${1:-build/dev}
if [ ! -e "$build/src/libOrvanth.Core.Math.Shield.so" ]; then
    [ $# -eq 0 ] || { echo "check.sh: there are no libraries in $build/src" >&2; exit 1; }
    cmake --preset dev >build/dev-dotnet.log 2>&1 || { cat build/dev-dotnet.log; exit 1; }
    cmake --build --preset dev --target core_math_shield
fi
build=$(cd "$build" && pwd)
out=$root/build/dotnet nunit=/usr/lib/cli/nunit.framework-2.6.3/nunit.framework.dll
export OPENBLAS_NUM_THREADS=1
rm -rf "$out"

hosts/dotnet/build.sh "$build/src" "$out/lib"
cp "$nunit" "$out/lib"
mcs -nologo -warnaserror -target:library -out:"$out/lib/Tests.dll" -r:"$out/lib/Orvanth.Core.Math.dll" -r:"$nunit" hosts/dotnet/tests/*.cs
ORVANTH_ROOT=$root nunit-console -nologo -noshadow -noresult -nodots "$out/lib/Tests.dll" >"$out/tests.log" 2>&1 ||
    { cat "$out/tests.log"; exit 1; }
grep '^Tests run' "$out/tests.log"
# A runner that finds no tests succeeds too.
grep -qE '^Tests run: [1-9][0-9]+,' "$out/tests.log"

/usr/bin/python3 hosts/dotnet/tests/new_exports.py "$out/further"
"$out/further/build.sh" none "$out/further/built"
echo "further exports would find their places"

hosts/dotnet/package.py "$out/lib" "$out/package" "linux-x64=$out/lib"
unpacked=$out/unpacked
mkdir "$unpacked"
/usr/bin/python3 -m zipfile -e "$out"/package/*.nupkg "$unpacked"
for program in survive dunnett; do
    source=examples/hosts/$program.cs
    mcs -nologo -warnaserror -out:"$out/lib/$program.exe" -r:"$out/lib/Orvanth.Core.Math.dll" "$source"
    examples/hosts/check.sh "$source" mono "$out/lib/$program.exe"
    mkdir -p "$out/program"
    cp "$out/lib/$program.exe" "$out/program"
    MONO_PATH=$unpacked/lib/netstandard2.0 examples/hosts/check.sh "$source" mono "$out/program/$program.exe"
done
echo "the programs print what they say, beside the libraries and out of the package"

# Beside runtimes/RID/native, as a published program lies.
cp -r "$unpacked/runtimes" "$unpacked"/lib/netstandard2.0/* "$out/program"
examples/hosts/check.sh examples/hosts/survive.cs mono "$out/program/survive.exe"

# Where the system looks.
rm -r "$out/program/runtimes"
LD_LIBRARY_PATH=$build/src examples/hosts/check.sh examples/hosts/survive.cs mono "$out/program/survive.exe"

# Without the library the message lists every place.
if mono "$out/program/survive.exe" >"$out/missing.log" 2>&1; then
    echo "a program without the library succeeded"; exit 1
fi
name=libOrvanth.Core.Math.Shield.so
for place in "$out/program/$name: no such file" "$out/program/$name.1: no such file" \
             "$out/program/runtimes/linux-x64/native/$name: no such file" "  $name: " "  $name.1: "; do
    grep -qF "$place" "$out/missing.log" || { echo "the message does not name '$place':"; cat "$out/missing.log"; exit 1; }
done
echo "the library is found in every place, and its absence is told"
