// A plugin whose orvo_plugin_initialize has another return type than the library expects.

#include <orvoplugin/Export.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>

#include <list>

extern "C" {

ORVO_PLUGIN_EXPORT void orvo_plugin_get_types(void* typen);
ORVO_PLUGIN_EXPORT int orvo_plugin_initialize(OrvoPluginV1* plugin);

void orvo_plugin_get_types(void* typen) {
    static_cast<std::list<orvo_plugin_version_t>*>(typen)->push_back({1});
}

int orvo_plugin_initialize(OrvoPluginV1* plugin) {
    plugin->setProduktVersion("1.0");
    return 42;
}
}
