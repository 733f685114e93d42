# bash completion for orvoplugin. What commands and options there are, the tool itself says.

_orvoplugin_options() {
    "$@" --help 2>/dev/null | grep -oE '^ +(-[a-z],)?--[a-z-]+' | grep -oE -- '--[a-z-]+'
}

_orvoplugin_commands() {
    "$1" --help 2>/dev/null | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p'
}

_orvoplugin() {
    local tool=$1 word=$2 command='' option='' arguments=0 i
    local kinds='check feld_information fehler_text_daten finanzamts_daten xpath_mapping datensatz_reader'
    COMPREPLY=()
    # `option` is the one whose value comes next, if any; bash makes three words of "--log=debug"
    for ((i = 1; i < COMP_CWORD; i++)); do
        if [[ ${COMP_WORDS[i]} == '=' ]]; then
            continue
        elif [[ -n $option ]]; then
            option=''
            continue
        fi
        case ${COMP_WORDS[i]} in
        --home | --dir | --resident | --log | --timeout | --only | --skip | --type | --require | --html)
            option=${COMP_WORDS[i]}
            ;;
        -*) ;;
        *)
            if [[ -z $command ]]; then
                command=${COMP_WORDS[i]}
            else
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
        mapfile -t COMPREPLY < <(compgen -W "$("$tool" check --list 2>/dev/null | sed 's/ .*//')" -- "$word")
        return
        ;;
    --type)
        mapfile -t COMPREPLY < <(compgen -W "$kinds" -- "$word")
        return
        ;;
    --require | --html)
        compopt -o filenames 2>/dev/null || true
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
        ;;
    --resident | --timeout) return ;;
    esac
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_orvoplugin_options "$tool" ${command:+"$command"})" -- "$word")
    elif [[ -z $command ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_orvoplugin_commands "$tool")" -- "$word")
    elif [[ $command == find && $arguments == 0 ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$kinds" -- "$word")
    else
        compopt -o filenames 2>/dev/null || true
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}

complete -F _orvoplugin orvoplugin
