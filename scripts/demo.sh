#!/usr/bin/env bash
# From a fresh clone: installs what is missing, builds, and runs the demo of the whole
# system against the bundled reference server on 127.0.0.1.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/setup.sh"
bash "$root/scripts/build.sh"
exec "$root/build/bin/morvane" demo "$@"
