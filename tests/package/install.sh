#!/usr/bin/env bash
# Installs the components one by one and moves the whole to another place.
. "$(dirname -- "$0")/support.sh"

rm -rf -- "$WORK/first" "$WORK/moved"
for component in runtime dev tool; do
    "$CMAKE" --install "$BUILD" --prefix "$WORK/first" --component "$component" --strip >/dev/null
    case $component in
    runtime) file=$LIBDIR/liborvoplugin.so.${VERSION%%.*} ;;
    dev) file=include/orvoplugin/registry/OrvoErweiterungsManager.h ;;
    tool) ((TOOL)) || break; file=bin/orvoplugin ;;
    esac
    [[ -f $WORK/first/$file ]] || fail "component $component brings no $file"
done
mv -- "$WORK/first" "$WORK/moved"
if ((TOOL)); then
    demand_part "$("$WORK/moved/bin/orvoplugin" --version)" "$VERSION"
    for file in man/man1/orvoplugin.1 bash-completion/completions/orvoplugin; do
        [[ -s $WORK/moved/share/$file ]] || fail "component tool brings no $file"
    done
fi
