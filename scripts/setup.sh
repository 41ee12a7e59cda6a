#!/usr/bin/env bash
# Installs every Debian package that the build, the tests and the demo need.
# Idempotent; runs as root or through sudo; never asks a question.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config clang-format clang libclang-rt-14-dev
    libcurl4-openssl-dev libpugixml-dev libsqlite3-dev libsqlitecpp-dev libssl-dev zlib1g-dev libicu-dev
    libcpp-httplib-dev libcli11-dev nlohmann-json3-dev python3 python3-jsonschema
    libgtest-dev libgmock-dev libbenchmark-dev
    qt6-base-dev libgl-dev fonts-noto-cjk
    openssl ca-certificates
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then as_root=(sudo -n); fi
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -q
"${as_root[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
