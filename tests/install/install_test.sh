#!/usr/bin/env bash
# Installs the build into a temporary prefix and starts the installed program offscreen
# from an unrelated folder: it must find everything it needs without the source tree.
set -euo pipefail
build=$1
prefix=$(mktemp -d)
trap 'kill "$pid" 2>/dev/null || true; rm -rf "$prefix"' EXIT
pid=

cmake --install "$build" --prefix "$prefix" >/dev/null

expect() { [ -e "$prefix/$1" ] || { echo "missing after install: $1"; exit 1; }; }
expect bin/quillbay
expect share/applications/app.quillbay.Quillbay.desktop
for size in 16 32 48 128 256 512; do expect "share/icons/hicolor/${size}x${size}/apps/app.quillbay.Quillbay.png"; done
expect share/icons/hicolor/scalable/apps/app.quillbay.Quillbay.svg
grep -q '^Exec=quillbay$' "$prefix/share/applications/app.quillbay.Quillbay.desktop"
if [ -f "$build/services/quillbay-services" ]; then expect bin/quillbay-services; fi

cd "$(mktemp -d)"
export QT_QPA_PLATFORM=offscreen HOME="$prefix/home" XDG_CONFIG_HOME="$prefix/home/.config"
mkdir -p "$HOME"
"$prefix/bin/quillbay" >"$prefix/out.log" 2>&1 &
pid=$!
# The program keeps running without a visible desktop; it must still be alive and
# must not have complained about missing resources.
sleep 3
if ! kill -0 "$pid" 2>/dev/null; then
    echo "the installed program exited early:"; cat "$prefix/out.log"; exit 1
fi
if grep -Ei 'cannot|could not|failed to load|not found' "$prefix/out.log"; then
    echo "the installed program reported a problem"; exit 1
fi
echo "installed program runs from $(pwd)"
