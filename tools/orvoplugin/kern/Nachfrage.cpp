#include "kern/Nachfrage.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoplugin/registry/RegisterBeobachter.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

namespace werkzeug {

namespace {

Veranlagungszeitraum imJahr(std::int64_t jahr) {
    const std::string ziffern = std::to_string(jahr);
    return Veranlagungszeitraum::parse(ziffern, std::string(ziffern.size(), 'Y').c_str());
}

/// Records which extension gets which key.
class Besetzung : public RegisterBeobachter {
public:
    void eingetragen(const ErweiterungsSchluessel& schluessel, const OrvoErweiterung& wer) noexcept override {
        inhaber[schluessel] = &wer;
    }
    void verdraengt(const ErweiterungsSchluessel& schluessel, const OrvoErweiterung& neue,
                    const OrvoErweiterung&, orvo_register_regel_t) noexcept override {
        inhaber[schluessel] = &neue;
    }

    JeSchluessel<const OrvoErweiterung*> inhaber;
};

} // namespace

ZeileFakt frageAlleJahre(const OrvoErweiterungsManager& registratur,
                         const std::vector<const ErweiterungsSchluessel*>& schluessel,
                         const JeSchluessel<std::uint32_t>& orte) {
    const tag_erweiterung_typ typ = schluessel.front()->getTyp();
    const Unterfallart& ua = schluessel.front()->getUnterfallart();
    ZeileFakt zeile;

    const auto frage = [&](std::int64_t von, std::int64_t bis, const Veranlagungszeitraum& vz) {
        const RegisterAuskunft auskunft = registratur.schlageNach(typ, ua, vz);
        SpanneFakt spanne{static_cast<std::int32_t>(von), static_cast<std::int32_t>(bis), auskunft.treffer,
                          0};
        if (auskunft.schluessel)
            spanne.schluessel = orte.at(*auskunft.schluessel);
        return spanne;
    };
    // The registry answers alike for all years between two keys, so one of them is queried.
    std::int64_t naechstes = SpanneFakt::kErstesJahr;
    const auto fuelleBis = [&](std::int64_t letztes) {
        if (naechstes <= letztes)
            zeile.spannen.push_back(frage(naechstes, letztes, imJahr(letztes)));
    };
    for (const ErweiterungsSchluessel* const eigener : schluessel) {
        const Veranlagungszeitraum& vz = eigener->getVeranlagungszeitraum();
        if (vz.getJahr() == 0)
            continue;
        fuelleBis(std::int64_t{vz.getJahr()} - 1);
        zeile.spannen.push_back(frage(vz.getJahr(), vz.getJahr(), vz));
        naechstes = std::max(naechstes, std::int64_t{vz.getJahr()} + 1);
    }
    fuelleBis(SpanneFakt::kOffen);

    const RegisterAuskunft ohne = registratur.schlageNach(typ, ua, Veranlagungszeitraum());
    if (ohne.schluessel)
        zeile.ohneZeitraum = orte.at(*ohne.schluessel);
    return zeile;
}

JeSchluessel<const OrvoErweiterung*> frageNachZweiten(OrvoErweiterungsManager& registratur,
                                                      const std::vector<Umstritten>& umstrittene,
                                                      const std::function<void()>& lebenszeichen) {
    JeSchluessel<const OrvoErweiterung*> zweite;
    if (umstrittene.empty())
        return zweite;
    const auto plugins = OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins();
    std::map<const OrvoPlugin*, std::vector<const Umstritten*>> jeInhaber;
    for (const Umstritten& einer : umstrittene)
        jeInhaber[einer.inhaber->getPlugin()].push_back(&einer);

    OrvoErweiterungsManager::setRegisterBeobachter(nullptr);
    for (OrvoPlugin* const plugin : plugins)
        registratur.pluginZerstoert(plugin);
    for (const auto& [inhaber, seine] : jeInhaber) {
        std::set<const OrvoPlugin*> andere;
        for (const Umstritten* const einer : seine)
            for (const OrvoErweiterung* const bewerber : einer->bewerber)
                andere.insert(bewerber->getPlugin());
        andere.erase(inhaber);

        Besetzung besetzung;
        OrvoErweiterungsManager::setRegisterBeobachter(&besetzung);
        for (OrvoPlugin* const plugin : plugins)
            if (andere.contains(plugin))
                registratur.pluginErzeugt(plugin);
        OrvoErweiterungsManager::setRegisterBeobachter(nullptr);
        for (OrvoPlugin* const plugin : plugins)
            if (andere.contains(plugin))
                registratur.pluginZerstoert(plugin);
        for (const Umstritten* const einer : seine)
            if (const auto fund = besetzung.inhaber.find(*einer->schluessel); fund != besetzung.inhaber.end())
                zweite.emplace(fund->first, fund->second);
        lebenszeichen();
    }
    for (OrvoPlugin* const plugin : plugins)
        registratur.pluginErzeugt(plugin);
    return zweite;
}

} // namespace werkzeug
