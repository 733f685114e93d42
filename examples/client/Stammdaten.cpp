#include "Stammdaten.h"

#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/ServiceGriff.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Latin1.h>
#include <stammdaten/schnittstelle/DateiLeserService.h>
#include <stammdaten/schnittstelle/FinanzamtService.h>

#include <stdexcept>

using namespace orvo::orvoutil;

std::vector<std::string> liesDatensaetze(const OrvoErweiterungsManager& registratur, const Unterfallart& ua,
                                         const Veranlagungszeitraum& vz, const std::string& pfad) {
    const ServiceGriff<stammdaten::DateiLeserService> leser(
        registratur.findeDatensatzReaderServiceErweiterung(ua, vz));
    if (!leser)
        throw std::runtime_error("Kein Dienst liest Datensätze aus " + pfad);
    std::vector<std::string> texte;
    std::string grund;
    if (!leser->lies(pfad, texte, grund))
        throw std::runtime_error(toUtf8(grund));
    return texte;
}

std::string finanzamtName(const OrvoErweiterungsManager& registratur, const std::string& nummer) {
    const ServiceGriff<stammdaten::FinanzamtService> finanzaemter(
        registratur.findeFADatenServiceErweiterung());
    return finanzaemter ? latin1ToUtf8(finanzaemter->nameVon(nummer)) : std::string();
}
