#!/usr/bin/env bash
# completion.sh TOOL COMPLETION: what bash offers for the tool is what the tool has.
set -euo pipefail
tool=$1
# shellcheck source=/dev/null
source "$2"
wrong=0

# erwarte <what is expected, sorted> <words of the command line, the last one being completed>...
erwarte() {
    local erwartet=$1 wort
    shift
    COMP_WORDS=("$tool" "$@")
    COMP_CWORD=$#
    wort=${COMP_WORDS[COMP_CWORD]}
    _orvoplugin "$tool" "$wort" "${COMP_WORDS[COMP_CWORD - 1]}"
    local ist
    ist=$(printf '%s\n' "${COMPREPLY[@]}" | sort)
    if [[ $ist != "$erwartet" ]]; then
        printf 'after "%s": got\n%s\nwanted\n%s\n' "$*" "$ist" "$erwartet"
        wrong=1
    fi
}

befehle=$("$tool" --help | awk '/^Subcommands:/ { an = 1; next } !NF { an = 0 } an { print $1 }' | sort)
[[ $befehle == *list* ]] || { echo "no commands in the help"; exit 1; }
erwarte "$befehle" ""
erwarte list li
erwarte "$befehle" --home /tmp ""
for befehl in $befehle; do
    optionen=$("$tool" "$befehl" --help | awk '/^ +-/ { sub(/^-h,/, "", $1); print $1 }' | sort)
    [[ $optionen == *--json* ]] || { echo "no options in the help of $befehl"; exit 1; }
    erwarte "$optionen" "$befehl" --
done
erwarte --json list --js
erwarte "$(printf 'debug\nerror\ninfo\nwarn')" list --log ""
erwarte "$(printf 'debug\nerror\ninfo\nwarn')" list --log = ""
erwarte "$(printf 'debug\nerror\ninfo\nwarn')" list --log =
erwarte debug list --log = d
erwarte "$befehle" --log = debug --home=/tmp ""
erwarte "$befehle" --home = /tmp ""
erwarte xpath_mapping find x
erwarte xpath_mapping find --log debug x
erwarte xpath_mapping --log debug --home = /tmp find --json x
erwarte xpath_mapping coverage --type x
erwarte xpath_mapping coverage --type = x
erwarte xpath_mapping coverage --json --type x
erwarte "$(printf 'describes\ndescribes-twice')" check --only describes
erwarte umask check --skip uma
erwarte sarif check --format s
ordner=$(mktemp -d)
trap 'rm -rf "$ordner"' EXIT
mkdir "$ordner/heim"
touch "$ordner/libx.dylib"
erwarte "$ordner/heim" list --home "$ordner/"
erwarte "$(printf '%s\n' "$ordner/heim" "$ordner/libx.dylib")" show "$ordner/"
erwarte "$(printf '%s\n' "$ordner/heim" "$ordner/libx.dylib")" coverage --require "$ordner/"
erwarte "$(printf '%s\n' "$ordner/heim" "$ordner/libx.dylib")" coverage --html = "$ordner/"
erwarte exports,umask check --only exports,uma
erwarte alle, list --resident al
erwarte LSTB find check LST
erwarte LSTB why check LST
erwarte "$(printf 'Bilanz_5_0\nBilanz_5_1')" find --log debug check B
mkdir -p "$ordner/heim/plugins/unter"
touch "$ordner/heim/plugins/libA.dylib" "$ordner/heim/plugins/unter/libb c.dylib" "$ordner/heim/plugins/lies.txt"
erwarte "$(printf 'libA.dylib\nunter/libb c.dylib')" show --home "$ordner/heim" ""
erwarte libA.dylib show --dir = "$ordner/heim/plugins" lib
erwarte xpath_mapping why --home "$ordner/heim" x
erwarte "$(printf 'x,a,\nx,alle,')" list --home "$ordner/heim" --resident x,a
HOME=$ordner erwarte libA.dylib why --home "~/heim" lib
exit $wrong
