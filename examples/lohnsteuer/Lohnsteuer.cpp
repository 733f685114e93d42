// A plugin with one check service: wage-tax certificates ("Lohnsteuerbescheinigung") of the years 2007 to 2010.

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <pruefung/PruefService.h>
#include <pruefung/Zeitraum.h>

namespace {

using namespace pruefung;

constexpr Anteilsregel kAnteile[] = {
    {"Lohnsteuer", "Bruttoarbeitslohn", 1000},
    {"Solidaritaetszuschlag", "Lohnsteuer", 1000},
    {"Kirchensteuer", "Lohnsteuer", 1000},
};

class LohnsteuerService : public PruefService {
public:
    LohnsteuerService() : aufbau_{"LSTB", lohnsteuerFelder(), kAnteile} {}

private:
    const Satzaufbau* aufbauFuer(const Unterfallart& ua) const override {
        return ua == UFA_LSTB ? &aufbau_ : nullptr;
    }

    Satzaufbau aufbau_;
};

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    plugin->setProduktVersion(PRODUKTVERSION);
    plugin->setFileVersion(PRODUKTVERSION ".1");

    OrvoValidierungsServiceErweiterung bescheinigungen(UFA_LSTB, jahre(2007, 2010));
    bescheinigungen.setzeFlag(FLAG_SERVICE_LOESCHEN, true); // each get makes a new object
    plugin->addErweiterung(bescheinigungen);
    return true;
}

Service* orvo_plugin_get_check_service() { return new LohnsteuerService; }
