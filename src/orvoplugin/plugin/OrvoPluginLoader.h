#pragma once

#include <orvoplugin/Export.h>

#include <memory>

class OrvoPlugin;
class OrvoPluginV1;

namespace orvo::orvoutil {
class SharedLib;
}

/// Turns a shared library into a plugin: opens it, has it say which interface it implements, and lets it describe
/// itself.
///
/// A plugin may throw anything, also an object of a class of its own. Therefore a library that is refused by such
/// an exception stays open as long as its loader lives (or until the loader's next library), so that the
/// exception can be looked at and destroyed: let the loader outlive the handler. A loader that is destroyed while
/// the exception is still on its way leaves the library to the next loader.
///
/// Threads: one thread at a time, as everywhere in this library.
class ORVOPLUGIN_API OrvoPluginLoader {
public:
    OrvoPluginLoader();
    OrvoPluginLoader(const OrvoPluginLoader&) = delete;
    OrvoPluginLoader& operator=(const OrvoPluginLoader&) = delete;
    ~OrvoPluginLoader();

    /// Makes the plugin of a library. A library that declares interface 1 several times is initialised as many
    /// times, and the last plugin is returned; it keeps the earlier ones until it is destroyed.
    ///
    /// Returns: a new, initialised plugin, owned by the caller.
    /// Ownership: takes the library over, whatever happens.
    /// Errors: `PluginLoaderException`, `PluginInitException`, or whatever the plugin throws.
    OrvoPlugin* loadPlugin(orvo::orvoutil::SharedLib* bibliothek);

private:
    struct Obhut;

    std::unique_ptr<Obhut> obhut_; ///< what is being loaded, or was refused and is kept open
    int ausnahmenBeiBau_;
};
