#include "Auskunft.h"

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/PathUtil.h>
#include <orvoutil/SharedLib.h>

using namespace orvo::orvoutil;

OrvoErweiterung* frage(const OrvoErweiterungsManager& registratur, tag_erweiterung_typ dienst,
                       const Unterfallart& ua, const Veranlagungszeitraum& vz) {
    switch (dienst) {
    case ORVO_CHECK_SERVICE_ERWEITERUNG:
        return registratur.findeValidierungsServiceErweiterung(ua, vz);
    case ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG:
        return registratur.findeFeldInfoDatenServiceErweiterung(ua, vz);
    case ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG:
        return registratur.findeFehlertextDatenServiceErweiterung(ua, vz);
    case ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG:
        return registratur.findeFADatenServiceErweiterung();
    case ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG:
        return registratur.findeXPathMappingServiceErweiterung(ua, vz);
    case ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG:
        return registratur.findeDatensatzReaderServiceErweiterung(ua, vz);
    case NONE:
        break;
    }
    return nullptr;
}

Treffer ordneEin(const OrvoErweiterung* antwort, const Unterfallart& ua, const Veranlagungszeitraum& vz) {
    if (!antwort)
        return Treffer::KEINER;
    const auto* const uaVz = dynamic_cast<const OrvoUaVzServiceErweiterung*>(antwort);
    if (!uaVz)
        return Treffer::EINZIGER;
    Treffer treffer = Treffer::UNABHAENGIG;
    if (const auto* const zeitraeume = uaVz->getVeranlagungszeitraeumeFuerUnterfallArt(ua)) {
        for (const Veranlagungszeitraum& angeboten : *zeitraeume) {
            if (angeboten == vz)
                return Treffer::GENAU;
            if (angeboten.getJahr() == vz.getJahr())
                treffer = Treffer::GLEICHES_JAHR;
        }
    }
    return treffer;
}

Veranlagungszeitraum liesZeitraum(const std::string& text) {
    if (text.empty())
        return Veranlagungszeitraum();
    std::string muster;
    std::size_t ziffern = 0;
    for (const char c : text) {
        if (c == '-') {
            muster += c;
        } else {
            muster += ziffern < 4 ? 'Y' : ziffern < 6 ? 'M' : 'T';
            ++ziffern;
        }
    }
    return Veranlagungszeitraum::parse(text, muster.c_str());
}

std::string nameVon(tag_erweiterung_typ dienst) {
    switch (dienst) {
    case ORVO_CHECK_SERVICE_ERWEITERUNG:
        return "Prüfung";
    case ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG:
        return "Feldinformation";
    case ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG:
        return "Fehlertexte";
    case ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG:
        return "Finanzämter";
    case ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG:
        return "XPath-Zuordnung";
    case ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG:
        return "Datensätze lesen";
    case NONE:
        break;
    }
    return "unbekannt";
}

tag_erweiterung_typ dienstNamens(const std::string& name) {
    for (std::int32_t typ = ORVO_CHECK_SERVICE_ERWEITERUNG; typ <= ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG;
         ++typ)
        if (name == erweiterungTypName(static_cast<tag_erweiterung_typ>(typ)))
            return static_cast<tag_erweiterung_typ>(typ);
    return NONE;
}

std::string nameVon(Treffer treffer) {
    switch (treffer) {
    case Treffer::GENAU:
        return "genau dieser Zeitraum";
    case Treffer::GLEICHES_JAHR:
        return "anderer Zeitraum desselben Jahres";
    case Treffer::UNABHAENGIG:
        return "zeitraumunabhängig";
    case Treffer::EINZIGER:
        return "einer für alle";
    case Treffer::KEINER:
        break;
    }
    return "niemand";
}

std::string dateiVon(const OrvoPlugin& plugin) {
    return toUtf8(getOnlyFilenameOfFullFilename(plugin.getSharedLib()->getName()));
}

std::string dateiUndVersionVon(const OrvoErweiterung* erweiterung) {
    if (!erweiterung)
        return "–";
    const OrvoPlugin& plugin = *erweiterung->getPlugin();
    return dateiVon(plugin) + " " + latin1ToUtf8(plugin.getProduktVersion());
}

std::string jaNein(bool wert) { return wert ? "ja" : "nein"; }
