#!/usr/bin/env bash
# Installs what is missing for building, testing and the tour. Needs root only if something is missing.
#   tools/install_packages.sh build|check|bench
set -euo pipefail
cd "$(dirname "$0")/.."

build=(g++ gfortran cmake ninja-build ccache python3 python3-numpy python3-matplotlib python3-mpmath dpkg-dev patch ca-certificates
       libboost-dev libopenblas-dev liblapacke-dev)
check=(libgtest-dev googletest clang-format nlohmann-json3-dev pkg-config binutils)
bench=(libbenchmark-dev libgsl-dev r-mathlib r-base-core python3-scipy valgrind)

case "${1:-build}" in
    build) wanted=("${build[@]}") ;;
    check) wanted=("${build[@]}" "${check[@]}") ;;
    bench) wanted=("${build[@]}" "${bench[@]}") ;;
    *) echo "install_packages.sh: '$1' is no set of packages; give build, check or bench" >&2; exit 2 ;;
esac

missing=()
for package in "${wanted[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
done
if [ ${#missing[@]} -gt 0 ]; then
    sudo=(); [ "$(id -u)" = 0 ] || sudo=(sudo)
    echo "== installing ${#missing[@]} packages: ${missing[*]}"
    "${sudo[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
tools/fetch_lbfgsb.sh
