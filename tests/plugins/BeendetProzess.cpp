// Ends the process in the place that the setting "test.exit" names: types, initialize, onload or factory. When it is
// closed it asks for the registry and the plugin manager, and prints the result to standard error.

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoplugin/service/ValidierungsService.h>
#include <orvoutil/Einstellungen.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace {

class Pruefung : public orvo::service::ValidierungsService {
public:
    int pruefe(const orvo::data::SteuerfallListe&, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis&) override {
        return 0;
    }
};

void beende(const std::string& ort) {
    if (orvo::orvoutil::Einstellungen().wert("test.exit") == ort)
        std::exit(0);
}

void frage(const char* wen, void* (*hole)()) {
    try {
        std::fprintf(stderr, "Plugin fragt nach %s: %s\n", wen, hole() ? "da" : "keiner");
    } catch (const std::logic_error&) {
        std::fprintf(stderr, "Plugin fragt nach %s: abgelehnt\n", wen);
    }
}

__attribute__((destructor)) void beimSchliessen() {
    frage("Registry", []() -> void* { return OrvoErweiterungsManager::getInstanz(); });
    frage("Manager", []() -> void* { return OrvoPluginManager::getInstanz(nullptr); });
}

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) {
    beende("types");
    typen->push_back({1});
}

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    beende("initialize");
    plugin->setOnLoadFuncName("beimLaden");
    plugin->addErweiterung(OrvoValidierungsServiceErweiterung(10, Veranlagungszeitraum(2009, "YYYY")));
    return true;
}

Service* orvo_plugin_get_check_service() {
    beende("factory");
    return new Pruefung;
}

extern "C" ORVO_PLUGIN_EXPORT void beimLaden() { beende("onload"); }
