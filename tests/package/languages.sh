#!/usr/bin/env bash
# A project without C++ does not find the package, and is told why.
# Without any language, CMake does not search in the directory of the machine's architecture, so the test names it.
. "$(dirname -- "$0")/support.sh"

for languages in C NONE; do
    fresh "$WORK/languages"
    printf '%s\n' 'cmake_minimum_required(VERSION 3.25)' "project(sprachen LANGUAGES $languages)" \
        'find_package(orvoplugin CONFIG REQUIRED)' >"$WORK/languages/CMakeLists.txt"
    text=$(refused configure "$WORK/languages" "$WORK/languages/build" "$WORK/moved" \
        -Dorvoplugin_DIR="$WORK/moved/$LIBDIR/cmake/orvoplugin" | tr -s ' \n' ' ')
    demand_part "$text" "orvoplugin is a package for C++, which this project does not use: write" \
        "project(sprachen LANGUAGES CXX)."
done
