#!/bin/sh
# Prepares a Debian 12 machine for Velmora and builds it: installs the Debian
# packages that are missing (nothing is downloaded when all are there),
# configures the build folder and builds.
#
#   scripts/setup.sh [run|test]
#
# "run" also installs what the desktop needs to open files and folders.
# The build folder is ./build, or $VELMORA_BUILD_DIR when set.
# VELMORA_WARNINGS_AS_ERRORS=ON|OFF switches compiler warnings as errors.
set -eu

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${VELMORA_BUILD_DIR:-$ROOT/build}
MODE=${1:-test}

PACKAGES="cmake ninja-build g++ pkg-config ccache clang libclang-rt-14-dev
qt6-base-dev qt6-svg-dev qt6-qpa-plugins libmediainfo-dev mediainfo libtag1-dev python3-mutagen mpg123
ffmpeg mpgtx lame
libgtest-dev libgmock-dev libbenchmark-dev
xvfb xauth openbox fonts-dejavu-core clang-format
dpkg-dev debhelper fakeroot lintian desktop-file-utils appstream xdotool x11-utils"
# Wanted for a desktop run (opening files, folders and web pages), not for
# building or testing: a failure to install it is only reported.
OPTIONAL=""
if [ "$MODE" = run ]; then
    OPTIONAL="xdg-utils"
fi

missing_of() {
    for package in "$@"; do
        if ! dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q ' installed$'; then
            printf ' %s' "$package"
        fi
    done
}

# shellcheck disable=SC2086
missing=$(missing_of $PACKAGES)
# shellcheck disable=SC2086
missing_optional=$(missing_of $OPTIONAL)

if [ -n "$missing$missing_optional" ]; then
    if [ "$(id -u)" -eq 0 ]; then
        SUDO=""
    elif command -v sudo >/dev/null 2>&1; then
        SUDO="sudo"
    elif [ -n "$missing" ]; then
        echo "These packages are missing and neither root nor sudo is at hand:$missing" >&2
        exit 1
    else
        SUDO="none"
    fi
    if [ "$SUDO" != none ]; then
        APT="$SUDO env DEBIAN_FRONTEND=noninteractive apt-get"
        if [ -n "$missing" ]; then
            echo "Installing missing packages:$missing"
            $APT update
            # shellcheck disable=SC2086
            $APT install -y --no-install-recommends $missing
        fi
        if [ -n "$missing_optional" ]; then
            echo "Installing missing packages:$missing_optional"
            # shellcheck disable=SC2086
            { [ -n "$missing" ] || $APT update; } && $APT install -y --no-install-recommends $missing_optional ||
                echo "Could not install$missing_optional: opening files from Velmora may not work." >&2
        fi
    fi
fi

JOBS=$(nproc 2>/dev/null || echo 2)
if [ ! -f "$BUILD_DIR/build.ninja" ]; then
    cmake -S "$ROOT" -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
# VELMORA_WARNINGS_AS_ERRORS=ON (as scripts/test.sh sets it) makes every
# compiler warning an error; set, it is applied to an existing build folder too.
if [ -n "${VELMORA_WARNINGS_AS_ERRORS:-}" ]; then
    cmake "$BUILD_DIR" -DVELMORA_WARNINGS_AS_ERRORS="$VELMORA_WARNINGS_AS_ERRORS" >/dev/null
fi
cmake --build "$BUILD_DIR" -j"$JOBS"
