#!/usr/bin/env bash
# What is checked of the sources themselves.
set -euo pipefail
cd "$(dirname "$0")/.."
status=0

mapfile -t sources < <(git ls-files '*.cpp' '*.hpp' | grep -v '^third_party/')
clang-format --dry-run --Werror "${sources[@]}" || {
    echo "format: run clang-format -i on the files named above"; status=1; }

/usr/bin/python3 tools/generate_interface.py --check || status=1
/usr/bin/python3 tools/generate_hosts.py --check || status=1

# Failure is raised in one place, and caught in one place.
hits=$(grep -nE '\bthrow\b|\berrno *=[^=]' -r src --include='*.cpp' --include='*.hpp' | grep -vE '^src/(frame/failure|shield/(guard|each|last_failure))\.' |
       grep -vE '^[^:]+:[0-9]+: *//' || true)
[ -z "$hits" ] || { echo "throw and errno belong in frame/failure and the shield's guard; call a Raise function there:"; echo "$hits"; status=1; }

# Platform matters stay in frame/, those of Windows alone in windows/.
hits=$(grep -nE '#include <(unistd|sys/|dlfcn|pthread|windows)' -r src --include='*.cpp' --include='*.hpp' | grep -vE '^src/(frame|windows)/' || true)
[ -z "$hits" ] || { echo "platform headers belong in frame/ or windows/:"; echo "$hits"; status=1; }

# The templates of numbers with many digits are compiled once: each file that includes them takes seconds more.
hits=$(grep -rn '#include <boost/multiprecision' src tests --include='*.cpp' --include='*.hpp' | grep -v '^tests/support/many_digits' || true)
[ -z "$hits" ] || { echo "include support/many_digits.hpp and link test_oracles:"; echo "$hits"; status=1; }

# No file over 400 lines without a reason: generated tables are data.
while read -r lines file; do
    [ "$lines" -le 400 ] || { echo "$file has $lines lines; split it at 400"; status=1; }
done < <(git ls-files 'src/*.cpp' 'src/*.hpp' 'tests/*.cpp' 'tools/*' | xargs wc -l | grep -v ' total$')

# A text stands by itself: it speaks of no paper that its reader lacks.
hits=$(git ls-files | grep -vE '^(third_party/|tests/data/|THIRD_PARTY_NOTICES|tools/check_sources)' |
       xargs -d '\n' grep -nIiP '(?<!ffp-)\bcontracts?\b' || true)
[ -z "$hits" ] || { echo "say 'interface' or the fact itself; name no paper that a reader does not have:"; echo "$hits"; status=1; }

# Tools, tests and benchmarks import no example; what they share is in tools/ or tests/support.
hits=$(git ls-files 'tools/*.py' 'tests/*.py' 'benchmarks/*.py' 'hosts/*.py' | xargs -d '\n' grep -nE 'examples.*tour' || true)
[ -z "$hits" ] || { echo "what an example shares with tools and tests belongs in tools/:"; echo "$hits"; status=1; }

/usr/bin/python3 tools/check_names.py || status=1

exit $status
