#include <orvoplugin/plugin/PluginObserver.h>

PluginObserver::~PluginObserver() = default;
