#include "check/Registratur.h"

#include "check/Pluginnutzung.h"
#include "check/Text.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>

namespace werkzeug::check {

namespace {

const OrvoErweiterung* antwort(const OrvoErweiterungsManager& registry, tag_erweiterung_typ typ,
                               const Unterfallart& ua, const Veranlagungszeitraum& vz) {
    switch (typ) {
    case ORVO_CHECK_SERVICE_ERWEITERUNG:
        return registry.findeValidierungsServiceErweiterung(ua, vz);
    case ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG:
        return registry.findeFeldInfoDatenServiceErweiterung(ua, vz);
    case ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG:
        return registry.findeFehlertextDatenServiceErweiterung(ua, vz);
    case ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG:
        return registry.findeXPathMappingServiceErweiterung(ua, vz);
    case ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG:
        return registry.findeDatensatzReaderServiceErweiterung(ua, vz);
    default:
        return nullptr;
    }
}

} // namespace

Registratur::Registratur() {
    beginneOhnePlugins();
    registry_ = OrvoErweiterungsManager::getInstanz();
    manager_ = OrvoPluginManager::getInstanz(nullptr);
}

const OrvoPluginV1* Registratur::lade(const std::string& pfad) {
    return manager_->ladePlugin(pfad)
               ? dynamic_cast<const OrvoPluginV1*>(manager_->getRegistriertePlugins().back())
               : nullptr;
}

void Registratur::besuche(const OrvoPluginV1& plugin,
                          const std::function<void(const Zuordnung&)>& besucher) const {
    for (const OrvoErweiterung* const erweiterung : plugin.listeErweiterungen()) {
        if (const auto* const uaVz = dynamic_cast<const OrvoUaVzServiceErweiterung*>(erweiterung)) {
            for (const auto& [ua, vzs] : uaVz->getVeranlagungszeitraumUnterfallartMap())
                for (const Veranlagungszeitraum& vz : vzs)
                    besucher({erweiterung, antwort(*registry_, erweiterung->getTyp(), ua, vz), paar(ua, vz)});
        } else if (erweiterung->getTyp() == ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG) {
            besucher({erweiterung, registry_->findeFADatenServiceErweiterung(), "tax offices"});
        }
    }
}

} // namespace werkzeug::check
