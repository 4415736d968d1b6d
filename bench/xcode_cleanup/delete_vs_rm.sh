#!/usr/bin/env bash
# Deletes a generated derived data tree of about 100,000 files through the cleanup's
# guarded deletion (targets collected from the selection, measured, checked twice,
# removed), and an identical copy with `rm -rf`, in one run; prints both times and the
# ratio. Both copies are written before either is timed, so both start warm in the cache.
#
#   cmake --preset default && cmake --build --preset default --target xcode_cleanup_delete_bench
#   bench/xcode_cleanup/delete_vs_rm.sh [build/default] [files]
set -euo pipefail

build=${1:-build/default}
files=${2:-100000}
bench="$build/bench/xcode_cleanup/xcode_cleanup_delete_bench"
[[ -x $bench ]] || { echo "build $bench first" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$bench" generate "$work/a" "$files" >/dev/null
cp -a "$work/a" "$work/b"
dd=Library/Developer/Xcode/DerivedData
count=$(find "$work/a/$dd" -type f | wc -l)
sync

# Each side runs once in each order, and the times are added, so neither profits from
# going second (a quieter journal, a warmer cache).
"$bench" generate "$work/c" "$files" >/dev/null
cp -a "$work/c" "$work/d"
sync
time_rm() {
    local start=$(date +%s%N)
    rm -rf "$1/$dd/"*
    echo $((($(date +%s%N) - start) / 1000000))
}
ours_first=$("$bench" delete "$work/a" 2>/dev/null)
rm_second=$(time_rm "$work/b")
sync
rm_first=$(time_rm "$work/d")
ours_second=$("$bench" delete "$work/c" 2>/dev/null)
ours_ms=$((ours_first + ours_second))
rm_ms=$((rm_first + rm_second))

left=$(find "$work/a/$dd" "$work/c/$dd" -mindepth 1 | wc -l)
[[ $left -eq 0 ]] || { echo "guarded deletion left $left entries" >&2; exit 1; }
echo "files: $count"
echo "guarded deletion: ${ours_ms} ms (${ours_first} first, ${ours_second} second)"
echo "rm -rf: ${rm_ms} ms (${rm_first} first, ${rm_second} second)"
awk -v a="$ours_ms" -v b="$rm_ms" 'BEGIN { if (b > 0) printf "ratio (guarded / rm -rf): %.2f\n", a / b }'
