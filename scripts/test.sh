#!/usr/bin/env bash
# From a fresh clone: installs what is missing, builds, runs every test, then the
# sanitizer build's tests and the fuzz targets.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/setup.sh"
bash "$root/scripts/build.sh"
cd "$root/build"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j2 --timeout 600
# The same tests under the sanitizers, and the fuzz targets for a few seconds each.
bash "$root/scripts/sanitize.sh"
