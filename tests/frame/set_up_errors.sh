#!/usr/bin/env bash
# What tools/install_packages.sh and ./package say where they cannot work: one sentence that names what is missing and what to do.
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
says() { # <case> <part of the message> [command ...]
    local what=$1 part=$2
    local command=("${@:3}")
    [ ${#command[@]} -gt 0 ] || command=(tools/install_packages.sh build)
    if PATH="$scratch/bin:$PATH" "${command[@]}" >"$scratch/log" 2>&1; then
        echo "$what: the script ends well"; failed=1
    elif ! grep -qF "$part" "$scratch/log"; then
        echo "$what: the message does not say '$part':"; cat "$scratch/log"; failed=1
    else
        echo "$what: $(head -1 "$scratch/log")"
    fi
    rm -f "$scratch"/bin/*
}
mkdir "$scratch/bin"

replace df 'echo "Filesystem 1024-blocks Used Available Capacity Mounted on"; echo "disk 10 9 1 99% /"'
says "full disk" "Free some space"

mkdir "$scratch/unpacked"
cp package "$scratch/unpacked"
says "packages outside a clone" "is no clone" "$scratch/unpacked/package"
says "packages into two folders" "one folder is expected" ./package one two

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
rm -f "$scratch/all/git"
PATH="$scratch/all" says "packages without git" "git is missing" ./package
exit $failed
