#!/usr/bin/env bash
# From a fresh clone: installs what is missing, builds, runs every test, builds a host
# against the installed component, then the sanitizer build's tests and the fuzz targets.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/setup.sh"
bash "$root/scripts/build.sh"
cd "$root/build"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j2 --timeout 600
# The installed component, as a host outside this tree builds against it.
bash "$root/scripts/consume.sh" "$root/build"
# The same tests under the sanitizers, and the fuzz targets for a few seconds each.
bash "$root/scripts/sanitize.sh"
