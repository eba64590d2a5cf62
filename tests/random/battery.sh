#!/usr/bin/env bash
# Long: the dieharder battery on the word stream. All of it takes an hour or two; single tests can be named.
#   tests/random/battery.sh                 all tests of dieharder
#   tests/random/battery.sh 0 1 2 15        these tests by their numbers (dieharder -l)
# Fails if a test is judged FAILED. About one in a hundred is WEAK by chance.
set -euo pipefail
cd "$(dirname "$0")/../.."

command -v dieharder >/dev/null || {
    sudo=(); [ "$(id -u)" = 0 ] || sudo=(sudo)
    "${sudo[@]}" apt-get update -qq && "${sudo[@]}" apt-get install -y -qq --no-install-recommends dieharder >/dev/null
}
cmake --preset dev >/dev/null
cmake --build --preset dev --target random_words

selected=("$@") status=0
[ ${#selected[@]} -gt 0 ] || selected=(all)
for test in "${selected[@]}"; do
    if [ "$test" = all ]; then what=(-a); else what=(-d "$test"); fi
    build/dev/tests/random/random_words 20261121 2>/dev/null | dieharder -g 200 "${what[@]}" |
        tee -a /dev/stderr | { ! grep -q FAILED; } || status=1
done
exit $status
