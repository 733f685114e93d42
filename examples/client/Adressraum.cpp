#include "Adressraum.h"

#include <filesystem>
#include <fstream>

#include <dlfcn.h>

namespace {

bool istBeimLader(const std::string& pfad) {
    void* const griff = dlopen(pfad.c_str(), RTLD_LAZY | RTLD_NOLOAD); // a query only: does not load
    return griff && dlclose(griff) == 0;
}

bool istInSpeicherkarte(const std::string& pfad) {
    const std::string ende = ' ' + std::filesystem::weakly_canonical(pfad).string();
    std::ifstream karte("/proc/self/maps");
    for (std::string zeile; std::getline(karte, zeile);)
        if (zeile.ends_with(ende))
            return true;
    return false;
}

} // namespace

Adressraum Adressraum::von(const std::string& pfad) { return {istBeimLader(pfad), istInSpeicherkarte(pfad)}; }
