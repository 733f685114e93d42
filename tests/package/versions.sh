#!/usr/bin/env bash
# find_package accepts the same major version, and nothing newer than the installed one.
. "$(dirname -- "$0")/support.sh"

fresh "$WORK/versions"
cat >"$WORK/versions/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(versions LANGUAGES CXX)
foreach(version ${TAKEN})
    find_package(orvoplugin ${version} CONFIG QUIET)
    if(NOT orvoplugin_FOUND)
        message(FATAL_ERROR "version ${version} should be taken")
    endif()
endforeach()
foreach(version ${REFUSED})
    find_package(orvoplugin ${version} CONFIG QUIET)
    if(orvoplugin_FOUND)
        message(FATAL_ERROR "version ${version} should be refused")
    endif()
endforeach()
if(DEMANDED)
    find_package(orvoplugin ${DEMANDED} CONFIG REQUIRED)
endif()
END
major=${VERSION%%.*}
minor=${VERSION%.*}
check() { configure "$WORK/versions" "$WORK/versions/build" "$WORK/moved" "$@"; }
check -DTAKEN="$major;$minor;$VERSION;$major.0" \
    -DREFUSED="$((major - 1));$((major + 1));$major.$((${minor#*.} + 1));$VERSION.1" >/dev/null
for version in $((major - 1)) $((major + 1)); do
    text=$(refused check -DDEMANDED="$version" | tr -s ' \n' ' ')
    demand_part "$text" "that is compatible with requested version \"$version\"" \
        "orvopluginConfig.cmake, version: $VERSION"
done
