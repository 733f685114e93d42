#!/usr/bin/env bash
# Without the tool, and when building for another system, a plugin is built unchecked, and the configuration says so.
. "$SOURCE/tests/package/support.sh"

rm -rf -- "$WORK-toolless"
cp -a -- "$PREFIX" "$WORK-toolless"
rm -rf -- "$WORK-toolless/bin"
text=$(configure "$SOURCE/examples/plugin-template" "$WORK-toolless/build" "$WORK-toolless")
demand "$text" "-- Plugin meinplugin: not checked, the package orvoplugin came without its tool"
text=$(configure "$SOURCE/examples/plugin-template" "$WORK-toolless/other" "$PREFIX" \
    -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_CROSSCOMPILING=ON)
demand "$text" "-- Plugin meinplugin: not checked, it is built for another system"
"$CMAKE" --build "$WORK-toolless/build" --target meinplugin >/dev/null
