#pragma once

// Internal: knows whether code of a plugin is running that not everything may be done under.

#include <orvoutil/SharedLib.h>

/// Counts what is running, for as long as it lives.
template <class Was>
class Laufend {
public:
    Laufend() { ++laufende_; }
    Laufend(const Laufend&) = delete;
    Laufend& operator=(const Laufend&) = delete;
    ~Laufend() { --laufende_; }

    static bool laeuft() { return laufende_ != 0; }

private:
    static inline int laufende_ = 0;
};

/// The time in which a plugin describes itself. The registry and the manager refuse requests meanwhile: they are at
/// work on that very plugin.
using Einsprungpunkt = Laufend<struct EinsprungpunktArt>;

/// The time in which a library is opened or closed, and so its start-up or last code runs. An exception must not leave
/// that: it would have to pass through the system's loader, or out of a destructor.
using Laderarbeit = Laufend<struct LaderarbeitArt>;

/// Returns: whether the library is open now.
inline bool oeffneBibliothek(orvo::orvoutil::SharedLib& bibliothek) {
    const Laderarbeit laderarbeit;
    return bibliothek.isLoaded() || bibliothek.load();
}

/// As `SharedLib::unload`.
inline bool schliesseBibliothek(orvo::orvoutil::SharedLib& bibliothek) {
    const Laderarbeit laderarbeit;
    return bibliothek.unload();
}

/// The time in which a plugin's hook, factory, start-up or last code runs for a use of it, or a service of it is
/// deleted. The manager must not unload plugins meanwhile: it would take away the very code that runs.
using Pluginaufruf = Laufend<struct PluginaufrufArt>;
