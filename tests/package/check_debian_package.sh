#!/bin/sh
# Builds the Debian package from a clean copy of the tracked files, checks it
# with lintian, validates the desktop entry and the AppStream metadata it
# installs, checks its dependencies, extracts it into a temporary root and
# starts the extracted program under a virtual X server until its main window
# and the New List dialog show; then checks that a list file (*.vlr) takes the
# package's MIME type and opens in the program, with the list shown.
#
#   check_debian_package.sh <source-folder> <work-folder>
#
# Exits 77 (skipped) only when the packaging tools are missing and cannot be
# installed.
set -eu

SOURCE=$1
WORK=$2
mkdir -p "$WORK"
WORK=$(cd "$WORK" && pwd)

TOOLS="dpkg-dev debhelper fakeroot lintian desktop-file-utils appstream xdotool xvfb xauth
shared-mime-info xdg-utils libfile-mimeinfo-perl"
missing=""
for package in $TOOLS; do
    if ! dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q ' installed$'; then
        missing="$missing $package"
    fi
done
if [ -n "$missing" ]; then
    if [ "$(id -u)" -eq 0 ] || sudo -n true 2>/dev/null; then
        SUDO=""
        [ "$(id -u)" -eq 0 ] || SUDO="sudo -n"
        # shellcheck disable=SC2086
        if ! { $SUDO env DEBIAN_FRONTEND=noninteractive apt-get update &&
            $SUDO env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $missing; }; then
            echo "SKIPPED: the packaging tools could not be installed:$missing"
            exit 77
        fi
    else
        echo "SKIPPED: the packaging tools are missing and neither root nor sudo is at hand:$missing"
        exit 77
    fi
fi

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

echo "== Building the package"
"$SOURCE/scripts/package.sh" "$WORK/out"
DEB=$(ls "$WORK"/out/velmora_*_*.deb)
VERSION=$(dpkg-deb -f "$DEB" Version)
EXPECTED=$(sed -n 's/^project(Velmora VERSION \([0-9.]*\).*/\1/p' "$SOURCE/CMakeLists.txt")
[ "$VERSION" = "$EXPECTED" ] || fail "the package version $VERSION is not the project's $EXPECTED"

echo "== lintian"
lintian --fail-on error "$DEB" || fail "lintian reports errors"

echo "== Dependencies"
DEPENDS=$(dpkg-deb -f "$DEB" Depends)
echo "$DEPENDS"
for needed in libmediainfo0v5 ffmpeg mpgtx shared-mime-info; do
    echo "$DEPENDS" | tr ',' '\n' | sed 's/^ *//; s/ .*//' | grep -qx "$needed" ||
        fail "Depends does not name $needed"
done

echo "== Extracting"
ROOT=$WORK/root
rm -rf "$ROOT"
dpkg-deb -x "$DEB" "$ROOT"
FOLDER=$(dirname "$(find "$ROOT/usr/lib" -name velmora -type f -perm -u+x | head -n 1)")
for name in velmora velmora-cli DefaultSettings.ini ReadMe.htm MP3.dll MPEG.dll MPEG2.dll; do
    [ -e "$FOLDER/$name" ] || [ -L "$FOLDER/$name" ] || fail "$name is missing from the program folder"
done
[ -L "$ROOT/usr/bin/velmora" ] || fail "/usr/bin/velmora is not a link to the program"
[ -f "$ROOT/usr/share/man/man1/velmora.1.gz" ] || fail "the manual page is missing"
[ -L "$ROOT/usr/bin/velmora-cli" ] || fail "/usr/bin/velmora-cli is not a link to the program"
[ -f "$ROOT/usr/share/man/man1/velmora-cli.1.gz" ] || fail "the manual page of velmora-cli is missing"
[ -f "$ROOT/usr/share/bash-completion/completions/velmora-cli" ] ||
    fail "the bash completion of velmora-cli is missing"
[ -f "$ROOT/usr/share/icons/hicolor/scalable/apps/velmora.svg" ] || fail "the icon is missing"

echo "== desktop-file-validate"
desktop-file-validate "$ROOT/usr/share/applications/velmora.desktop" || fail "the desktop entry is invalid"

