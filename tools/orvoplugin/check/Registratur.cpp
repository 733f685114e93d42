#include "check/Registratur.h"

#include "check/Pluginnutzung.h"
#include "check/Text.h"
#include "kern/Sprache.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>

namespace werkzeug::check {

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
                    besucher({erweiterung, registry_->schlageNach(erweiterung->getTyp(), ua, vz).erweiterung,
                              paar(ua, vz)});
        } else if (erweiterung->getTyp() == ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG) {
            besucher({erweiterung, registry_->findeFADatenServiceErweiterung(), satz("tax offices")});
        }
    }
}

} // namespace werkzeug::check
