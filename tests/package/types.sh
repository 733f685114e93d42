#!/usr/bin/env bash
# types.sh [<prefix>]
# Client and plugin agree on classes. Each class of the libraries has one home: neither client nor plugin has its own
# type information for it. Without a prefix, all is built with libc++, which compares types by address, not by name.
. "$(dirname -- "$0")/support.sh"
need pkg-config nm

source=$SOURCE/tests/package/typen
build=$WORK/types${1:+-prefix}
prefix=${1:-$build/prefix}
flags="-std=c++20 -Wall -Wextra -Werror"
fresh "$build"
if (($# == 0)); then
    CXX=clang++
    flags+=" -stdlib=libc++"
    need clang++
    # shellcheck disable=SC2086 # the flags are words
    echo $'#include <string>\nint main() { return std::string().size(); }' |
        "$CXX" $flags -x c++ -o "$build/probe" - 2>/dev/null || skip "libc++ is not installed"
    # one unit for each library: this is about what is built, not about how it is cut
    configure "$SOURCE" "$build/libraries" / -DORVO_BUILD_TESTS=OFF -DORVO_BUILD_TOOL=OFF -DORVO_WERROR=ON \
        -DCMAKE_CXX_FLAGS=-stdlib=libc++ -DCMAKE_INSTALL_LIBDIR="$LIBDIR" \
        -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 >"$build/log" 2>&1 || fail "$(<"$build/log")"
    "$CMAKE" --build "$build/libraries" >"$build/log" || fail "$(<"$build/log")"
    "$CMAKE" --install "$build/libraries" --prefix "$prefix" >/dev/null
fi

export PKG_CONFIG_LIBDIR=$prefix/$LIBDIR/pkgconfig
mkdir -p "$build/home/plugins"
# shellcheck disable=SC2046,SC2086
"$CXX" $flags "$source/Kunde.cpp" $(pkg-config --cflags --libs orvoplugin) \
    -Wl,-rpath,"$(pkg-config --variable=libdir orvoplugin)" -o "$build/kunde"
# shellcheck disable=SC2046,SC2086
"$CXX" $flags "$source/Plugin.cpp" $(pkg-config --cflags --libs orvoplugin-plugin) -o "$build/home/plugins/libtypen.dylib"

# Programs may have copies of the tables themselves, which the linker makes, but not of the names in them.
type_names() { awk '$3 ~ /^_ZTS/ { print $3 }' | sort -u; }
homes=$(nm -D --defined-only "$prefix/$LIBDIR"/liborvo{util,plugin}.so | type_names)
grep -qx _ZTS7Service <<<"$homes" || fail "the libraries export no type information of Service"
for file in "$build/kunde" "$build/home/plugins/libtypen.dylib"; do
    own=$(nm --defined-only "$file" | type_names)
    grep -qx _ZTS7Zaehler <<<"$own" || fail "$file has no type information of Zaehler, of which it should have its own"
    twice=$(comm -12 <(printf '%s\n' "$homes") <(printf '%s\n' "$own"))
    [[ -z $twice ]] || fail "$file has type information of its own for classes of the libraries:"$'\n'"$twice"
done

demand "$("$build/kunde" "$build/home")" "1: counts 1" "2: counts 2" "3: counts 3" "4: counts 4" "5: shows 12" "6: shows 12" \
    "check service: 1" "typed: 1"
