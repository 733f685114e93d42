#!/usr/bin/env bash
# The example client that goes by a lock file, with a lock file of the installed tool.
. "$(dirname -- "$0")/support.sh"

build=$WORK/lock-client
home=$build/home
rm -rf -- "$build"
configure "$SOURCE/examples/lock-client" "$build" "$WORK/moved" -DCMAKE_FIND_USE_CMAKE_SYSTEM_PATH=ON >/dev/null
"$CMAKE" --build "$build" >"$build.log" || fail "$(<"$build.log")"
mkdir -p "$home/plugins/unter"
cp -- "$WORK/project-moved/libwohngeld.dylib" "$home/plugins/unter/"

export LD_LIBRARY_PATH=$WORK/moved/$LIBDIR
"$WORK/moved/bin/orvoplugin" lock --home "$home" >"$build/plugins.lock.json"
demand "$("$build/lockclient" "$home" "$build/plugins.lock.json")" "loaded $home/plugins/unter/libwohngeld.dylib"

cp -- "$home/plugins/unter/libwohngeld.dylib" "$home/plugins/libneu.dylib"
printf x >>"$home/plugins/unter/libwohngeld.dylib"
text=$(refused "$build/lockclient" "$home" "$build/plugins.lock.json")
demand "$text" \
    "refused $home/plugins/libneu.dylib: is not in the lock file" \
    "refused $home/plugins/unter/libwohngeld.dylib: is not as locked"
[[ $text != *loaded* ]] || fail "loaded nevertheless:"$'\n'"$text"
