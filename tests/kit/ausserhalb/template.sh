#!/usr/bin/env bash
# template.sh <folder of examples>
# A template, copied to a place outside this tree, builds against the installed package and passes its test.
. "$SOURCE/tests/package/support.sh"

place=$(mktemp -d)
trap 'rm -rf -- "$place"' EXIT
cp -r -- "$SOURCE/examples/$1" "$place/my project"
configure "$place/my project" "$place/build" "$PREFIX" -DCMAKE_CXX_FLAGS=-Werror >"$place/log" || fail "$(<"$place/log")"
"$CMAKE" --build "$place/build" >"$place/log" || fail "$(<"$place/log")"
"$CTEST" --test-dir "$place/build" --output-on-failure --no-tests=error >"$place/log" || fail "$(<"$place/log")"
demand_part "$(<"$place/log")" "100% tests passed, 0 tests failed out of 1"
dylib=("$place"/build/home/plugins/lib*.dylib) # with the plugin that is made, or that the test needs
[[ $(nm -D --defined-only "${dylib[@]}" | wc -l) -eq 3 ]] || fail "it exports $(nm -D --defined-only "${dylib[@]}")"
