# bash completion for orvoplugin. What commands, options and predefined sub-case types there are, the tool itself says in
# its help. No plugin code runs: plugins are offered by their file names.

_orvoplugin_options() {
    LC_ALL=C "$@" --help 2>/dev/null | grep -oE '^ +(-[a-zA-Z],)?--[a-z-]+' | grep -oE -- '--[a-z-]+'
}

_orvoplugin_commands() {
    LC_ALL=C "$1" --help 2>/dev/null | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p'
}

_orvoplugin_sub_case_types() {
    LC_ALL=C "$1" find --help 2>/dev/null | sed -n '1,/^Predefined/d;/^$/q;p'
}

# _orvoplugin_plugins DIR: the plugins below it, by their paths.
_orvoplugin_plugins() {
    [[ -n $1 ]] && (cd -- "$1" 2>/dev/null && find -L . -type f -iname '*.dylib' 2>/dev/null | sed 's|^\./||')
}

# _orvoplugin_list WORD NAME...: completes what stands behind the last comma.
_orvoplugin_list() {
    local word=$1 before=''
    shift
    [[ $word == *,* ]] && before=${word%,*},
    mapfile -t COMPREPLY < <(compgen -P "$before" -W "$*" -- "${word##*,}")
}

_orvoplugin() {
    local tool=$1 word=$2 command='' option='' directory='' first='' arguments=0 i
    local kinds='check feld_information fehler_text_daten finanzamts_daten xpath_mapping datensatz_reader'
    COMPREPLY=()
    # `option` is the one whose value comes next, if any; bash makes three words of "--log=debug"
    for ((i = 1; i < COMP_CWORD; i++)); do
        if [[ ${COMP_WORDS[i]} == '=' ]]; then
            continue
        elif [[ -n $option ]]; then
            case $option in
            --home) directory=${COMP_WORDS[i]/#\~\//$HOME/}/plugins ;;
            --dir) directory=${COMP_WORDS[i]/#\~\//$HOME/} ;;
            esac
            option=''
            continue
        fi
        case ${COMP_WORDS[i]} in
        --home | --dir | --resident | --log | --timeout | --only | --skip | --type | --require | --html | \
            --format | --jobs | --baseline | --data | --max-log | --max-open-ms | --max-describe-ms | --max-service-ms)
            option=${COMP_WORDS[i]}
            ;;
        -*) ;;
        *)
            if [[ -z $command ]]; then
                command=${COMP_WORDS[i]}
            else
                first=${first:-${COMP_WORDS[i]}}
                arguments=$((arguments + 1))
            fi
            ;;
        esac
    done
    if [[ ${COMP_WORDS[COMP_CWORD]} == '=' ]]; then
        word=''
    fi

    case $option in
    --home | --dir)
        compopt -o filenames 2>/dev/null || true
        mapfile -t COMPREPLY < <(compgen -d -- "$word")
        return
        ;;
    --log)
        mapfile -t COMPREPLY < <(compgen -W 'debug info warn error' -- "$word")
        return
        ;;
    --only | --skip)
        _orvoplugin_list "$word" "$(LC_ALL=C "$tool" check --list 2>/dev/null | sed 's/ .*//')"
        return
        ;;
    --type)
        mapfile -t COMPREPLY < <(compgen -W "$kinds" -- "$word")
        return
        ;;
    --require | --html | --data)
        compopt -o filenames 2>/dev/null || true
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
        ;;
    --resident)
        compopt -o nospace 2>/dev/null || true
        _orvoplugin_list "$word" "alle, $(_orvoplugin_plugins "$directory" |
            sed 's|.*/||;s/^lib//;s/\.[^.]*$/,/' | tr '[:upper:]' '[:lower:]')"
        return
        ;;
    --format)
        mapfile -t COMPREPLY < <(compgen -W 'text json junit sarif github' -- "$word")
        return
        ;;
    --timeout | --jobs | --baseline | --max-*) return ;;
    esac
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_orvoplugin_options "$tool" ${command:+"$command"})" -- "$word")
    elif [[ -z $command ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_orvoplugin_commands "$tool")" -- "$word")
    elif [[ $command == find && $arguments == 0 ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$kinds" -- "$word")
    elif [[ $command == @(find|why) && $arguments == 1 && $first != */* && $first != *.dylib ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_orvoplugin_sub_case_types "$tool")" -- "$word")
    elif [[ $command == @(show|why) && $arguments == 0 && -n $directory ]]; then
        [[ $command == why ]] || kinds=''
        local IFS=$'\n'
        mapfile -t COMPREPLY < <(compgen -W "${kinds// /$IFS}$IFS$(_orvoplugin_plugins "$directory")" -- "$word")
    else
        compopt -o filenames 2>/dev/null || true
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}

complete -F _orvoplugin orvoplugin
