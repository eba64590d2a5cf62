#!/usr/bin/env bash
# Installs what is missing for building, testing and the tour. Needs root only if something is missing.
#   tools/install_packages.sh SET        one of the sets below
set -euo pipefail
cd "$(dirname "$0")/.."

declare -A sets
sets[compile]="g++ gfortran cmake ninja-build ccache python3 dpkg-dev patch ca-certificates libboost-dev libopenblas-dev
               liblapacke-dev"
sets[compile_tests]="${sets[compile]} libgtest-dev nlohmann-json3-dev"
for_programs="python3-numpy python3-matplotlib python3-mpmath"
sets[build]="${sets[compile]} $for_programs"
sets[tour]="${sets[build]} python3-dev"
# llvm-14 gives names to the frames that the sanitizers report; what is left standing on purpose is known by its name.
sets[check]="${sets[compile_tests]} $for_programs googletest clang-14 libclang-rt-14-dev llvm-14 clang-format clang-tidy
             pkg-config binutils"
sets[coverage]="${sets[check]}"
sets[hosts]="${sets[check]} python3-dev python3-pytest python3-hypothesis python3-pip python3-pandas python3-scipy
             python3-dask python3-distributed
             mono-mcs mono-runtime nunit-console libnunit-framework2.6.3-cil
             r-base-core r-base-dev r-cran-testthat"
sets[bench]="${sets[build]} libbenchmark-dev libgsl-dev r-mathlib r-base-core python3-scipy valgrind"
sets[package]="${sets[hosts]} debhelper lintian"
sets[windows]="${sets[build]} g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix gfortran-mingw-w64-x86-64-posix
               gfortran-mingw-w64-i686-posix wine wine64 debootstrap googletest nlohmann-json3-dev"
sets[browser]="nodejs chromium-headless-shell"
# Other packages of nodejs than Debian's bring npm with them.
command -v npm >/dev/null || sets[browser]+=" npm"
sets[docs]="${sets[build]} python3-sphinx furo python3-myst-parser python3-sphinx-copybutton python3-sphinx-inline-tabs
            libjs-mathjax python3-scipy"
sets[site]="${sets[hosts]} ${sets[docs]} ${sets[browser]}"

if [ -z "${1:-}" ] || [ -z "${sets[$1]:-}" ]; then
    echo "install_packages.sh: '${1:-}' is no set of packages; give one of: ${!sets[*]}" >&2
    exit 2
fi
read -r -d '' -a wanted <<<"${sets[$1]}" || true

stop() { printf 'install_packages.sh: %s\n' "$@" >&2; exit 1; }

# A full disk shows in many ways; one question at the start says it plainly.
free=$(df -Pk . | awk 'NR == 2 { print int($4 / 1024) }')
[ "$free" -ge 1500 ] || stop "only $free MB are free in $PWD; a build needs 1500 MB. Free some space and start again."

if ! command -v dpkg-query >/dev/null; then
    stop "this machine does not have Debian's package tools, so nothing can be installed here." \
         "Use Debian 12, in a container for example, or install what these packages contain yourself: ${wanted[*]}," \
         "and build by hand: cmake --preset dev && cmake --build --preset dev && ctest --preset dev"
fi
missing=()
for package in "${wanted[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
done
if [ ${#missing[@]} -gt 0 ]; then
    sudo=()
    if [ "$(id -u)" != 0 ]; then
        command -v sudo >/dev/null || stop "these packages are missing and only root can install them: ${missing[*]}" \
            "Ask the administrator for: apt-get install ${missing[*]}"
        sudo=(sudo)
    fi
    echo "== installing ${#missing[@]} packages: ${missing[*]}"
    "${sudo[@]}" apt-get update -qq ||
        stop "apt-get update failed. Is there a network? These packages are missing: ${missing[*]}"
    DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
        stop "apt-get could not install: ${missing[*]}" \
             "The lines above say why. The names are those of Debian 12; this is $(. /etc/os-release && echo "$PRETTY_NAME")."
fi
tools/fetch_lbfgsb.sh ||
    stop "the sources of L-BFGS-B could not be fetched; without network copy the folder third_party/lbfgsb from another" \
         "machine where tools/fetch_lbfgsb.sh ran."
