// Calls the function BRAUCHT, which is in another library or missing.

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>

extern "C" int BRAUCHT();

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }
bool orvo_plugin_initialize(OrvoPluginV1*) { return BRAUCHT() == 0; }
