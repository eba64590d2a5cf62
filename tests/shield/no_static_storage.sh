#!/usr/bin/env bash
# The minimiser's objects hold no variable of the process: no symbol in data, bss or common storage. That is why
# minimisations with different handles may run at the same time.
#   no_static_storage.sh "OBJECTS;..."
set -euo pipefail
IFS=';' read -ra objects <<<"$1"
seen=0
for object in "${objects[@]}"; do
    case "$object" in
        *lbfgsb*|*/optimise/*) seen=$((seen + 1)) ;;
        *) continue ;;
    esac
    kept=$(nm "$object" | awk '$2 ~ /^[bBdDcC]$/' || true)
    [ -z "$kept" ] || { echo "$object keeps:"; echo "$kept"; exit 1; }
done
[ "$seen" -ge 2 ] || { echo "the minimiser's objects were not found"; exit 1; }
echo "$seen objects, none of which keeps anything"
