#!/usr/bin/env bash
# project.sh <prefix> <name>
# Configures, builds and runs a client and a plugin against the package of that prefix.
. "$(dirname -- "$0")/support.sh"

build=$WORK/project-$2
rm -rf -- "$build"
targets=
! ((TOOL)) || targets=orvo::tool
configure "$SOURCE/tests/package/projekt" "$build" "$1" -DDEMANDED_TARGETS="$targets" >/dev/null
"$CMAKE" --build "$build" >"$build.log" || fail "$(<"$build.log")"
found=$(grep '^orvoplugin_DIR:' "$build/CMakeCache.txt")
[[ ${found#*=} == "$1/$LIBDIR/cmake/orvoplugin" ]] || fail "built against $found"
demand_service "$1/$LIBDIR" "$build/kunde" "$build/libwohngeld.dylib"
