#!/bin/sh
# The program started with a list file, as a file manager starts it, opens
# that list once its main window shows, and asks for no new list.
#
#   CommandLineListOpens.sh <path of velmora>
set -eu
BIN=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
for tool in xvfb-run xdotool; do
    command -v "$tool" >/dev/null || { echo "$tool is needed (scripts/setup.sh)" >&2; exit 1; }
done

WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
mkdir -p "$WORK/data/Kestor/Velmora" "$WORK/My Lists"
# The New List dialog would come at this start if no list were opened.
cat > "$WORK/data/Kestor/Velmora/Settings.ini" <<INI
[Splashscreen]
DoNotShowAtStartup=1
[NewList]
DoNotAskMeAgain=0
ListType=MP3
[Tips]
ShowAtStartup=0
INI
printf 'VLR List v1.0\r\n<MPEG>\r\none.mpg|1 KB|01.01.2020|/media/one.mpg|MPEG-2V|720x576|00:00:01\r\n' \
    > "$WORK/My Lists/Album: Live.vlr"

# The name is given relative to the program's working folder.
cat > "$WORK/session.sh" <<SESSION
cd '$WORK/My Lists'
'$BIN' 'Album: Live.vlr' > '$WORK/output.txt' 2>&1 &
pid=\$!
status=1
reason="no window showed the list"
i=0
while [ \$i -lt 60 ]; do
    if xdotool search --onlyvisible --name '^New List\$' >/dev/null 2>&1; then
        reason="the New List dialog showed"
        break
    fi
    if xdotool search --onlyvisible --name '^Velmora - \(Album: Live\.vlr\)\$' >/dev/null 2>&1; then
        # A dialog that came late would show by now.
        sleep 1
        if xdotool search --onlyvisible --name '^New List\$' >/dev/null 2>&1; then
            reason="the New List dialog showed after the list"
        else
            status=0
        fi
        break
    fi
    sleep 0.5
    i=\$((i + 1))
done
[ \$status -eq 0 ] || echo "\$reason"
echo "windows shown:"
for w in \$(xdotool search --onlyvisible --name '.' 2>/dev/null); do
    echo "  \$(xdotool getwindowname "\$w")"
done
kill \$pid 2>/dev/null || true
wait \$pid 2>/dev/null || true
exit \$status
SESSION
status=0
env -u WAYLAND_DISPLAY XDG_DATA_HOME="$WORK/data" QT_QPA_PLATFORM=xcb \
    xvfb-run -a -s "-screen 0 1024x768x24" sh "$WORK/session.sh" || status=$?
cat "$WORK/output.txt"
exit $status
