#pragma once

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/intern/Pluginbibliothek.h>

/// Makes the plugin of a closed library from the description in the library's file.
/// Returns: the plugin, which owns the library; null if there is no description, or one that is refused, which is logged.
std::unique_ptr<OrvoPluginV1> beschriebenesPlugin(Pluginbibliothek::Zeiger& tuer, orvo::orvoutil::Log log);
