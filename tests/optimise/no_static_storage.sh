#!/usr/bin/env bash
# Exit 1 if an object file among the arguments has a variable in static storage. Between calls, and between threads,
# the minimiser may keep nothing outside the state of the minimisation.
set -euo pipefail
[ $# -ge 2 ] || { echo "usage: no_static_storage.sh OBJECTS, how many objects"; exit 2; }
count=${!#}
objects=("${@:1:$#-1}")
status=0
[ ${#objects[@]} -eq "$count" ] || { echo "${#objects[@]} object files instead of $count: ${objects[*]}"; status=1; }
for object in "${objects[@]}"; do
    symbols=$(nm "$object")
    grep -q ' T ' <<<"$symbols" || { echo "$object has no function; is it the right file?"; status=1; }
    if found=$(grep -E ' [bBdDgGsSC] ' <<<"$symbols"); then
        echo "$object keeps variables in static storage:"; echo "$found"; status=1
    fi
done
exit $status
