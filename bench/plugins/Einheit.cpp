// One of the units of a plugin that consists of several, with the predefined constants or without: EINHEIT is its
// number, KONSTANTEN whether it uses them.

#include <orvoplugin/domain/Unterfallart.h>

#if KONSTANTEN
#include <orvoplugin/domain/Konstanten.h>
#include <orvoplugin/service/ServiceKonstanten.h>
#endif

#if EINHEIT == 0
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }
bool orvo_plugin_initialize(OrvoPluginV1*) { return true; }
#endif

#define VERBUNDEN_(a, b) a##b
#define VERBUNDEN(a, b) VERBUNDEN_(a, b)

/// Something that needs a constant, so that none is left out as unused.
extern "C" int VERBUNDEN(einheit, EINHEIT)(const Unterfallart& ua) {
#if KONSTANTEN
    return ua == UFA_10 || ua == UFA_LSTB || ua.getName() == VZ_UNABHAENGIG ||
           ua.getName() == VERFAHREN[EINHEIT];
#else
    return ua.getNummer() == EINHEIT;
#endif
}
