#!/usr/bin/env bash
# The client template uses the service of the plugin template, and reports when it is gone.
. "$SOURCE/tests/package/support.sh"

work=$WORK-zusammen
fresh "$work"
for template in plugin client; do
    configure "$SOURCE/examples/$template-template" "$work/$template" "$PREFIX" -DBUILD_TESTING=OFF >/dev/null
    "$CMAKE" --build "$work/$template" >"$work/log" || fail "$(<"$work/log")"
done
home=$work/plugin/home
demand "$("$work/client/meinclient" "$home" "Jahr=2009" 2>&1)" "accepted"
demand "$(refused "$work/client/meinclient" "$home" "")" "1 Datensatz: is empty" "refused"
rm -- "$home/plugins/libmeinplugin.dylib"
demand "$(refused "$work/client/meinclient" "$home" "Jahr=2009")" "no plugin below $home/plugins checks UFA_10 for 2009"
