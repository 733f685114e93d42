#!/usr/bin/env bash
# Without the tool, and when building for another system, a plugin is built unchecked and undescribed, and the
# configuration says so.
. "$SOURCE/tests/package/support.sh"

rm -rf -- "$WORK-toolless"
cp -a -- "$PREFIX" "$WORK-toolless"
rm -rf -- "$WORK-toolless/bin"
text=$(configure "$SOURCE/examples/plugin-template" "$WORK-toolless/build" "$WORK-toolless")
demand "$text" "-- Plugin meinplugin: not checked, the package orvoplugin came without its tool"
"$CMAKE" --build "$WORK-toolless/build" --target meinplugin >/dev/null
text=$(configure "$SOURCE/tests/kit/ausserhalb/beschrieben" "$WORK-toolless/other" "$PREFIX" \
    -DCMAKE_SYSTEM_NAME=Linux 2>&1)
reason="it is built for another system, and CMAKE_CROSSCOMPILING_EMULATOR is not set"
demand "$text" "-- Plugin beschrieben: not checked, $reason"
demand_part "$(tr -s ' \n' ' ' <<<"$text")" "Plugin beschrieben: not described, $reason."
"$CMAKE" --build "$WORK-toolless/other" >/dev/null
