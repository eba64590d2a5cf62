#!/usr/bin/env bash
# What tools/install_packages.sh says where it cannot work: one sentence that names what is missing and what to do.
# Programs of the system are replaced by others in a folder ahead of PATH.
#   set_up_errors.sh SOURCE_TREE
set -euo pipefail
cd "$1"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0

replace() { # <program> <what it does>
    printf '#!/bin/sh\n%s\n' "$2" >"$scratch/bin/$1"
    chmod +x "$scratch/bin/$1"
}
says() { # <case> <part of the message>
    if PATH="$scratch/bin:$PATH" tools/install_packages.sh build >"$scratch/log" 2>&1; then
        echo "$1: the script ends well"; failed=1
    elif ! grep -qF "$2" "$scratch/log"; then
        echo "$1: the message does not say '$2':"; cat "$scratch/log"; failed=1
    else
        echo "$1: $(head -1 "$scratch/log")"
    fi
    rm -f "$scratch"/bin/*
}
mkdir "$scratch/bin"

replace df 'echo "Filesystem 1024-blocks Used Available Capacity Mounted on"; echo "disk 10 9 1 99% /"'
says "full disk" "Free some space"

replace dpkg-query 'exit 1'
replace id 'echo 1000'
replace sudo 'exit 1'
says "no network" "Is there a network?"

# Without sudo: a PATH of links to all programs but that one.
mkdir "$scratch/all"
for folder in /usr/bin /bin; do ln -sf "$folder"/* "$scratch/all" 2>/dev/null || true; done
rm -f "$scratch/all/sudo" "$scratch/all/id" "$scratch/all/dpkg-query"
replace dpkg-query 'exit 1'
replace id 'echo 1000'
PATH="$scratch/all" says "no root" "only root can install them"

rm -f "$scratch/all/dpkg-query"
PATH="$scratch/all" says "no Debian" "Use Debian 12"
exit $failed
