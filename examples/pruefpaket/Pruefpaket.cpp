// A newer plugin with check services: by its higher product version it replaces the wage-tax certificates of 2009 and
// 2010; it adds 2011, and serves the sub-case types 10 and 50, the latter in any year.

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <pruefpaket/Regelwerk.h>
#include <pruefpaket/Statistik.h>
#include <pruefung/PruefService.h>
#include <pruefung/Zeitraum.h>

namespace {

class PaketService : public pruefung::PruefService {
public:
    int pruefe(const orvo::data::SteuerfallListe& liste, const Unterfallart& ua,
               const Veranlagungszeitraum& vz, PruefErgebnis& ergebnis) override {
        const std::size_t vorher = ergebnis.getMeldungen().size();
        const int status = PruefService::pruefe(liste, ua, vz, ergebnis);
        pruefpaket::zaehlePruefung(liste.getAnzahl(), ergebnis.getMeldungen().size() - vorher);
        return status;
    }

private:
    const pruefung::Satzaufbau* aufbauFuer(const Unterfallart& ua) const override {
        return pruefpaket::aufbauFuer(ua);
    }
};

/// Adds a check service for the pairs of the extension.
void fuegeHinzu(OrvoPluginV1& plugin, OrvoValidierungsServiceErweiterung erweiterung) {
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true); // each get makes a new object
    plugin.addErweiterung(erweiterung);
}

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    using Erweiterung = OrvoValidierungsServiceErweiterung;
    plugin->setProduktVersion(PRODUKTVERSION);
    plugin->setFileVersion(PRODUKTVERSION ".7");
    plugin->setOnLoadFuncName("pruefpaket_onload");
    plugin->setOnUnloadFuncName("pruefpaket_onunload");

    fuegeHinzu(*plugin, Erweiterung(UFA_LSTB, pruefung::jahre(2009, 2011)));
    fuegeHinzu(*plugin,
               Erweiterung({{UFA_10, pruefung::jahre(2009, 2010)}, {UFA_50, pruefung::jahre(2009, 2010)}}));
    fuegeHinzu(*plugin, Erweiterung(UFA_50, Veranlagungszeitraum())); // for any period
    return true;
}

Service* orvo_plugin_get_check_service() { return new PaketService; }
