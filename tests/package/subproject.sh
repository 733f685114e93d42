#!/usr/bin/env bash
# This tree as a part of another project: it brings the libraries and the kit, and installs nothing unless asked to. The
# check of a plugin runs if the tool is built; if not, the configuration says how. (docs/building.md builds such a
# project; here it is only configured.)
. "$(dirname -- "$0")/support.sh"

project=$WORK/subproject
fresh "$project"
cp -- "$SOURCE"/tests/package/projekt/*.cpp "$project/"
# subproject <statement that brings this tree> [<CMake option>...]
subproject() {
    printf '%s\n' 'cmake_minimum_required(VERSION 3.25)' 'project(haupt LANGUAGES CXX)' 'include(FetchContent)' \
        "FetchContent_Declare(orvoplugin SOURCE_DIR \"$SOURCE\")" "$1" \
        'add_executable(kunde Kunde.cpp)' 'target_link_libraries(kunde PRIVATE orvo::orvoplugin)' \
        'orvo_add_plugin(wohngeld Wohngeld.cpp)' >"$project/CMakeLists.txt"
    rm -rf -- "$project/build"
    "$CMAKE" -S "$project" -B "$project/build" -G Ninja -DCMAKE_CXX_COMPILER="$CXX" "${@:2}"
}
command_of() { "$CMAKE" --build "$project/build" -- -t commands "$1"; }

for statement in "add_subdirectory(\"$SOURCE\" orvoplugin)" "FetchContent_MakeAvailable(orvoplugin)"; do
    demand "$(subproject "$statement")" \
        "-- Plugin wohngeld: not checked, the tool that does it is built only with ORVO_BUILD_TOOL=ON"
    "$CMAKE" --install "$project/build" --prefix "$project/prefix" >/dev/null
    [[ ! -e $project/prefix && ! -e $project/build/CPackConfig.cmake ]] || fail "$statement: it installs, or packs"
    [[ $(command_of libwohngeld.dylib) == *liborvoplugin.so.* ]] || fail "$statement: it does not build the libraries"
done

subproject "$statement" -DORVO_INSTALL=ON >/dev/null
grep -q orvopluginConfig.cmake -r "$project/build" --include=cmake_install.cmake || fail "ORVO_INSTALL=ON installs nothing"

((TOOL)) || exit 0 # what builds the tool may be missing
text=$(subproject "$statement" -DORVO_BUILD_TOOL=ON)
[[ $text != *"not checked"* ]] || fail "$text"
tool=_deps/orvoplugin-build/tools/orvoplugin/orvoplugin
demand_part "$(command_of libwohngeld.dylib | tail -n 1)" "$tool check --quiet --strict --elsewhere --only file-name,"
demand_part "$("$CMAKE" --build "$project/build" -- -t query libwohngeld.dylib)" "$tool"