echo "== appstreamcli validate"
METAINFO=$(ls "$ROOT"/usr/share/metainfo/*.metainfo.xml)
appstreamcli validate --no-net "$METAINFO" || fail "the AppStream metadata is invalid"
grep -q '<caption>' "$METAINFO" || fail "the AppStream metadata has no screenshot captions"
grep -q '<project_license>GPL-2.0-or-later</project_license>' "$METAINFO" ||
    fail "the AppStream metadata does not name the licence GPL-2.0-or-later"

echo "== Licence"
COPYRIGHT=$ROOT/usr/share/doc/velmora/copyright
grep -q '^License: GPL-2+$' "$COPYRIGHT" || fail "debian/copyright does not name the licence GPL-2+"
cmp -s "$SOURCE/LICENSE" /usr/share/common-licenses/GPL-2 ||
    fail "LICENSE is not the text of the GNU General Public License, version 2"

echo "== Starting the extracted program"
RUN=$WORK/run
rm -rf "$RUN"
mkdir -p "$RUN/home" "$RUN/data"
cat >"$RUN/start.sh" <<'SCRIPT'
#!/bin/sh
# Runs under xvfb-run: starts the program, waits for its windows, stops it.
program=$1
"$program" >"$RUN/output.txt" 2>&1 &
pid=$!
found=1
i=0
while [ $i -lt 120 ]; do
    if ! kill -0 $pid 2>/dev/null; then
        echo "the program ended before its windows showed"
        break
    fi
    if xdotool search --onlyvisible --name '^New List$' >/dev/null 2>&1 &&
        xdotool search --onlyvisible --name '^Velmora' >/dev/null 2>&1; then
        found=0
        echo "windows shown:"
        for w in $(xdotool search --onlyvisible --name '.'); do
            echo "  $(xdotool getwindowname "$w")"
        done
        break
    fi
    sleep 0.5
    i=$((i + 1))
done
kill $pid 2>/dev/null || true
wait $pid 2>/dev/null || true
exit $found
SCRIPT
status=0
env -u QT_QPA_PLATFORM -u DISPLAY -u WAYLAND_DISPLAY \
    QT_QPA_PLATFORM=xcb HOME="$RUN/home" XDG_DATA_HOME="$RUN/data" RUN="$RUN" \
    xvfb-run -a sh "$RUN/start.sh" "$ROOT/usr/bin/velmora" || status=$?
cat "$RUN/output.txt"
[ $status -eq 0 ] || fail "the extracted program did not show its main window"
# The settings file is made from the DefaultSettings.ini of the extracted
# program folder: the program found its own folder through the link.
cmp -s "$FOLDER/DefaultSettings.ini" "$RUN/data/Kestor/Velmora/Settings.ini" ||
    fail "the first run did not copy the extracted DefaultSettings.ini"
echo "== The extracted command line joins with no display"
CLI=$WORK/cli
rm -rf "$CLI"
mkdir -p "$CLI/home" "$CLI/data"
for tone in 440 660; do
    ffmpeg -nostdin -loglevel error -y -f lavfi -i "sine=frequency=$tone:duration=1" \
        -codec:a libmp3lame -b:a 128k "$CLI/$tone.mp3" || fail "ffmpeg could not make a test file"
done
# The program folder's MPEG.dll and MPEG2.dll link to the commands of the
# packages it depends on, relative to the root it is unpacked in: the system's
# commands stand in for them there while the command line runs, as on a
# system the package is installed on.
for command in mpgtx ffmpeg; do
    ln -sf "$(command -v $command)" "$ROOT/usr/bin/$command"
done
status=0
env -u QT_QPA_PLATFORM -u DISPLAY -u WAYLAND_DISPLAY HOME="$CLI/home" XDG_DATA_HOME="$CLI/data" \
    "$ROOT/usr/bin/velmora-cli" join --progress=lines -o "$CLI/joined.mp3" \
    "$CLI/440.mp3" "$CLI/660.mp3" || status=$?
rm -f "$ROOT/usr/bin/mpgtx" "$ROOT/usr/bin/ffmpeg"
[ $status -eq 0 ] || fail "the extracted velmora-cli did not join (exit status $status)"
[ -s "$CLI/joined.mp3" ] || fail "the extracted velmora-cli left no joined file"
[ ! -e "$CLI/data/Kestor/Velmora/Settings.ini" ] || fail "velmora-cli wrote a Settings.ini"
echo "== The type of list files"
XML=$ROOT/usr/share/mime/packages/velmora.xml
[ -f "$XML" ] || fail "the MIME type of list files is not in usr/share/mime/packages"
# The database is built where the package is installed, by the trigger of
# shared-mime-info: the package carries none of it.
[ "$(find "$ROOT/usr/share/mime" -type f | grep -vc '/mime/packages/')" -eq 0 ] ||
    fail "the package carries files of the MIME database"
DESKTOP=$ROOT/usr/share/applications/velmora.desktop
grep -qx 'MimeType=application/x-velmora-list;' "$DESKTOP" ||
    fail "the desktop entry does not list the type of list files"
grep -qx 'Exec=velmora %f' "$DESKTOP" || fail "the desktop entry does not take a file"
# The package's files in a data folder of their own, built into the
# databases as the triggers build them on an installed system.
MIME_HOME=$WORK/mime-home
rm -rf "$MIME_HOME"
mkdir -p "$MIME_HOME/mime/packages" "$MIME_HOME/applications"
cp "$XML" "$MIME_HOME/mime/packages/"
cp "$DESKTOP" "$MIME_HOME/applications/"
update-mime-database "$MIME_HOME/mime"
update-desktop-database "$MIME_HOME/applications"
# A list file; an empty file known by its name alone; a list file known by
# its header alone.
printf 'VLR List v1.0\r\n<MP3>\r\n' >"$WORK/Some List.vlr"
: >"$WORK/Empty List.vlr"
printf 'VLR List v1.0\r\n<MPEG>\r\n' >"$WORK/list without extension"
query() {
    env -u DISPLAY -u WAYLAND_DISPLAY -u XDG_CURRENT_DESKTOP -u DESKTOP_SESSION \
        XDG_DATA_HOME="$MIME_HOME" XDG_DATA_DIRS=/usr/share xdg-mime query "$@"
}
for file in "$WORK/Some List.vlr" "$WORK/Empty List.vlr" "$WORK/list without extension"; do
    TYPE=$(query filetype "$file")
    echo "$file: $TYPE"
    [ "$TYPE" = application/x-velmora-list ] || fail "$file is of the type $TYPE"
done
APP=$(query default application/x-velmora-list)
echo "opened by: $APP"
[ "$APP" = velmora.desktop ] || fail "list files are opened by '$APP', not by Velmora"

echo "== Starting the extracted program with a list file"
env -u QT_QPA_PLATFORM -u DISPLAY -u WAYLAND_DISPLAY HOME="$RUN/home" \
    sh "$SOURCE/tests/ui/CommandLineListOpens.sh" "$ROOT/usr/bin/velmora" ||
    fail "the extracted program did not open the list file it was given"
echo "== The package is fine"
