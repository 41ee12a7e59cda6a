#!/usr/bin/env bash
# Installs the built component under a scratch prefix and builds the example host against it
# twice, through its CMake package and through pkg-config; both hosts and the installed
# programs must run from there.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null
export XDG_CONFIG_HOME=$scratch/config

"$prefix/bin/morvane" --version
"$prefix/bin/morvane-server" --help >/dev/null

cmake -S "$root/examples/host" -B "$scratch/with-cmake" -DCMAKE_PREFIX_PATH="$prefix" \
    >/dev/null
cmake --build "$scratch/with-cmake" >/dev/null
"$scratch/with-cmake/morvane-host"

pc=$(dirname "$(find "$prefix" -name morvane.pc | head -1)")
libdir=$(PKG_CONFIG_PATH=$pc pkg-config --variable=libdir morvane)
# shellcheck disable=SC2046
c++ -std=c++20 $(PKG_CONFIG_PATH=$pc pkg-config --cflags morvane) "$root/examples/host/main.cpp" \
    -o "$scratch/with-pkg-config" $(PKG_CONFIG_PATH=$pc pkg-config --libs morvane) \
    -Wl,-rpath,"$libdir"
"$scratch/with-pkg-config"
echo "consume: the installed component builds and runs both ways"
