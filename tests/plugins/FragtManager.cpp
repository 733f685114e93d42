// Asks for one of the process-wide objects while it describes itself: FRAGT_Manager or FRAGT_Registry, from AUS_Types
// or AUS_Initialize. With SCHLUCKT it catches the refusal, and returns it as its product version. AUS_Anfang is a
// static object's constructor, which runs when the library is opened; its result is the product version. AUS_Ende is
// its destructor, which runs when the library is closed. TYP is the number of the interface that it declares.

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>

#include <stdexcept>

#ifndef TYP
#define TYP 1
#endif

namespace {

[[maybe_unused]] const void* frage() {
#ifdef FRAGT_Manager
    return OrvoPluginManager::getInstanz(nullptr);
#else
    return OrvoErweiterungsManager::getInstanz();
#endif
}

#ifdef AUS_Anfang
const void* const beimOeffnen = frage();
#endif

#ifdef AUS_Ende
struct Ende {
    ~Ende() { frage(); } // an exception would end the process
} ende;
#endif

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) {
#ifdef AUS_Types
    frage();
#endif
    typen->push_back({TYP});
}

bool orvo_plugin_initialize([[maybe_unused]] OrvoPluginV1* plugin) {
#if defined(AUS_Initialize) && defined(SCHLUCKT)
    try {
        frage();
    } catch (const std::logic_error& ausnahme) {
        plugin->setProduktVersion(ausnahme.what());
    }
#elif defined(AUS_Initialize)
    frage();
#elif defined(AUS_Anfang)
    plugin->setProduktVersion(beimOeffnen ? "there" : "null");
#endif
    return true;
}
