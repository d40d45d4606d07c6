#!/bin/sh
# Under a real window manager (openbox on a virtual X server), the New List
# dialog of the start-up opens centred over the main window.
#
#   StartupDialogCentred.sh <path of velmora_screenshots, the program with its scenes>
set -eu
BIN=$1
for tool in xvfb-run openbox; do
    command -v "$tool" >/dev/null || { echo "$tool is needed (scripts/setup.sh)" >&2; exit 1; }
done

WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
mkdir -p "$WORK/Kestor/Velmora"
cat > "$WORK/Kestor/Velmora/Settings.ini" <<INI
[Splashscreen]
DoNotShowAtStartup=1
[NewList]
DoNotAskMeAgain=0
ListType=MP3
[Tips]
ShowAtStartup=0
INI

cat > "$WORK/session.sh" <<SESSION
openbox >/dev/null 2>&1 &
manager=\$!
sleep 1
XDG_DATA_HOME='$WORK' VELMORA_SCREENSHOT_SCENE=placement \
VELMORA_SCREENSHOT_FILE='$WORK/placement.txt' QT_QPA_PLATFORM=xcb '$BIN'
status=\$?
kill \$manager 2>/dev/null
exit \$status
SESSION
xvfb-run -a -s "-screen 0 1024x768x24" sh "$WORK/session.sh"

cat "$WORK/placement.txt"
# The centres of the two frames may differ by a few pixels of title bar.
awk 'NR == 1 { mx = $1 + $3 / 2; my = $2 + $4 / 2 }
     NR == 2 { dx = $1 + $3 / 2; dy = $2 + $4 / 2 }
     END {
         off_x = mx - dx; if (off_x < 0) off_x = -off_x
         off_y = my - dy; if (off_y < 0) off_y = -off_y
         printf "centres %d,%d and %d,%d\n", mx, my, dx, dy
         exit (NR == 2 && off_x <= 16 && off_y <= 24) ? 0 : 1
     }' "$WORK/placement.txt"
