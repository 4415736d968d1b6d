#!/usr/bin/env bash
# Runs every fuzz target for a bounded time (default 60 s each) with clang's libFuzzer,
# ASan and UBSan. New crashes land in build/fuzz/crashes/<target>/; once fixed, copy the
# input into fuzz/corpus/<target>/ so the test suite replays it from then on.
#   scripts/fuzz.sh [seconds per target] [target ...]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
seconds=${1:-60}
shift || true
export CCACHE_BASEDIR="$PWD/.." CCACHE_NOHASHDIR=1
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc)"

targets=("$@")
if ((${#targets[@]} == 0)); then
    read -r -a targets <<<"$(sed -n 's/^set(QUILLBAY_FUZZ_TARGET_NAMES \(.*\))$/\1/p' fuzz/FuzzTargetList.cmake)"
fi
status=0
for t in "${targets[@]}"; do
    work=build/fuzz/work/$t crashes=build/fuzz/crashes/$t
    mkdir -p "$work" "$crashes"
    echo "== $t for ${seconds}s"
    if ! build/fuzz/fuzz/fuzz_"$t" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 \
        -artifact_prefix="$crashes/" "$work" "fuzz/corpus/$t" 2>"build/fuzz/$t.log"; then
        echo "!! $t found a problem: see build/fuzz/$t.log and $crashes/"; status=1
    fi
    tail -n 2 "build/fuzz/$t.log"
done
exit $status
