#pragma once

#include <orvoplugin/Export.h>

class OrvoPlugin;

/// Told of plugins that are loaded and unloaded; see `OrvoPluginManager::addObserver`.
///
/// An observer may add and remove observers, and in `pluginErzeugt` load a further plugin. Other requests to load or
/// unload are refused with a warning. An exception of an observer is logged; the other observers are told all the same.
class ORVOPLUGIN_API PluginObserver {
public:
    /// A plugin has been loaded and put on the manager's list.
    virtual void pluginErzeugt(OrvoPlugin* plugin) = 0;
    /// A plugin has been taken off the manager's list and is about to be destroyed: drop all references to it and to its
    /// extensions.
    virtual void pluginZerstoert(OrvoPlugin* plugin) = 0;
    virtual ~PluginObserver();
};
