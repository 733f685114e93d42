#!/usr/bin/env bash
# With a sanitizer, which an author may set in several places, a plugin is built unchecked, and the configuration says
# so.
. "$SOURCE/tests/package/support.sh"

work=$WORK-sanitizer
fresh "$work"
sanitized() {
    rm -rf -- "$work/build"
    text=$(configure "$SOURCE/examples/plugin-template" "$work/build" "$PREFIX" "$@")
    demand "$text" "-- Plugin meinplugin: not checked, it is built with a sanitizer"
    "$CMAKE" --build "$work/build" --target meinplugin >"$work/log" ||
        fail "$*: $(<"$work/log")"
}
sanitized -DCMAKE_CXX_FLAGS=-fsanitize=undefined
sanitized -DCMAKE_BUILD_TYPE=Eigen -DCMAKE_CXX_FLAGS_EIGEN=-fsanitize=undefined
printf 'add_%s_options(-fsanitize=undefined)\n' compile link >"$work/options.cmake"
sanitized "-DCMAKE_PROJECT_INCLUDE=$work/options.cmake"
