#!/bin/sh
# Builds the Debian package of Velmora from a clean copy of the repository's
# tracked files and puts velmora_<version>_<arch>.deb into a folder of choice.
# Installs the packaging tools and build dependencies that are missing.
#
#   scripts/package.sh [output-folder]      (default: ./build/package)
#
# The copy is built in <output-folder>/source, a fixed place, so that repeated
# builds compile with the same paths and reuse ccache's results.
set -eu

ROOT=$(cd "$(dirname "$0")/.." && pwd)
OUT=${1:-$ROOT/build/package}
mkdir -p "$OUT"
OUT=$(cd "$OUT" && pwd)

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        env DEBIAN_FRONTEND=noninteractive "$@"
    elif command -v sudo >/dev/null 2>&1; then
        sudo env DEBIAN_FRONTEND=noninteractive "$@"
    else
        echo "Packages are missing and neither root nor sudo is at hand: $*" >&2
        exit 1
    fi
}

missing_of() {
    for package in "$@"; do
        if ! dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q ' installed$'; then
            printf ' %s' "$package"
        fi
    done
}

missing=$(missing_of dpkg-dev debhelper fakeroot)
if [ -n "$missing" ]; then
    echo "Installing missing packages:$missing"
    as_root apt-get update
    # shellcheck disable=SC2086
    as_root apt-get install -y --no-install-recommends $missing
fi

# A clean copy: the tracked files only, never a build folder.
VERSION=$(dpkg-parsechangelog -l "$ROOT/debian/changelog" -S Version)
WORK=$OUT/source
SRC=$WORK/velmora-$VERSION
rm -rf "$WORK"
mkdir -p "$SRC"
if git -C "$ROOT" rev-parse --is-inside-work-tree >/dev/null 2>&1; then
    # Tracked files as they stand in the working tree; deleted ones are left out.
    # shellcheck disable=SC2016
    (cd "$ROOT" && git ls-files -z --cached | xargs -0 -r sh -c \
        'for f; do [ -e "$f" ] && printf "%s\0" "$f"; done' sh |
        tar --null -T - -cf -) | tar -xf - -C "$SRC"
else
    (cd "$ROOT" && tar --exclude='./build*' --exclude='./.git' -cf - .) | tar -xf - -C "$SRC"
fi

cd "$SRC"
unmet=$(dpkg-checkbuilddeps 2>&1 | sed -n 's/.*Unmet build dependencies: //p' |
    sed 's/([^)]*)//g')
if [ -n "$unmet" ]; then
    echo "Installing missing build dependencies: $unmet"
    as_root apt-get update
    # shellcheck disable=SC2086
    as_root apt-get install -y --no-install-recommends $unmet
fi

# debhelper gives the build its own HOME: keep the user's compiler cache.
if command -v ccache >/dev/null 2>&1; then
    CCACHE_DIR=$(ccache -k cache_dir)
    export CCACHE_DIR
fi
DEB_BUILD_OPTIONS="${DEB_BUILD_OPTIONS:+$DEB_BUILD_OPTIONS }parallel=$(nproc 2>/dev/null || echo 2)"
export DEB_BUILD_OPTIONS
dpkg-buildpackage -us -uc -b

rm -f "$OUT"/velmora_*.deb "$OUT"/velmora-dbgsym_*.deb
mv "$WORK"/velmora_*.deb "$OUT"/
mv "$WORK"/velmora-dbgsym_*deb "$OUT"/ 2>/dev/null || true
ls "$OUT"/velmora_*.deb
