#!/usr/bin/env bash
# Configures the authors' project, and builds its correct targets.
. "$SOURCE/tests/package/support.sh"

fresh "$WORK"
configure "$SOURCE/tests/kit/ausserhalb/projekt" "$WORK/build" "$PREFIX" >"$WORK/log" || fail "$(<"$WORK/log")"
"$CMAKE" --build "$WORK/build" --target all fehlerfrei >"$WORK/log" || fail "$(<"$WORK/log")"
! nm -D --defined-only "$WORK/build/zweimal/libzweites.dylib" | grep -v ' T orvo_plugin_' ||
    fail "the second directory builds without the options of the kit"
