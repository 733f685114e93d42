#!/usr/bin/env bash
# Compiling a plugin with another standard library, another setting of it, an older language, or without a language
# feature that the headers need fails at the header with a message.
. "$(dirname -- "$0")/support.sh"

plugin=$SOURCE/tests/package/projekt/Wohngeld.cpp
compile() { "$CXX" -std=c++20 "-I$WORK/moved/include" -fsyntax-only "$@" "$plugin"; }
compile
demand_part "$(refused compile -std=c++17)" "orvoplugin: the headers need C++20"
demand_part "$(refused compile -D_GLIBCXX_USE_CXX11_ABI=0)" \
    "orvoplugin: the libraries were built with -D_GLIBCXX_USE_CXX11_ABI=1; compile this with the same setting"
demand_part "$(refused compile -D_GLIBCXX_DEBUG)" \
    "orvoplugin: this and the libraries differ in _GLIBCXX_DEBUG, which changes the containers"
demand_part "$(refused compile -fno-rtti)" "orvoplugin: the libraries ask objects for their class; compile without -fno-rtti"
demand_part "$(refused compile -fno-exceptions -include orvoplugin/plugin/Absicherung.h)" \
    "orvoplugin: abgesichert catches exceptions; compile without -fno-exceptions, or without this header"

# The other standard library, if installed; GCC uses it as a folder of headers.
for folder in /usr/include/c++/v1 /usr/lib/llvm-*/include/c++/v1; do
    [[ -f $folder/version ]] || continue
    demand_part "$(refused compile -nostdinc++ -isystem "$folder")" \
        "orvoplugin: the libraries were built with libstdc++; compile this with the same standard library"
    exit 0
done
echo "libc++ is not installed: not tried"
