#include "datei/Bibliotheksbild.h"

#include "datei/ElfInhalt.h"

#include <orvoelf/Dateiblick.h>
#include <orvoutil/Latin1.h>

#include <algorithm>

namespace werkzeug {

namespace {

constexpr orvo::orvoutil::Latin1Text kUngueltigerName{u8"Der Name ist ungültig."};

const Bibliothekssymbol* finde(const std::vector<Bibliothekssymbol>& symbole, std::string_view name) {
    const auto stelle =
        std::find_if(symbole.begin(), symbole.end(), [&](const auto& s) { return s.name == name; });
    return stelle == symbole.end() ? nullptr : &*stelle;
}

} // namespace

Bibliotheksbild::Bibliotheksbild(const std::string& pfad) : pfad_(pfad) {
    if (pfad.empty() || pfad.find('\0') != std::string::npos)
        grund_ = kUngueltigerName;
    else
        grund_ = orvo::orvoelf::blickeAufDatei(pfad).grund;
    if (grund_.empty())
        grund_ = liesElf(pfad, inhalt_);
}

const Bibliothekssymbol* Bibliotheksbild::findeExportiertes(std::string_view name) const {
    return finde(inhalt_.exportierte, name);
}

bool Bibliotheksbild::exportiertFunktion(std::string_view name) const {
    const Bibliothekssymbol* const symbol = findeExportiertes(name);
    return symbol && symbol->art == Symbolart::Funktion;
}

bool Bibliotheksbild::hatThreadDestruktoren() const {
    const auto& undefinierte = inhalt_.undefinierte;
    return finde(undefinierte, "__cxa_thread_atexit") || finde(undefinierte, "__cxa_thread_atexit_impl");
}

} // namespace werkzeug
