#!/usr/bin/env bash
# A Tukey test for each of a million time stamps on a cluster of processes; see cluster.py.
#   examples/cluster/run.sh [--small]
# Takes the package orvanth that Python finds, or builds it.
set -euo pipefail
cd "$(dirname "$0")/../.."
python=/usr/bin/python3
if ! "$python" -c 'import orvanth, distributed' 2>/dev/null; then
    tools/install_packages.sh hosts
    mkdir -p build
    cmake --preset dev -DORVANTH_PYTHON=ON >build/dev-python.log 2>&1 || { cat build/dev-python.log; exit 1; }
    cmake --build --preset dev --target orvanth_python >build/dev-python.log 2>&1 || { cat build/dev-python.log; exit 1; }
    export PYTHONPATH=$PWD/build/dev/python
fi
OPENBLAS_NUM_THREADS=1 exec "$python" examples/cluster/cluster.py "$@"
