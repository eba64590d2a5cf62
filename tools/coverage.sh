#!/usr/bin/env bash
# Counts the lines and branches of src/ that the test programs run, and compares what is left with
# tests/coverage/uncovered.tsv.
#   tools/coverage.sh            builds the preset coverage, runs the tests, judges; five to ten minutes
#   tools/coverage.sh --judge    judges the counts of the run before
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "${1:-}" != --judge ]; then
    tools/install_packages.sh coverage
    mkdir -p build
    cmake --preset coverage >build/coverage.log 2>&1 || { cat build/coverage.log; exit 1; }
    # The programs; the tests of tools and of installed trees run other builds.
    mapfile -t programs < <(ctest --preset coverage -N -R '_test$' | sed -n 's/^ *Test *#[0-9]*: //p')
    cmake --build --preset coverage --target "${programs[@]}"
    find build/coverage -name '*.gcda' -delete
    OPENBLAS_NUM_THREADS=1 ctest --preset coverage -j "$(nproc)" -R '_test$'
fi

/usr/bin/python3 tests/coverage/judge.py build/coverage
