#!/usr/bin/env bash
# Libraries and tool bind all symbols at their start, and the loader makes its tables read-only then.
. "$(dirname -- "$0")/support.sh"
need readelf nm

files=("$WORK/moved/$LIBDIR"/lib*.so."$RELEASE.${VERSION#*.}")
! ((TOOL)) || files+=("$WORK/moved/bin/orvoplugin")
for file in "${files[@]}"; do
    segments=$(readelf -lW "$file")
    demand_part "$segments" "Elf file type is DYN" GNU_RELRO
    stack=$(grep GNU_STACK <<<"$segments")
    [[ $stack != *E* ]] || fail "$file has an executable stack: $stack"
    demand_part "$(readelf -dW "$file")" BIND_NOW
    demand_part "$(nm -D "$file")" __stack_chk_fail
done
