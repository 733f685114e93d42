#!/usr/bin/env bash
# Installs the components one by one, checks the files of each, and moves the whole to another place.
. "$(dirname -- "$0")/support.sh"

documents=share/doc/orvoplugin
# files of each component; of many alike, one or two
declare -A files=(
    [runtime]="$LIBDIR/liborvoplugin.so.$RELEASE $LIBDIR/liborvoutil.so.$RELEASE"
    [dev]="$LIBDIR/liborvoplugin.so $LIBDIR/liborvoutil.so
        include/orvoplugin/registry/OrvoErweiterungsManager.h include/orvoutil/Standardbibliothek.h
        $LIBDIR/cmake/orvoplugin/orvopluginConfig.cmake $LIBDIR/cmake/orvoplugin/OrvoPlugin.cmake
        $LIBDIR/cmake/orvoplugin/plugin.description.cpp
        $LIBDIR/pkgconfig/orvoplugin.pc $LIBDIR/pkgconfig/orvoplugin-plugin.pc
        share/man/man3/liborvoplugin.3
        $documents/docs/client.md $documents/docs/client-reference.md $documents/docs/building.md $documents/docs/flow.svg
        $documents/docs/plugin-author.md $documents/docs/plugin-reference.md
        $documents/examples/plugin-template/README.md $documents/examples/client-template/README.md"
    [tool]="bin/orvoplugin
        share/man/man1/orvoplugin.1 share/man/de/man1/orvoplugin.1
        share/locale/de/LC_MESSAGES/orvoplugin.mo
        share/bash-completion/completions/orvoplugin share/zsh/vendor-completions/_orvoplugin
        share/orvoplugin/orvoplugin.schema.json"
)
guides=
for page in operator de/operator check json glossary compatibility platforms security predefined; do
    guides+=" $documents/docs/$page.md"
done
components=(runtime dev)
if ((TOOL)); then
    components+=(tool)
    files[tool]+=" $guides"
else
    files[dev]+=" $guides"
fi

fresh "$WORK/first"
fresh "$WORK/moved"
for component in "${components[@]}"; do
    place=$WORK/first/$component
    "$CMAKE" --install "$BUILD" --prefix "$place" --component "$component" --strip >/dev/null
    for file in ${files[$component]}; do
        [[ -s $place/$file || -L $place/$file ]] || fail "component $component brings no $file"
    done
    cp -a -- "$place/." "$WORK/moved/"
done
# Two packages may not hold the same file.
twice=$(find "$WORK/first" -mindepth 2 ! -type d -printf '%P\n' | sed 's|^[^/]*/||' | sort | uniq -d)
[[ -z $twice ]] || fail "several components bring:"$'\n'"$twice"
rm -rf -- "$WORK/first"
if ((TOOL)); then
    demand_part "$("$WORK/moved/bin/orvoplugin" --version)" "$VERSION"
fi
