#pragma once

#include <orvoplugin/Export.h>

class OrvoPlugin;

/// Whoever wants to hear of plugins coming and going; see `OrvoPluginManager::addObserver`.
///
/// An observer may add and remove observers while it is told. It must not start another loading or unloading
/// run: the manager is in the middle of one, refuses, and says so in the log. An exception that leaves an
/// observer is reported; the other observers are told all the same.
///
/// Threads: called on the thread that loads or unloads.
class ORVOPLUGIN_API PluginObserver {
public:
    /// A plugin has been loaded and put on the manager's list.
    virtual void pluginErzeugt(OrvoPlugin* plugin) = 0;
    /// A plugin has been taken off the manager's list and is about to be destroyed: drop every reference to it
    /// and to its extensions.
    virtual void pluginZerstoert(OrvoPlugin* plugin) = 0;
    virtual ~PluginObserver();
};
