#!/usr/bin/env bash
# clang-tidy's rule for names (.clang-tidy) over src/ without what is compiled for Windows alone. A file is looked at
# again only when it, a header of src/ or the rule has changed; the marks of clean files are in build/names.
set -euo pipefail
cd "$(dirname "$0")/.."

mkdir -p build/names
[ -e build/clang/compile_commands.json ] || cmake --preset clang >build/clang.log 2>&1 || { cat build/clang.log; exit 1; }
common=$(git ls-files 'src/*.hpp' 'src/*.inc' .clang-tidy | xargs cat | sha256sum)

look_at() { # <file> <sum of what all files share>
    local mark
    mark=build/names/$(echo "$2" | cat - "$1" | sha256sum | cut -c1-32)
    [ ! -e "$mark" ] || return 0
    local found
    found=$(clang-tidy-14 -p build/clang --quiet --checks='-*,readability-identifier-naming' "$1" 2>/dev/null |
            grep -E 'readability-identifier-naming|error:' || true)
    if [ -z "$found" ]; then touch "$mark"; else echo "$found"; fi
}
export -f look_at

found=$(git ls-files 'src/*.cpp' ':!src/windows' | xargs -P "$(nproc)" -I{} bash -c 'look_at "$@"' _ {} "$common" |
        sed "s,^$PWD/,," | sort -u)
[ -z "$found" ] || { echo "names that break the rule of .clang-tidy:"; echo "$found"; exit 1; }
echo "names: clean"
