#pragma once

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/intern/Pluginbibliothek.h>
#include <orvoutil/Log.h>

#include <memory>

/// Makes the plugin of a closed library from the description in the library's file, which is not opened as a library.
///
/// Returns: the plugin; null if the file has no description, or one that is refused, which is logged.
/// Ownership: takes the library over if it returns a plugin, or throws.
std::unique_ptr<OrvoPluginV1> beschriebenesPlugin(Pluginbibliothek::Zeiger& bibliothek,
                                                  orvo::orvoutil::Log log);
