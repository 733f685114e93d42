#!/usr/bin/env bash
# template.sh <folder of examples>
# A template from the package: copied, built, and run by its own test.
. "$(dirname -- "$0")/support.sh"

template=$WORK/$1
rm -rf -- "$template"
cp -r -- "$WORK/root/usr/share/doc/orvoplugin/examples/$1" "$template"
configure "$template" "$template/build" "$WORK/root/usr" >/dev/null
"$CMAKE" --build "$template/build" >"$template/log" || fail "$(<"$template/log")"
LD_LIBRARY_PATH=$WORK/root/usr/$LIBDIR "$CTEST" --test-dir "$template/build" --no-tests=error --output-on-failure
