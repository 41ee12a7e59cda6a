#!/usr/bin/env bash
# Configures (once) and builds into build/. Used by test.sh and demo.sh.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build"
if [ ! -f "$build/build.ninja" ]; then
    cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake --build "$build" -j2
