#!/usr/bin/env bash
# The manual as pages: formulas, every program that a page shows, the pages with warnings as errors, and a browser's view.
#   docs/check.sh [PRESET]      default: dev
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD preset=${1:-dev}
build=$root/build/$preset work=$root/build/docs
export OPENBLAS_NUM_THREADS=1
mkdir -p "$work"
tools/install_packages.sh site

echo "== formulas and texts"
/usr/bin/python3 tests/site/tex_test.py
/usr/bin/python3 tests/site/prose_test.py

echo "== libraries and language packages"
cmake --preset "$preset" -DORVANTH_PYTHON=ON >"$work/cmake.log" 2>&1 || { cat "$work/cmake.log"; exit 1; }
cmake --build --preset "$preset" --target core_math core_math_shield orvanth_python
rm -rf "$work/dotnet"
hosts/dotnet/build.sh "$build/src" "$work/dotnet"
mkdir -p "$work/r"
ORVANTH_INCLUDE=$root/include ORVANTH_LIB=$build/src R CMD INSTALL --no-docs --no-test-load --library="$work/r" hosts/r \
    >"$work/r.log" 2>&1 || { cat "$work/r.log"; exit 1; }

echo "== programs"
tests/site/programs_test.py "$work/programs" "$build/src" "$build/python" "$work/dotnet" "$work/r"

echo "== pages"
./manual "$build/src/libOrvanth.Core.Math.so"
/usr/bin/python3 tests/site/pages_test.py "$work/html"

echo "== in a browser"
tests/browser/check.sh --site "$work/html"
