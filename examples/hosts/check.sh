#!/usr/bin/env bash
# Runs a program and compares what it prints with what its source says that it prints.
#   check.sh SOURCE COMMAND...
set -euo pipefail
source=$1; shift
said=$(sed -n '/prints:$/,$p' "$source" | sed -e 1d -e '/^\*\/$/d' -e '/^"""$/d' -e '/^")$/d')
printed=$("$@")
if [ "$said" != "$printed" ]; then
    echo "$source does not print what it says:"; diff <(echo "$said") <(echo "$printed"); exit 1
fi
