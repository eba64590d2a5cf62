#!/usr/bin/env bash
# Builds the R package against a built library, checks it with R CMD check, and runs the golden rows through it.
#   hosts/r/check.sh [BUILD_DIR]      default: build/dev
set -euo pipefail
cd "$(dirname "$0")/../.."
root=$PWD
build=$(realpath -m "${1:-build/dev}")
tools/install_packages.sh hosts
if [ ! -e "$build/src/libOrvanth.Core.Math.Shield.so" ]; then
    cmake --preset dev >build/dev-r.log 2>&1 || { cat build/dev-r.log; exit 1; }
    cmake --build --preset dev --target core_math_shield
fi
export ORVANTH_INCLUDE=$root/include ORVANTH_LIB=$build/src OPENBLAS_NUM_THREADS=1
work=$build/r
rm -rf "$work"
mkdir -p "$work/no-network/src/contrib"
cd "$work"
# Nothing here asks the network: all repositories are an empty folder.
touch no-network/src/contrib/PACKAGES
cat >profile.R <<PROFILE
options(repos = c(CRAN = "file://$work/no-network", BioCsoft = "file://$work/no-network",
                  BioCann = "file://$work/no-network", BioCexp = "file://$work/no-network"))
PROFILE
export R_PROFILE=$work/profile.R _R_CHECK_SYSTEM_CLOCK_=0 _R_CHECK_CRAN_INCOMING_=false
R CMD build --no-manual "$root/hosts/r" >build.log 2>&1 || { cat build.log; exit 1; }
R CMD check --no-manual orvanth_*.tar.gz >check.log 2>&1 || { cat check.log; exit 1; }
grep -v ' OK$' check.log
grep -q '^Status: OK$' check.log || { echo "R CMD check is not clean, see $work"; exit 1; }
export R_LIBS=$work/orvanth.Rcheck
Rscript "$root/hosts/r/golden.R" "$root"
"$root/examples/hosts/check.sh" "$root/examples/hosts/survive.R" Rscript "$root/examples/hosts/survive.R"
"$root/examples/hosts/check.sh" "$root/examples/hosts/dunnett.R" Rscript "$root/examples/hosts/dunnett.R"
