#!/bin/sh
# Structural rules of the source tree that a reader relies on, checked on the
# files themselves:
#
#   check_structure.sh cells SOURCE_DIR
#       no cell of the list read or written by a bare number outside
#       src/media/CellNames.h, the one table that names the cells;
#   check_structure.sh settings SOURCE_DIR
#       no Settings.ini section or key used outside src/app/Settings.cpp, and
#       every section and key of data/DefaultSettings.ini named there;
#   check_structure.sh platform SOURCE_DIR
#       nothing under src/platform includes a header of src/app;
#   check_structure.sh values SOURCE_DIR
#       no number, date or size read out of a cell or an info-panel caption
#       outside src/list/CellValues, the one module that reads them, and no
#       list type written as a literal outside src/media/ListType;
#   check_structure.sh program SOURCE_DIR PROGRAM [SCENES_PROGRAM]
#       the program built from the tree holds no screenshot scene code (and
#       the program built with the scenes shows them to the same look).
#
# Each offending line is printed; the exit status is 1 when there is one.
# A pipeline's last command runs in a subshell of its own, so report() says
# what it found through its exit status, and each call of it is followed by
# "|| failed=1" in this shell.
set -eu

check=$1
root=$2
cd "$root"

failed=0
report() {
    # $1: what is wrong; the offending lines come on standard input. Exits
    # with 1 when there is one.
    lines=$(cat)
    if [ -n "$lines" ]; then
        printf '%s\n%s\n' "$1" "$lines" >&2
        return 1
    fi
}

sources() {
    find src -name '*.cpp' -o -name '*.h' | sort
}

case $check in
cells)
    # A call of a cell routine whose last argument is a number, a cell array
    # indexed by a number, a cell variable set to a number, or a column header
    # or model index taken by number.
    sources | grep -v '^src/media/CellNames\.h$' | xargs grep -nE \
        -e '\b[A-Za-z_]*[Cc]ell[A-Za-z_]*\s*\(([^()]|\([^()]*\))*,\s*[0-9]+\s*\)' \
        -e '\b[A-Za-z_]*[Cc]ells?\s*\[\s*[0-9]+\s*\]' \
        -e '\b[A-Za-z_]*[Cc]ell[A-Za-z_]*\s*=\s*[0-9]+\s*;' \
        -e '\bitems\.header\(\s*[0-9]+\s*\)' \
        -e '\bitems\.index\([^,]*,\s*[0-9]+\s*\)' \
        | grep -vE '\bfor \(' \
        | report "A list cell taken by number; name it in src/media/CellNames.h:" || failed=1
    ;;
settings)
    [ -f data/DefaultSettings.ini ] || { echo "no data/DefaultSettings.ini under $root" >&2; exit 1; }
    sources | grep -vE '^src/app/(Settings|IniFile)\.(h|cpp)$' | xargs grep -nE \
        '\b(ReadSetting|WriteSetting|ReadIniValue|WriteIniValue)\s*\(' \
        | report "Settings.ini read or written outside src/app/Settings.cpp:" || failed=1
    # The section names as texts; the same words as object names of windows
    # and controls are no settings.
    # The file dialogs' folders have a section that the defaults do not fill.
    sections=$( (sed -n 's/^\[\(.*\)\]\r\{0,1\}$/\1/p' data/DefaultSettings.ini; echo Commondialog) | sort -u)
    for section in $sections; do
        sources | grep -v '^src/app/Settings\.cpp$' | xargs grep -nE "\"$section\"" \
            | grep -vE 'ObjectName|findChild' \
            | report "The Settings.ini section \"$section\" named outside src/app/Settings.cpp:" ||
            failed=1
    done
    # Every section and key of the default settings is named in the module
    # (numbered keys such as Tip1 by their stem).
    keys=$(sed -n 's/^\([A-Za-z]*[A-Za-z]\)[0-9]*=.*/\1/p' data/DefaultSettings.ini | sort -u)
    for name in $sections $keys; do
        if ! grep -q "\"$name\"" src/app/Settings.cpp; then
            echo "A Settings.ini name that src/app/Settings.cpp does not name: $name" >&2
            failed=1
        fi
    done
    ;;
platform)
    [ -d src/platform ] || { echo "no src/platform under $root" >&2; exit 1; }
    grep -rnE '#include\s+"app/' src/platform \
        | report "src/platform includes a header of src/app; pass what it needs from the caller:" ||
        failed=1
    ;;
values)
    # The offending lines are gathered first and handed to report in this
    # shell, so that its verdict counts. Comment lines are left out.
    code_only() {
        grep -vE '^[^:]+:[0-9]+:[[:space:]]*//' || true
    }
    # A unit cut off a text, a cell or a caption turned into a number or a
    # time, or the cell number reader called.
    unit='" (KB|seconds|kbps)"|" \((Mono|Stereo)\)"'
    text='\b(cell|cellView|[A-Za-z]*[Cc]aption)\b'
    number='\.to(Double|Float|U?Int|U?Long|U?LongLong|U?Short|DateTime|Date|Time)\('
    parsed=$(sources | grep -vE '^src/list/CellValues\.(h|cpp)$' | xargs grep -HnE \
        -e "\.(remove|replace|chop|chopped|endsWith|indexOf|split|section)\(.*(${unit})" \
        -e "${text}.*${number}" \
        -e "${number}.*${text}" \
        -e "\b(QTime|QDate|QDateTime)::fromString\(.*${text}" \
        -e '\bParseCellNumber\(' | code_only)
    report "A value read out of a list text; read it through src/list/CellValues:" <<EOF
$parsed
EOF
    # The list type's texts. The settings module keeps the default type as
    # its own text below the list, and the MPEG audio codec's name begins
    # with the same word.
    literal=$(sources | grep -vE '^src/(media/ListType|app/Settings|media/JoinTraits)\.cpp$' \
        | xargs grep -HnE '"(MP3|MPEG)"' | code_only)
    report "A list type written as a literal; use ListType (src/media/ListType.h):" <<EOF
$literal
EOF
    ;;
program)
    program=$3
    scenes=${4:-}
    command -v nm >/dev/null 2>&1 || { echo "nm is missing" >&2; exit 1; }
    for file in "$program" $scenes; do
        [ -f "$file" ] || { echo "no program at $file" >&2; exit 1; }
    done
    # nm is run on its own, so that a file it cannot read ends the check
    # rather than passing as a program without symbols.
    symbols=$(nm -C "$program") || { echo "nm cannot read $program" >&2; exit 1; }
    printf '%s\n' "$symbols" | grep -iE 'screenshot' \
        | report "Screenshot code in $program:" || failed=1
    # The program with the scenes must show them to the same look, or the
    # look above proves nothing.
    if [ -n "$scenes" ]; then
        symbols=$(nm -C "$scenes") || { echo "nm cannot read $scenes" >&2; exit 1; }
        if ! printf '%s\n' "$symbols" | grep -q 'PrepareScreenshotScene'; then
            echo "no screenshot scenes found in $scenes: the check cannot see them" >&2
            failed=1
        fi
    fi
    ;;
*)
    echo "unknown check: $check" >&2
    exit 2
    ;;
esac
exit $failed
