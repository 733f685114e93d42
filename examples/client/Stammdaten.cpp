#include "Stammdaten.h"

#include "Ausleihe.h"

#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Latin1.h>
#include <stammdaten/schnittstelle/DateiLeserService.h>
#include <stammdaten/schnittstelle/FinanzamtService.h>

#include <stdexcept>

using namespace orvo::orvoutil;

std::vector<std::string> liesDatensaetze(const OrvoErweiterungsManager& registratur, const Unterfallart& ua,
                                         const Veranlagungszeitraum& vz, const std::string& pfad) {
    const Ausleihe ausleihe(registratur.findeDatensatzReaderServiceErweiterung(ua, vz));
    auto* const leser = dynamic_cast<stammdaten::DateiLeserService*>(ausleihe.get());
    if (!leser)
        throw std::runtime_error("Kein Dienst liest Datensätze aus " + pfad);
    std::vector<std::string> texte;
    std::string grund;
    if (!leser->lies(pfad, texte, grund))
        throw std::runtime_error(toUtf8(grund));
    return texte;
}

std::string finanzamtName(const OrvoErweiterungsManager& registratur, const std::string& nummer) {
    const Ausleihe ausleihe(registratur.findeFADatenServiceErweiterung());
    const auto* const finanzaemter = dynamic_cast<const stammdaten::FinanzamtService*>(ausleihe.get());
    return finanzaemter ? latin1ToUtf8(finanzaemter->nameVon(nummer)) : std::string();
}
