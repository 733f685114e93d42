#!/usr/bin/env bash
# A plugin that was built against libraries of another SOVERSION is refused with a log entry that names both, whether or
# not these libraries can be found and would be loaded beside the right ones.
. "$(dirname -- "$0")/support.sh"

next=$((RELEASE + 1))
release=$WORK/release
rm -rf -- "$release" "$WORK/project-release"
cp -a -- "$WORK/moved" "$release"
rm -rf -- "$release/bin"
for file in "$release/$LIBDIR"/lib*.so.*; do
    if [[ -L $file ]]; then
        ln -s "$(readlink -- "$file" | sed "s/\.so\.$RELEASE/.so.$next/")" "${file/.so.$RELEASE/.so.$next}"
        rm -- "$file"
    else
        mv -- "$file" "${file/.so.$RELEASE/.so.$next}"
    fi
done
for library in orvoplugin orvoutil; do
    ln -sf "lib$library.so.$next" "$release/$LIBDIR/lib$library.so"
done
find "$release/$LIBDIR" -type f -exec sed -i "s/\(liborvo[a-z]*\.so\.\)$RELEASE/\1$next/g" {} + # of the same length

project=$WORK/project-release
configure "$SOURCE/tests/package/projekt" "$project" "$release" >/dev/null
"$CMAKE" --build "$project" --target wohngeld >"$project.log" || fail "$(<"$project.log")"
plugin=$project/libwohngeld.dylib
demand_part "$(readelf -dW "$plugin")" "Shared library: [liborvoplugin.so.$next]" "$release/$LIBDIR"

fresh "$WORK/release-home/plugins"
cp -- "$plugin" "$WORK/release-home/plugins/"
for case in "beside the right ones" "missing"; do
    [[ $case != missing ]] || rm -rf -- "$release"
    text=$(refused "$WORK/project-moved/kunde" "$WORK/release-home")
    demand "$text" "nobody answers"
    grep -q "libwohngeld.dylib.*liborvoplugin\.so\.$next.*liborvoplugin\.so\.$RELEASE" <<<"$text" ||
        fail "no clear entry in the log with the other libraries $case:"$'\n'"$text"
done
