#!/usr/bin/env bash
# The names by which the loader finds the libraries, and where it looks for them.
. "$(dirname -- "$0")/support.sh"
need readelf

for name in orvoplugin orvoutil; do
    library=$WORK/moved/$LIBDIR/lib$name.so
    [[ $(readlink -- "$library") == lib$name.so.$RELEASE ]] || fail "$library leads to $(readlink -- "$library")"
    [[ $(readlink -- "$library.$RELEASE") == lib$name.so.$RELEASE.${VERSION#*.} ]] || fail "$library.$RELEASE leads elsewhere"
    demand_part "$(readelf -dW "$library")" "Library soname: [lib$name.so.$RELEASE]"
done
demand_part "$(readelf -dW "$WORK/moved/$LIBDIR/liborvoplugin.so")" \
    "Shared library: [liborvoutil.so.$RELEASE]" 'Library runpath: [$ORIGIN]'
# only each other, the standard library and the system's own
needed=$(readelf -dW "$WORK/moved/$LIBDIR"/lib*.so."$RELEASE.${VERSION#*.}" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | sort -u)
while read -r library; do
    [[ $library =~ ^(liborvoutil|libstdc\+\+|libc\+\+|libc\+\+abi|libgcc_s|libm|libc|libdl|ld-linux.*)\.so ]] ||
        fail "the libraries need $library"
done <<<"$needed"
if ((TOOL)); then
    path=$(realpath --relative-to "$WORK/moved/bin" -- "$WORK/moved/$LIBDIR")
    demand_part "$(readelf -dW "$WORK/moved/bin/orvoplugin")" "Library runpath: [\$ORIGIN/$path]"
fi
