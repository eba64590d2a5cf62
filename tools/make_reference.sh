#!/usr/bin/env bash
# The manual as pages: build/reference/html/index.html, made by Doxygen from headers and docs.
set -euo pipefail
cd "$(dirname "$0")/.."
command -v doxygen >/dev/null || { echo "make_reference.sh: doxygen is missing; apt-get install doxygen" >&2; exit 1; }
mkdir -p build
doxygen docs/Doxyfile
echo "build/reference/html/index.html"
