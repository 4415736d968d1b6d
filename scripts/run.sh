#!/usr/bin/env bash
# Installs what is missing, builds, starts the reference services on loopback with the
# bundled sample data, and opens Quillbay against them. The services stop with Quillbay.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
export CCACHE_BASEDIR="$PWD/.." CCACHE_NOHASHDIR=1
cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc)" --target quillbay $(test -f services/main.cpp && echo quillbay-services)

services_pid=
if [ -x build/default/services/quillbay-services ]; then
    data=$(mktemp -d)
    build/default/services/quillbay-services import --sample resources/sample-catalog --output "$data" \
        || echo "warning: the catalog sample could not be imported" >&2
    build/default/services/quillbay-services serve --data "$data" --port 8765 &
    services_pid=$!
    trap 'kill $services_pid 2>/dev/null || true' EXIT
fi
build/default/app/quillbay "$@"
