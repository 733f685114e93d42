#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/plugin/LadeBeobachter.h>

#include <memory>

class OrvoPlugin;
class OrvoPluginV1;
class Pluginbibliothek;
struct BibliotheksSchliesser;

namespace orvo::orvoutil {
class SharedLib;
}

/// Turns a shared library into a plugin: opens it, asks for the interfaces that it implements, and lets it describe
/// itself.
///
/// The library of a plugin that throws stays open while the exception lives, because its class may lie there. It is
/// closed when the loader is destroyed or loads the next library, or at the next use of any plugin.
class ORVOPLUGIN_API OrvoPluginLoader {
public:
    OrvoPluginLoader();
    /// Parameters: with `nimmtBeschreibungen`, the description in a library's file stands for opening the library.
    explicit OrvoPluginLoader(bool nimmtBeschreibungen);
    OrvoPluginLoader(const OrvoPluginLoader&) = delete;
    OrvoPluginLoader& operator=(const OrvoPluginLoader&) = delete;
    ~OrvoPluginLoader();

    /// Makes the plugin of a library. A library that declares interface 1 several times is initialised as many
    /// times; the last plugin is returned, and owns the earlier ones.
    /// Returns: a new, initialised plugin, owned by the caller.
    /// Ownership: takes the library over, also on failure.
    /// Errors: `PluginLoaderException`, `PluginInitException`, or whatever the plugin throws.
    OrvoPlugin* loadPlugin(orvo::orvoutil::SharedLib* bibliothek);

    /// The step at which the last `loadPlugin` failed.
    orvo_plugin_ablehnung_t getSchritt() const { return schritt_; }

private:
    std::unique_ptr<OrvoPluginV1> frage(std::unique_ptr<Pluginbibliothek, BibliotheksSchliesser> bibliothek);

    orvo_plugin_ablehnung_t schritt_ = ABLEHNUNG_OEFFNEN;
    bool nimmtBeschreibungen_;
};
