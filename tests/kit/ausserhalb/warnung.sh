#!/usr/bin/env bash
# warnung.sh <target> <part of a message>...
# The build of that target makes the plugin, with a warning that contains these parts.
. "$SOURCE/tests/package/support.sh"

target=$1
shift
plugin=$WORK/build/fehler/lib$target.dylib
rm -f -- "$plugin"
text=$("$CMAKE" --build "$WORK/build" --target "$target" 2>&1) || fail "$text"
demand_part "$text" "$@"
[[ -s $plugin ]] || fail "there is no $plugin"
