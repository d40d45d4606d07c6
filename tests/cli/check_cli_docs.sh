#!/bin/sh
# The documents of velmora-cli that are not code:
#
#   check_cli_docs.sh man SOURCE_DIR
#       the manual page velmora-cli(1) formats without a warning and names
#       every option of the program's own help;
#   check_cli_docs.sh completion SOURCE_DIR
#       the bash completion, sourced in bash, completes "velmora-cli j" to
#       "join", the options of join, and the values of --type.
set -eu

check=$1
root=$2
page=$root/data/velmora-cli.1
completion=$root/data/velmora-cli.bash

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

case $check in
man)
    command -v man >/dev/null 2>&1 || { echo "man is missing" >&2; exit 1; }
    warnings=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l "$page" 2>&1 >/dev/null)
    [ -z "$warnings" ] || fail "man --warnings: $warnings"
    text=$(LC_ALL=C.UTF-8 MANWIDTH=200 man -l "$page" 2>/dev/null)
    for option in --json --type --output --each --overwrite --no-tags --progress= \
        --quiet --debug --help --version "EXIT STATUS" "130" "--each -o ~/Books"; do
        printf '%s' "$text" | grep -q -e "$option" || fail "the manual page does not name $option"
    done
    ;;
completion)
    result=$(bash -c '
        source "$1"
        complete_words() {
            COMP_WORDS=("$@")
            COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
            COMPREPLY=()
            _velmora_cli
            echo "${COMPREPLY[*]}"
        }
        complete -p velmora-cli
        complete_words velmora-cli j
        complete_words velmora-cli join --ov
        complete_words velmora-cli check --type mpe
    ' sh "$completion")
    expected=$(printf '%s\n' "complete -F _velmora_cli velmora-cli" "join" "--overwrite" "mpeg")
    [ "$result" = "$expected" ] || fail "completion gave:
$result"
    ;;
*)
    echo "unknown check: $check" >&2
    exit 2
    ;;
esac
echo "ok"
