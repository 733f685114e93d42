// A plugin with a check service for the sub-case type NUMMER in 2009, with both hooks. The third is resident.

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

namespace {

class Pruefung : public orvo::service::ValidierungsService {
public:
    int pruefe(const orvo::data::SteuerfallListe&, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis&) override {
        return NUMMER;
    }
};

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    plugin->setOnLoadFuncName("hookBeimLaden");
    plugin->setOnUnloadFuncName("hookBeimEntladen");
    plugin->setResident(NUMMER == 3);
    OrvoValidierungsServiceErweiterung pruefung(NUMMER, Veranlagungszeitraum(2009, "YYYY"));
    pruefung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    plugin->addErweiterung(pruefung);
    return true;
}

Service* orvo_plugin_get_check_service() { return new Pruefung; }

extern "C" {
ORVO_PLUGIN_EXPORT void hookBeimLaden() {}
ORVO_PLUGIN_EXPORT void hookBeimEntladen() {}
}
