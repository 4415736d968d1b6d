#!/usr/bin/env bash
# Installs what is missing, then builds and tests the project three ways, warnings as
# errors: optimized with every screen, with AddressSanitizer and UBSan, and with the
# widgets left out (every logic library and its tests on their own).
#   scripts/test.sh            all three
#   scripts/test.sh default    one of: default, asan, nowidgets, format
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

export CCACHE_BASEDIR="$PWD/.." CCACHE_NOHASHDIR=1 CCACHE_MAXSIZE=5G
export QT_QPA_PLATFORM=offscreen
jobs=$(nproc)

check_format() {
    echo "== clang-format"
    git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run -Werror
}

run_preset() {
    local preset=$1
    echo "== $preset: configure, build, test"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" -j "$jobs"
    ctest --preset "$preset" -j "$jobs" --timeout 300
}

presets=("$@")
((${#presets[@]})) || presets=(format default nowidgets asan)
for preset in "${presets[@]}"; do
    if [ "$preset" = format ]; then check_format; else run_preset "$preset"; fi
done
echo "All test runs passed: ${presets[*]}"
