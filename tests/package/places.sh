#!/usr/bin/env bash
# No installed and no packed file may name the place where it was built or installed.
. "$(dirname -- "$0")/support.sh"

if found=$(grep -rlF -e "$SOURCE" -e "$BUILD" -e "$WORK" -- "$WORK/moved" "$WORK/root"); then
    fail "these files name a place of this machine:"$'\n'"$found"
fi
