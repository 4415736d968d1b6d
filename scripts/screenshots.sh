#!/usr/bin/env bash
# Renders every screen state from fixture data to PNG files (default: build/screenshots).
set -euo pipefail
cd "$(dirname "$0")/.."
out=${1:-build/screenshots}
export CCACHE_BASEDIR="$PWD/.." CCACHE_NOHASHDIR=1
cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc)" --target quillbay-screenshots
mkdir -p "$out"
QT_QPA_PLATFORM=offscreen build/default/tools/screenshots/quillbay-screenshots "$out"
