#!/usr/bin/env bash
# line.sh <prefix> <name>
# Builds a client and a plugin with one compiler command each, with pkg-config's flags, and runs them.
. "$(dirname -- "$0")/support.sh"
need pkg-config

export PKG_CONFIG_LIBDIR=$1/$LIBDIR/pkgconfig # this one and no other
source=$SOURCE/tests/package/projekt
build=$WORK/$2
fresh "$build"
[[ $(pkg-config --modversion orvoutil orvoplugin orvoplugin-plugin | sort -u) == "$VERSION" ]] || fail "other versions"

# shellcheck disable=SC2046 # the flags are words
"$CXX" -std=c++20 -Wall -Wextra -Werror "$source/Kunde.cpp" \
    $(pkg-config --cflags --libs orvoplugin) -Wl,-rpath,"$(pkg-config --variable=libdir orvoplugin)" -o "$build/kunde"
# shellcheck disable=SC2046
"$CXX" -std=c++20 -Wall -Wextra -Werror "$source/Wohngeld.cpp" \
    $(pkg-config --cflags --libs orvoplugin-plugin) -o "$build/libwohngeld.dylib"

demand_service "" "$build/kunde" "$build/libwohngeld.dylib"
exported=$(nm -D --defined-only "$build/libwohngeld.dylib" | awk '{print $3}' | sort)
[[ $exported == $'orvo_plugin_get_check_service\norvo_plugin_get_types\norvo_plugin_initialize' ]] ||
    fail "the plugin exports more, or less, than its entry points:"$'\n'"$exported"

# With a client's flags it is a plugin too. The check reports what it lacks.
# shellcheck disable=SC2046
"$CXX" -std=c++20 -shared -fPIC "$source/Wohngeld.cpp" $(pkg-config --cflags --libs orvoplugin) \
    -o "$build/libohneflags.dylib"
if [[ $TOOL == 1 ]]; then
    findings=$(LD_LIBRARY_PATH=$1/$LIBDIR refused "$1/bin/orvoplugin" check --strict "$build/libohneflags.dylib")
    grep -q '^ *failed *exports ' <<<"$findings" || fail "no finding of its exports in:"$'\n'"$findings"
    if nm -D "$build/libohneflags.dylib" | grep -q ' u '; then # made by GCC
        grep -q '^ *failed *unique-symbols ' <<<"$findings" || fail "no unique symbol in:"$'\n'"$findings"
    fi
    LD_LIBRARY_PATH=$1/$LIBDIR "$1/bin/orvoplugin" check --quiet --strict "$build/libwohngeld.dylib" ||
        fail "the check finds fault with the plugin's own flags"
fi

# With the source that reserves room, it can be described.
# shellcheck disable=SC2046
"$CXX" -std=c++20 -Wall -Wextra -Werror "$source/Wohngeld.cpp" \
    $(pkg-config --variable=described orvoplugin-plugin) \
    $(pkg-config --cflags --libs orvoplugin-plugin) -o "$build/libbeschrieben.dylib"
if [[ $TOOL == 1 ]]; then
    demand_part "$(LD_LIBRARY_PATH=$1/$LIBDIR "$1/bin/orvoplugin" describe "$build/libbeschrieben.dylib")" \
        "libbeschrieben.dylib: described, "
fi
demand_service "" "$build/kunde" "$build/libbeschrieben.dylib"

# An undefined name must not fail only at its first call.
echo 'void nobody(); extern "C" void somebody() { nobody(); }' >"$build/Offen.cpp"
# shellcheck disable=SC2046
demand_part "$(refused "$CXX" -std=c++20 "$build/Offen.cpp" $(pkg-config --cflags --libs orvoplugin-plugin) \
    -o "$build/liboffen.dylib")" "nobody"
