#!/bin/sh
# Takes the pictures of the program for the documentation and saves them in
# docs/screenshots/. Runs the built program under a virtual X server with a
# fresh settings folder per picture; the program sets each scene up itself
# (see src/ui/ScreenshotScenes.h) and ends after saving its picture.
#
#   scripts/screenshots.sh [build-folder]      (default: build)
#
# To add a picture: add a scene to src/ui/ScreenshotScenes.cpp and one
# "shoot" line below.
set -eu

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD=${1:-$ROOT/build}
BIN=$BUILD/bin/velmora
OUT=$ROOT/docs/screenshots
MEDIA_DIR=$ROOT/tests/data/samples

[ -x "$BIN" ] || { echo "no program at $BIN; build the target velmora first" >&2; exit 1; }
command -v xvfb-run >/dev/null || { echo "xvfb-run is needed" >&2; exit 1; }
mkdir -p "$OUT"

WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT

# A few real MP3 files, copied under plain names.
MEDIA=""
i=0
for f in mimetype-mp3.mp3 filetype-fixture.mp3 mimetype-mp3.v2.notag.mp3 \
         mimetype-mp3.v2.5.notag.mp3; do
    [ -f "$MEDIA_DIR/$f" ] || continue
    i=$((i + 1))
    mkdir -p "$WORK/music"
    cp "$MEDIA_DIR/$f" "$WORK/music/Track $i - $f"
    MEDIA="$MEDIA${MEDIA:+:}$WORK/music/Track $i - $f"
done

# For the marks: a mono file among the stereo ones, made with ffmpeg.
MARKS_MEDIA=$MEDIA
if command -v ffmpeg >/dev/null && [ -n "$MEDIA" ] &&
    ffmpeg -nostdin -hide_banner -loglevel error -y -f lavfi \
        -i sine=frequency=440:sample_rate=44100:duration=20 -ac 1 -c:a libmp3lame -b:a 64k \
        "$WORK/music/Track 5 - mono.mp3"; then
    MARKS_MEDIA="$MEDIA:$WORK/music/Track 5 - mono.mp3"
fi

# The virtual screen, and a scale factor for a picture of a high-DPI desktop.
SCREEN=1024x768
SCALE=""

# shoot <scene> <file> <splash off 0/1> <NewList dialog off 0/1> [media]
shoot() {
    home=$(mktemp -d "$WORK/home.XXXXXX")
    mkdir -p "$home/Kestor/Velmora"
    cat > "$home/Kestor/Velmora/Settings.ini" <<INI
[Splashscreen]
DoNotShowAtStartup=$3
[NewList]
DoNotAskMeAgain=$4
ListType=MP3
[Tips]
ShowAtStartup=0
Count=1
Tip1=Drop files from your file manager on the list to add them.
INI
    echo "== $1 -> $OUT/$2"
    XDG_DATA_HOME=$home \
    VELMORA_SCREENSHOT_SCENE=$1 \
    VELMORA_SCREENSHOT_FILE=$OUT/$2 \
    VELMORA_SCREENSHOT_MEDIA=${5:-} \
    QT_QPA_PLATFORM=xcb \
        xvfb-run -a -s "-screen 0 ${SCREEN}x24" env ${SCALE:+QT_SCALE_FACTOR=$SCALE} "$BIN"
}

shoot splash      splash.png       0 0
shoot newlist     newlist.png      1 0
shoot main        main-window.png  1 1 "$MEDIA"
shoot contextmenu context-menu.png 1 1 "$MEDIA"
shoot marks       row-marks.png    1 1 "$MARKS_MEDIA"
# The main window at a scale factor of 2, and under a dark desktop palette.
SCALE=2 SCREEN=2048x1536
shoot main main-window-scale2.png 1 1 "$MEDIA"
SCALE="" SCREEN=1024x768
shoot maindark main-window-dark.png 1 1 "$MEDIA"

# The other windows. Each window's test sets the window up with example
# content and, with VELMORA_SCREENSHOT_DIR set, saves its picture there.
TESTS=$BUILD/bin/test_ui
if [ -x "$TESTS" ]; then
    echo "== the other windows -> $OUT"
    VELMORA_SCREENSHOT_DIR=$OUT \
    QT_QPA_PLATFORM=xcb \
        xvfb-run -a -s "-screen 0 1024x768x24" "$TESTS" --gtest_filter='*.Picture_*'
else
    echo "no test program at $TESTS; build the target test_ui for the other windows" >&2
fi
