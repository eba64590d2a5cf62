#!/usr/bin/env bash
# Builds the Python package, tests it, makes the wheel, and tests the wheel as pip installs it.
#   hosts/python/check.sh [PRESET]      default: dev
set -euo pipefail
cd "$(dirname "$0")/../.."
preset=${1:-dev}
tools/install_packages.sh hosts
cmake --preset "$preset" -DORVANTH_PYTHON=ON >"build/$preset-python.log" 2>&1 || { cat "build/$preset-python.log"; exit 1; }
cmake --build --preset "$preset" --target orvanth_python
ctest --test-dir "build/$preset" -R '^python_package$' --output-on-failure
# A cluster of processes on this machine that loses a worker.
PYTHONPATH=$PWD/build/$preset/python examples/cluster/run.sh --small

wheels=build/$preset/wheels
/usr/bin/python3 tools/make_wheel.py "build/$preset/python" "$wheels"
venv=build/$preset/wheel-venv
rm -rf "$venv"
# The system's pip serves the environment.
/usr/bin/python3 -m venv --system-site-packages --without-pip "$venv"
"$venv/bin/python" -m pip install --quiet --no-index --no-deps "$wheels"/*.whl
cd /
for program in survive dunnett; do
    source=$OLDPWD/examples/hosts/$program.py
    "$OLDPWD/examples/hosts/check.sh" "$source" "$OLDPWD/$venv/bin/python" "$source"
done
"$OLDPWD/$venv/bin/python" -c 'import orvanth; assert "site-packages" in orvanth.__file__, orvanth.__file__'
echo "the wheel installs and works"
