#!/usr/bin/env bash
# Debian's own check of packages is silent; what it would say wrongly stands in cmake/debian/*.lintian-overrides.
. "$(dirname -- "$0")/support.sh"
need lintian

options=(--suppress-tags unused-override) # compilers differ in what needs one
if grep -q '^CMAKE_BUILD_TYPE:.*=Debug$' "$BUILD/CMakeCache.txt"; then
    options=(--suppress-tags unused-override,hardening-no-fortify-functions) # these are there in optimised builds only
fi
cd -- "$WORK/debs"
text=$(lintian --allow-root --info --display-info "${options[@]}" ./*.deb)
[[ -z $text ]] || fail "$text"
