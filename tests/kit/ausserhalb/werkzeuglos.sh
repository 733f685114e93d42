#!/usr/bin/env bash
# Without the tool, when building for another system and with a sanitizer, a plugin is built unchecked, and the
# configuration says so.
. "$SOURCE/tests/package/support.sh"

rm -rf -- "$WORK-toolless"
cp -a -- "$PREFIX" "$WORK-toolless"
rm -rf -- "$WORK-toolless/bin"
text=$(configure "$SOURCE/examples/plugin-template" "$WORK-toolless/build" "$WORK-toolless")
demand "$text" "-- Plugin meinplugin: not checked, the package orvoplugin came without its tool"
text=$(configure "$SOURCE/examples/plugin-template" "$WORK-toolless/other" "$PREFIX" \
    -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_CROSSCOMPILING=ON)
demand "$text" "-- Plugin meinplugin: not checked, it is built for another system"
# An author names a sanitizer in one of several places; the plugin links with each of them.
sanitized() {
    rm -rf -- "$WORK-toolless/sanitizer"
    text=$(configure "$SOURCE/examples/plugin-template" "$WORK-toolless/sanitizer" "$PREFIX" "$@")
    demand "$text" "-- Plugin meinplugin: not checked, it is built with a sanitizer"
    "$CMAKE" --build "$WORK-toolless/sanitizer" --target meinplugin >"$WORK-toolless/log" ||
        fail "$*: $(<"$WORK-toolless/log")"
}
sanitized -DCMAKE_CXX_FLAGS=-fsanitize=undefined
sanitized -DCMAKE_BUILD_TYPE=Eigen -DCMAKE_CXX_FLAGS_EIGEN=-fsanitize=undefined
printf 'add_%s_options(-fsanitize=undefined)\n' compile link >"$WORK-toolless/options.cmake"
sanitized "-DCMAKE_PROJECT_INCLUDE=$WORK-toolless/options.cmake"
"$CMAKE" --build "$WORK-toolless/build" --target meinplugin >/dev/null
