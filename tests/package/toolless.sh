#!/usr/bin/env bash
# The package works with the libraries and the development files, without the tool.
. "$(dirname -- "$0")/support.sh"

rm -rf -- "$WORK/toolless" "$WORK/project-toolless"
cp -a -- "$WORK/moved" "$WORK/toolless"
rm -rf -- "$WORK/toolless/bin"
configure "$SOURCE/tests/package/projekt" "$WORK/project-toolless" "$WORK/toolless" >/dev/null
text=$(refused configure "$SOURCE/tests/package/projekt" "$WORK/project-toolless" "$WORK/toolless" \
    -DDEMANDED_TARGETS=orvo::tool)
demand_part "$text" "The package has no orvo::tool"
