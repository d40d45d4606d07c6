#!/bin/sh
# Installs what is missing, builds Velmora with its tests and benchmarks (warnings
# as errors), and runs the whole test suite headless. Ends with CTest's summary.
set -eu

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${VELMORA_BUILD_DIR:-$ROOT/build}

# Warnings are errors here: the build must stay free of them.
VELMORA_WARNINGS_AS_ERRORS=${VELMORA_WARNINGS_AS_ERRORS:-ON} "$ROOT/scripts/setup.sh"

# Windows are drawn offscreen; a virtual X display stands by for anything that
# needs a real one.
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
cd "$BUILD_DIR"
if [ -z "${DISPLAY:-}" ] && command -v xvfb-run >/dev/null 2>&1; then
    exec xvfb-run -a ctest -j2 --output-on-failure
fi
exec ctest -j2 --output-on-failure
