#!/bin/sh
# Prepares a Debian 12 machine for Velmora and builds it: installs the Debian
# packages that are missing (nothing is downloaded when all are there),
# configures the build folder and builds.
#
#   scripts/setup.sh
#
# The build folder is ./build, or $VELMORA_BUILD_DIR when set.
# VELMORA_WARNINGS_AS_ERRORS=ON|OFF switches compiler warnings as errors.
set -eu

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${VELMORA_BUILD_DIR:-$ROOT/build}

PACKAGES="cmake ninja-build g++ pkg-config ccache clang libclang-rt-14-dev
qt6-base-dev qt6-svg-dev qt6-qpa-plugins libmediainfo-dev mediainfo libtag1-dev python3-mutagen mpg123
ffmpeg mpgtx lame
libgtest-dev libgmock-dev libbenchmark-dev
xvfb xauth openbox fonts-dejavu-core clang-format
dpkg-dev debhelper fakeroot lintian desktop-file-utils appstream xdotool x11-utils
shared-mime-info xdg-utils libfile-mimeinfo-perl"

missing_of() {
    for package in "$@"; do
        if ! dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q ' installed$'; then
            printf ' %s' "$package"
        fi
    done
}

# shellcheck disable=SC2086
missing=$(missing_of $PACKAGES)

if [ -n "$missing" ]; then
    if [ "$(id -u)" -eq 0 ]; then
        SUDO=""
    elif command -v sudo >/dev/null 2>&1; then
        SUDO="sudo"
    else
        echo "These packages are missing and neither root nor sudo is at hand:$missing" >&2
        exit 1
    fi
    APT="$SUDO env DEBIAN_FRONTEND=noninteractive apt-get"
    echo "Installing missing packages:$missing"
    $APT update
    # shellcheck disable=SC2086
    $APT install -y --no-install-recommends $missing
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
