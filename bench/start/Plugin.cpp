// A plugin with three extensions, one key each. Each copy of the file serves another sub-case type: the number is in
// the file as text, and is replaced on copying.

#include <orvoplugin/plugin/Beschreibungsplatz.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/service/ValidierungsService.h>

#include "Nummer.h"

ORVO_BESCHREIBUNGSPLATZ(1024);

namespace {

// volatile: not folded by the compiler; the rest is room, so that the small plugin has 18 KB
volatile char daten[2000] = ORVO_BENCH_MARKE ORVO_BENCH_NUMMER;

int nummer() {
    int nummer = 0;
    for (std::size_t i = sizeof(ORVO_BENCH_MARKE) - 1; daten[i] != 0; ++i)
        nummer = nummer * 10 + (daten[i] - '0');
    return nummer;
}

class Pruefung : public orvo::service::ValidierungsService {
    int pruefe(const orvo::data::SteuerfallListe&, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis&) override {
        return 0;
    }
};

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) {
    typen->push_back(orvo_plugin_version_t{1});
}

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    plugin->setProduktVersion("1.0");
    plugin->setFileVersion("1.0");
    const Unterfallart ua(nummer());
    const Veranlagungszeitraum vz(2009, "YYYY");
    OrvoValidierungsServiceErweiterung pruefung(ua, vz);
    pruefung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    plugin->addErweiterung(pruefung);
    plugin->addErweiterung(OrvoFeldInfoDatenServiceErweiterung(ua, vz));
    plugin->addErweiterung(OrvoFTDatenServiceErweiterung(ua, vz));
    return true;
}

Service* orvo_plugin_get_check_service() { return new Pruefung; }
Service* orvo_plugin_get_feldinfo_daten_service() { return nullptr; }
Service* orvo_plugin_get_fehlertext_daten_service() { return nullptr; }
