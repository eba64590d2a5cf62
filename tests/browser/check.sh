#!/usr/bin/env bash
# Opens pages in headless Chromium and checks them.
#   tests/browser/check.sh [FILE_OR_URL ...]      default: the page of the tour, which is made first
#   tests/browser/check.sh --site FOLDER          the pages of the manual in a folder, and their search
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)

"$root/tools/install_packages.sh" browser
# The packages of npm are installed once for each state of the lock file.
lock=$here/package-lock.json
if ! cmp -s "$lock" "$here/node_modules/.installed.json"; then
    echo "== installing the packages of npm"
    (cd "$here" && npm ci --no-audit --no-fund --loglevel=error)
    cp "$lock" "$here/node_modules/.installed.json"
fi
echo "== the checker tells of faults"
node "$here/self_test.mjs"

if [ "${1:-}" = --site ]; then
    exec node "$here/site.mjs" "$2"
fi
if [ $# -eq 0 ]; then
    "$root/tour"
    set -- "$root/tour-report.html"
    node "$here/tour_page.mjs" "$1"
fi
node "$here/check_page.mjs" --screenshots "$root/build/screenshots" "$@"
