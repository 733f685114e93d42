#!/usr/bin/env bash
# When building for another system, a plugin is described through the emulator.
. "$SOURCE/tests/package/support.sh"

work=$WORK-emulator
fresh "$work"
printf '#!/bin/sh\necho "$@" >>"%s"\nexec "$@"\n' "$work/calls" >"$work/emulator"
chmod +x "$work/emulator"
configure "$SOURCE/tests/kit/ausserhalb/beschrieben" "$work/build" "$PREFIX" \
    -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_CROSSCOMPILING_EMULATOR="$work/emulator" >/dev/null
"$CMAKE" --build "$work/build" >/dev/null
plugin=$work/build/libbeschrieben.dylib
demand "$(<"$work/calls")" "$PREFIX/bin/orvoplugin describe --quiet --elsewhere $plugin"
demand_part "$("$PREFIX/bin/orvoplugin" describe "$plugin")" "$plugin: unchanged, "
