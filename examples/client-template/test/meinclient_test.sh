#!/bin/sh
# meinclient_test.sh CLIENT HOME
# Runs the client with a plugin in its home directory and without, and checks its output and exit status.
client=$1
home=$2
failed=0

# erwarte STATUS LINE ARGUMENT... : the client ends with the status and writes the line
erwarte() {
    status=$1
    line=$2
    shift 2
    text=$("$client" "$@" 2>&1)
    found=$?
    if [ "$found" -eq "$status" ] && printf '%s\n' "$text" | grep -qxF -e "$line"; then
        echo "ok      $line"
    else
        printf 'FAILED  %s: status %s, and\n%s\n' "$line" "$found" "$text"
        failed=1
    fi
}

erwarte 0 "accepted" "$home" "Jahr=2009"
erwarte 1 "1 Datensatz: record 2 is empty" "$home" "Jahr=2009" ""
erwarte 3 "no plugin below $home/nothing/plugins checks UFA_10 for 2009" "$home/nothing" "Jahr=2009"
erwarte 2 "usage: meinclient HOME RECORD..."
exit $failed
