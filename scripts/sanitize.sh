#!/bin/sh
# Builds Velmora and its tests with AddressSanitizer and
# UndefinedBehaviorSanitizer into build-asan (or $VELMORA_ASAN_BUILD_DIR) and
# runs the whole test suite headless. Any report of either sanitizer ends the
# test that caused it with a failure; leaks are reported at each program's
# end, apart from the library-owned ones listed in sanitizer-leaks.supp.
# The packages are those of the normal build: run scripts/setup.sh once first.
set -eu

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${VELMORA_ASAN_BUILD_DIR:-$ROOT/build-asan}

JOBS=$(nproc 2>/dev/null || echo 2)
if [ ! -f "$BUILD_DIR/build.ninja" ]; then
    # Debug: the sanitizers' reports point at the right lines, and the build
    # takes less time than an optimised one.
    cmake -S "$ROOT" -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
        -DVELMORA_SANITIZE=ON -DVELMORA_BUILD_BENCH=OFF
fi
cmake --build "$BUILD_DIR" -j"$JOBS"

export ASAN_OPTIONS=halt_on_error=1:detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1:suppressions=$ROOT/scripts/sanitizer-asan.supp
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
export LSAN_OPTIONS=suppressions=$ROOT/scripts/sanitizer-leaks.supp:print_suppressions=0
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
cd "$BUILD_DIR"
if [ -z "${DISPLAY:-}" ] && command -v xvfb-run >/dev/null 2>&1; then
    exec xvfb-run -a ctest -j2 --output-on-failure
fi
exec ctest -j2 --output-on-failure
