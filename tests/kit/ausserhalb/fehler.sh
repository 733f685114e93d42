#!/usr/bin/env bash
# fehler.sh <target> <part of a message>...
# The build of that target fails with a message that contains these parts, and fails again when repeated.
. "$SOURCE/tests/package/support.sh"

target=$1
shift
for _ in 1 2; do
    demand_part "$(refused "$CMAKE" --build "$WORK/build" --target "$target")" "$@"
done
