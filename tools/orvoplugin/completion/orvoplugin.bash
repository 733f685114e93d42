# bash completion for orvoplugin. What commands and options there are, the tool itself says.

_orvoplugin_options() {
    "$@" --help 2>/dev/null | grep -oE '^ +(-[a-z],)?--[a-z-]+' | grep -oE -- '--[a-z-]+'
}

_orvoplugin_commands() {
    "$1" --help 2>/dev/null | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p'
}

_orvoplugin() {
    local tool=$1 word=$2 previous=$3 command= i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
        --home | --dir | --resident | --log | --timeout | --only | --skip) ((i++)) ;;
        -*) ;;
        *)
            command=${COMP_WORDS[i]}
            break
            ;;
        esac
    done

    case $previous in
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
    --resident | --timeout) return ;;
    esac
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_orvoplugin_options "$tool" ${command:+"$command"})" -- "$word")
    elif [[ -z $command ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_orvoplugin_commands "$tool")" -- "$word")
    elif [[ $command == find && ${COMP_WORDS[COMP_CWORD - 1]} == find ]]; then
        mapfile -t COMPREPLY < <(compgen -W 'check feld_information fehler_text_daten finanzamts_daten xpath_mapping
            datensatz_reader' -- "$word")
    else
        compopt -o filenames 2>/dev/null || true
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}

complete -F _orvoplugin orvoplugin
