#!/usr/bin/env bash
# Deletes a generated derived data tree of about 100,000 files through the cleanup's
# guarded deletion, and an identical copy with `rm -rf`, in one run; prints both times
# and their ratio.
#
#   cmake --preset default && cmake --build --preset default --target xcode_cleanup_delete_bench
#   bench/xcode_cleanup/delete_vs_rm.sh [build/default] [projects] [folders] [files]
set -euo pipefail

build=${1:-build/default}
projects=${2:-20}
folders=${3:-50}
files=${4:-100}
bench="$build/bench/xcode_cleanup/xcode_cleanup_delete_bench"
[[ -x $bench ]] || { echo "build $bench first" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Each project is a derived data folder "Name-hash" with an info.plist, module caches and
# many small object files, as a build leaves them.
make_tree() {
    local dd=$1/Library/Developer/Xcode/DerivedData
    mkdir -p "$dd"
    for ((p = 0; p < projects; p++)); do
        local project="$dd/Project_$p-$(printf '%028x' "$p")"
        mkdir -p "$project"
        printf '<?xml version="1.0"?><plist version="1.0"><dict><key>WorkspacePath</key><string>/src/P%d.xcodeproj</string></dict></plist>' "$p" >"$project/info.plist"
        for ((f = 0; f < folders; f++)); do
            local folder="$project/Build/Intermediates.noindex/Target$f.build/Objects-normal/arm64"
            mkdir -p "$folder"
            (cd "$folder" && for ((i = 0; i < files; i++)); do printf 'object %d %d %d\n' "$p" "$f" "$i" >"o$i.o"; done)
        done
    done
}

make_tree "$work/a"
cp -a "$work/a" "$work/b"
count=$(find "$work/a/Library/Developer/Xcode/DerivedData" -type f | wc -l)
sync

ours_ms=$("$bench" "$work/a/Library/Developer")
start=$(date +%s%N)
rm -rf "$work/b/Library/Developer/Xcode/DerivedData/"*
rm_ms=$((($(date +%s%N) - start) / 1000000))

left=$(find "$work/a/Library/Developer/Xcode/DerivedData" -mindepth 1 | wc -l)
[[ $left -eq 0 ]] || { echo "guarded deletion left $left items" >&2; exit 1; }
echo "files: $count"
echo "guarded deletion (measure + two checks + remove): ${ours_ms} ms"
echo "rm -rf: ${rm_ms} ms"
awk -v a="$ours_ms" -v b="$rm_ms" 'BEGIN { if (b > 0) printf "ratio (ours / rm -rf): %.2f\n", a / b }'
