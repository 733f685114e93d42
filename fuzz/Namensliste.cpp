// The setting that lists the resident plugins.

#include <orvoplugin/plugin/intern/Namensliste.h>

#include "Eingabe.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t laenge) {
    const std::string liste(reinterpret_cast<const char*>(daten), laenge);
    std::string wieder;
    std::ptrdiff_t anzahl = 0;
    fuerJedenNamen(liste, [&](std::string_view name) {
        verlange(name.find(',') == std::string_view::npos, "no entry has a comma");
        wieder.append(name).append(",");
        ++anzahl;
    });
    verlange(anzahl == std::count(liste.begin(), liste.end(), ','), "each comma ends an entry");
    verlange(liste.starts_with(wieder), "the entries are the list, in its order");
    verlange(liste.find(',', wieder.size()) == std::string::npos, "what is left is no entry");
    return 0;
}
