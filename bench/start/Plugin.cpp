// A plugin with one check service for three years, and so three keys. Each copy of the file serves another sub-case
// type: the number is in the file as text, and is replaced on copying.

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/service/ValidierungsService.h>

#include "Nummer.h"

namespace {

volatile const char kMarke[] = ORVO_BENCH_MARKE ORVO_BENCH_NUMMER; // volatile: not folded by the compiler

int nummer() {
    int nummer = 0;
    for (std::size_t i = sizeof(ORVO_BENCH_MARKE) - 1; i < sizeof(kMarke) - 1; ++i)
        nummer = nummer * 10 + (kMarke[i] - '0');
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
    OrvoValidierungsServiceErweiterung erweiterung(
        Unterfallart(nummer()),
        std::list<Veranlagungszeitraum>{{2008, "YYYY"}, {2009, "YYYY"}, {2010, "YYYY"}});
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    plugin->addErweiterung(erweiterung);
    return true;
}

Service* orvo_plugin_get_check_service() { return new Pruefung; }
