#!/usr/bin/env bash
# Times a full Xcode cleanup scan against `du -s --block-size=1` on the same generated
# Developer tree, warm and (when the page cache can be dropped) cold, and checks the
# scan's total against an independent count made with find.
#
#   bench/xcode_cleanup/scan_vs_du.sh [build-dir] [files] [runs]
set -euo pipefail
BUILD=${1:-build/default}
FILES=${2:-300000}
RUNS=${3:-7}
BENCH=$BUILD/bench/xcode_cleanup/xcode_cleanup_scan_bench
[[ -x $BENCH ]] || { echo "build the target xcode_cleanup_scan_bench first ($BENCH)" >&2; exit 1; }

HOME_DIR=$(mktemp -d /var/tmp/quillbay-scan-bench.XXXXXX)
trap 'rm -rf "$HOME_DIR"' EXIT
DEV=$HOME_DIR/Library/Developer
echo "generating $FILES entries under $HOME_DIR"
"$BENCH" generate "$HOME_DIR" "$FILES" >/dev/null

# Independent count: every regular file under Xcode, each hard link where it stands,
# allocated 512-byte blocks as find reports them.
EXPECTED=$(find "$DEV/Xcode" -type f -printf '%b\n' | awk '{s += $1} END {printf "%d", s * 512}')
echo "files: $(find "$DEV" -type f | wc -l), folders: $(find "$DEV" -type d | wc -l), expected bytes: $EXPECTED"

# Prints "<wall> <cpu>" seconds of one command.
timed() {
    /usr/bin/time -o "$HOME_DIR/time" -f '%e %U %S' "$@" >/dev/null 2>&1
    awk '{printf "%.3f %.3f\n", $1, $2 + $3}' "$HOME_DIR/time"
}
median() { sort -n | awk '{a[NR] = $1} END {print a[int((NR + 1) / 2)]}'; }

can_drop() { sync && echo 3 >/proc/sys/vm/drop_caches 2>/dev/null; }

run_series() { # $1 = warm|cold, $2 = runs
    local mode=$1 runs=$2 du_w=() du_c=() sc_w=() sc_c=() i t
    for ((i = 0; i < runs; i++)); do
        [[ $mode == cold ]] && can_drop
        read -r w c < <(timed du -s --block-size=1 "$DEV"); du_w+=("$w"); du_c+=("$c")
        [[ $mode == cold ]] && can_drop
        read -r w c < <(timed "$BENCH" scan "$HOME_DIR"); sc_w+=("$w"); sc_c+=("$c")
    done
    local dw dc sw sc
    dw=$(printf '%s\n' "${du_w[@]}" | median); dc=$(printf '%s\n' "${du_c[@]}" | median)
    sw=$(printf '%s\n' "${sc_w[@]}" | median); sc=$(printf '%s\n' "${sc_c[@]}" | median)
    printf '%-5s du wall %6.3fs cpu %6.3fs | scan wall %6.3fs cpu %6.3fs | ratio wall %.2f cpu %.2f (median of %d)\n' \
        "$mode" "$dw" "$dc" "$sw" "$sc" "$(awk -v a="$sw" -v b="$dw" 'BEGIN{print a/b}')" \
        "$(awk -v a="$sc" -v b="$dc" 'BEGIN{print a/b}')" "$runs"
}

TOTAL=$("$BENCH" scan "$HOME_DIR" 2>/dev/null | awk '{print $2}')
if [[ $TOTAL != "$EXPECTED" ]]; then
    echo "MISMATCH: scan total $TOTAL, independent count $EXPECTED" >&2
    exit 1
fi
echo "scan total matches the independent count: $TOTAL bytes"
echo "load average: $(cut -d' ' -f1-3 /proc/loadavg), cores: $(nproc)"
du -s --block-size=1 "$DEV" >/dev/null # warm the caches
run_series warm "$RUNS"
if can_drop; then
    run_series cold 5
else
    echo "cold: skipped, the page cache cannot be dropped here (needs root)"
fi
