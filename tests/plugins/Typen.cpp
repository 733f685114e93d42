// Declares the interfaces listed in TYPEN; has an initialisation, which succeeds, only with MIT_INITIALIZE.

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) {
    for (const int typ : std::list<int> TYPEN)
        typen->push_back({typ});
}

#ifdef MIT_INITIALIZE
bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    plugin->setProduktVersion("1.0");
    return true;
}
#endif
