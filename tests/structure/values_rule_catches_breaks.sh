#!/bin/sh
# The rule "values" of check_structure.sh, run on small trees of its own: it
# must fail on each kind of line it is there to keep out, and pass on lines
# that only write a unit or name a list type in a comment.
#
#   values_rule_catches_breaks.sh CHECK_SCRIPT
set -eu

check=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

# Runs the rule on a tree whose one file holds the line; $1 is the expected
# exit status.
expect() {
    want=$1
    line=$2
    rm -rf "$work/src"
    mkdir -p "$work/src/join"
    printf '%s\n' "$line" >"$work/src/join/Sample.cpp"
    status=0
    sh "$check" values "$work" >/dev/null 2>&1 || status=$?
    if [ "$status" -ne "$want" ]; then
        echo "exit status $status, not $want, for: $line" >&2
        failed=1
    fi
}

expect 1 '    text.replace(QStringLiteral(" KB"), QString());'
expect 1 '    cell.chop(QStringLiteral(" seconds").size()); rate.remove(u" (Mono)");'
expect 1 '    const double kb = items.cell(1, SharedCell::Filesize).toDouble(&ok);'
expect 1 '    const int s = QLocale().toInt(model.state.durationCaption());'
expect 1 '    const QTime t = QTime::fromString(state.durationCaption(), QStringLiteral("h:m:s"));'
expect 1 '    ParseCellNumber(text, locale, value);'
expect 1 '    if (model.state.listType() == QLatin1String("MP3")) {'
expect 1 '    createList(QStringLiteral("MPEG"));'
expect 0 '    state.setWrittenSizeText(figure + QStringLiteral(" KB"));'
expect 0 '    // A list of the type "MP3" reads its duration from " seconds".'
expect 0 '    if (model.state.type() == ListType::Mp3) {'

exit $failed
