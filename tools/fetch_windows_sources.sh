#!/usr/bin/env bash
# Brings what the build for Windows is made of besides the library itself, from Debian's source packages:
# reference LAPACK to third_party/lapack, and musl, whose mathematical functions are taken, to third_party/musl.
#   tools/fetch_windows_sources.sh    does nothing if the sources are there
set -euo pipefail
cd "$(dirname "$0")/.."

fetch() { # <folder> <package=version> <SHA-256 of the original tarball>
    [ ! -e "third_party/$1" ] || return 0
    echo "== fetching the sources of $2 into third_party/$1"
    tools/debian_source.sh "$2" "$3" "third_party/$1"
}
fetch lapack lapack=3.11.0-2 4b9ba79bfd4921ca820e83979db76ab3363155709444a787979e81c22285ffa9
fetch musl musl=1.2.3-1 7d5b0b6062521e4627e099e4c9dc8248d32a30285e959b7eecaa780cf8cfd4a4
