#!/usr/bin/env bash
# With each linker that is installed, a plugin is built that has its description in the first page of its file, also
# after strip.
. "$SOURCE/tests/package/support.sh"
need readelf strip

tool=$PREFIX/bin/orvoplugin
built=0
for linker in bfd gold lld mold; do
    "$CXX" -fuse-ld="$linker" -Wl,--version -x none >/dev/null 2>&1 || continue
    build=$WORK-beschrieben/$linker
    fresh "$build"
    configure "$SOURCE/tests/kit/ausserhalb/beschrieben" "$build" "$PREFIX" \
        -DCMAKE_MODULE_LINKER_FLAGS="-fuse-ld=$linker" >"$build.log" || fail "$(<"$build.log")"
    "$CMAKE" --build "$build" >"$build.log" || fail "$(<"$build.log")"
    plugin=$build/libbeschrieben.dylib
    offset=$(readelf -SW "$plugin" | grep -F .note.orvo.plugin | grep -oE 'NOTE +[0-9a-f]+ [0-9a-f]+' | awk '{print $3}')
    ((16#$offset < 4096)) || fail "$linker: the note stands at 0x$offset"
    for _ in built stripped; do
        demand_part "$("$tool" describe "$plugin")" "$plugin: unchanged, " " of 4096 bytes"
        strip "$plugin"
    done
    built=$((built + 1))
done
((built > 0)) || fail "no linker was tried"
