# bash completion for velmora-cli: its commands, their options, and the files
# and folders they take.
_velmora_cli() {
    local cur prev command word i
    COMPREPLY=()
    cur=${COMP_WORDS[COMP_CWORD]}
    prev=${COMP_WORDS[COMP_CWORD-1]}

    command=
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        case $word in
            info | check | join)
                command=$word
                break
                ;;
        esac
    done

    case $prev in
        --type)
            COMPREPLY=($(compgen -W "mp3 mpeg" -- "$cur"))
            return 0
            ;;
        -o | --output)
            COMPREPLY=($(compgen -f -- "$cur"))
            compopt -o filenames 2>/dev/null
            return 0
            ;;
    esac

    local options
    case $command in
        "")
            options="info check join --help --version --debug --quiet"
            ;;
        info | check)
            options="--json --type --debug --quiet --help"
            ;;
        join)
            options="-o --output --each --overwrite --no-tags --progress=auto --progress=bar
                --progress=lines --progress=none --type --debug --quiet --help"
            ;;
    esac

    if [[ -z $command || $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
        return 0
    fi
    COMPREPLY=($(compgen -f -- "$cur"))
    compopt -o filenames 2>/dev/null
    return 0
}
complete -F _velmora_cli velmora-cli
