#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the benchmarks need.
# Safe to run again: it installs only what is missing.
set -euo pipefail

packages=(
    build-essential cmake ninja-build ccache pkg-config clang-format
    qt6-base-dev qt6-base-dev-tools qt6-svg-dev qt6-httpserver-dev qt6-websockets-dev
    qt6-image-formats-plugins libqt6svg6 breeze-icon-theme libgl-dev
    libsimdjson-dev libplist-dev nlohmann-json3-dev libssl-dev openssl
    libgtest-dev libgmock-dev googletest libbenchmark-dev hyperfine imagemagick
)

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
    echo "Installing: ${missing[*]}"
    sudo_cmd=()
    [ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
    "${sudo_cmd[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
