#!/usr/bin/env bash
# A target named like its file would give the file a second suffix or prefix. A target with the suffix is refused. The
# prefix may be part of a word (libelle), so the configuration only prints the file name.
. "$SOURCE/tests/package/support.sh"

work=$WORK-names
fresh "$work"
project() {
    printf '%s\n' 'cmake_minimum_required(VERSION 3.25)' 'project(namen LANGUAGES CXX)' \
        'find_package(orvoplugin CONFIG REQUIRED)' "orvo_add_plugin($1 SOURCES plugin.cpp NO_CHECK)" \
        >"$work/CMakeLists.txt"
    : >"$work/plugin.cpp"
    configure "$work" "$work/build" "$PREFIX" 2>&1 | tr -s ' \n' ' ' # CMake breaks lines where it likes
}
for target in wohngeld.dylib libelle.DYLIB .dylib; do
    demand_part "$(refused project "$target")" \
        "orvo_add_plugin($target): the file is lib<target>.dylib; leave \".dylib\" out of the target's name"
done
demand_part "$(project libwohngeld)" \
    "-- Plugin libwohngeld: the file is liblibwohngeld.dylib; leave \"lib\" out of the target's name, if once is enough"
for target in wohngeld alibi dylib; do
    text=$(project "$target")
    ! grep -qF -e "-- Plugin" <<<"$text" || fail "$text"
done
