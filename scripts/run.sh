#!/bin/sh
# Installs what is missing, builds Velmora and starts it from the build's
# output folder (a complete install folder). Arguments are passed on, so
# "scripts/run.sh /debug" starts a run with the debug log.
set -eu

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${VELMORA_BUILD_DIR:-$ROOT/build}

"$ROOT/scripts/setup.sh"

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ]; then
    echo "No display found: starting Velmora on a virtual X display."
    exec xvfb-run -a "$BUILD_DIR/bin/velmora" "$@"
fi
exec "$BUILD_DIR/bin/velmora" "$@"
