#!/usr/bin/env bash
# The packages' metadata, and the places of their files.
. "$(dirname -- "$0")/support.sh"

need dpkg-gensymbols

field() { dpkg-deb -f "$WORK/debs/$1_${VERSION}_"*.deb "$2"; }
demand_field() {
    local found
    found=$(field "$1" "$2")
    [[ $found == "$3" ]] || fail "$1 has $2: $found"
}

runtime=liborvoplugin$RELEASE
demand_field "$runtime" Section libs
demand_field liborvoplugin-dev Section libdevel
depends=$(field "$runtime" Depends)
[[ $depends =~ libc6.*libstdc\+\+6 && $depends != *orvo* && $depends != *nettle* ]] || fail "$runtime depends on $depends"
if ((TOOL)); then
    demand_field orvoplugin Section utils
    demand_field liborvoplugin-dev Depends "$runtime (= $VERSION), orvoplugin (= $VERSION)"
    depends=$(field orvoplugin Depends)
    [[ $depends =~ ^"$runtime (= $VERSION), ".*libc6.*libnettle.*libstdc\+\+6 ]] || fail "orvoplugin depends on $depends"
else
    demand_field liborvoplugin-dev Depends "$runtime (= $VERSION)"
fi
control() { dpkg-deb --info "$WORK/debs/$1_${VERSION}_"*.deb "$2"; }
demand "$(control "$runtime" triggers)" "activate-noawait ldconfig"
demand "$(control "$runtime" shlibs)" "liborvoplugin $RELEASE $runtime (>= $VERSION)" "liborvoutil $RELEASE $runtime (>= $VERSION)"

# Every exported symbol is in the recorded list, and every recorded one is exported (as GCC compiles the libraries).
if [[ $("$CXX" --version) == *"Free Software Foundation"* ]]; then
    fresh "$WORK/gensymbols/debian"
    : >"$WORK/gensymbols/debian/control"
    libraries=("$WORK/root/usr/$LIBDIR"/lib*.so."$RELEASE.${VERSION#*.}")
    (cd -- "$WORK/gensymbols" &&
        dpkg-gensymbols "-p$runtime" "-v$VERSION" -c4 "-I$SOURCE/cmake/debian/symbols" -Osymbols "${libraries[@]/#/-e}") ||
        fail "scripts/abi --record records the symbols"
    [[ $(control "$runtime" symbols) == "$(<"$WORK/gensymbols/symbols")" ]] || fail "$runtime has another list of symbols"
fi

for deb in "$WORK/debs"/*.deb; do
    name=$(dpkg-deb -f "$deb" Package)
    listing=$(dpkg-deb -c "$deb")
    demand_part "$listing" "./usr/share/doc/$name/copyright" "./usr/share/doc/$name/changelog.gz"
    strange=$(grep -vE '^(drwxr-xr-x|lrwxrwxrwx|-rw-r--r--|-rwxr-xr-x .* \./usr/bin/[^ ]+$)' <<<"$listing" || true)
    [[ -z $strange ]] || fail "$name holds files with strange modes:"$'\n'"$strange"
    strange=$(grep -vE '^[^ ]+ root/root ' <<<"$listing" || true)
    [[ -z $strange ]] || fail "$name holds files of strange owners:"$'\n'"$strange"
done
# Runtimes of two major versions can be installed together: every file name has the version.
listing=$(dpkg-deb -c "$WORK/debs/${runtime}_${VERSION}_"*.deb)
! grep -qE '\.so( |$)|include/|\.cmake|\.pc$' <<<"$listing" || fail "$runtime holds what is for development"
