#!/usr/bin/env bash
# Without a setting, the home directory is that of the libraries; a copy elsewhere has its own.
. "$(dirname -- "$0")/support.sh"

fresh "$WORK/elsewhere"
cp -a -- "$WORK/moved/$LIBDIR" "$WORK/elsewhere/lib"
fresh "$WORK/elsewhere/lib/plugins"
cp -- "$WORK/project-moved/libwohngeld.dylib" "$WORK/elsewhere/lib/plugins/"
cd / # never the current directory
demand "$(LD_LIBRARY_PATH=$WORK/elsewhere/lib "$WORK/project-moved/kunde")" \
    "home: $WORK/elsewhere/lib" "features: 1" "mapped after: 0"
demand "$("$WORK/project-moved/kunde" || true)" "home: $WORK/moved/$LIBDIR" "nobody answers"
