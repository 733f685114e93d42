#pragma once

#include <orvoutil/AenderungsBeobachter.h>
#include <orvoutil/Export.h>

#include <string>

namespace orvo::orvoutil {

/// Key of the home directory.
constexpr char EINSTELLUNG_HOME_DIR[] = "basis.home_dir";

/// Handle on the settings of the process. All handles see the same settings, which live as long as the process.
/// The libraries read "basis.home_dir", "basis.resident_plugins" and "basis.plugin_beschreibungen" (where the descriptions
/// of plugins are taken from; see `OrvoPluginManager`); other keys are kept for callers.
///
/// Errors: `std::bad_alloc`, and what observers throw (see `setze`).
/// Encoding: keys and values are bytes, kept as given.
/// Threads: any; observers are told while no lock is held.
class ORVOUTIL_API Einstellungen {
public:
    Einstellungen();

    /// The home directory. While it is not set: the directory of this library's own file, never the current one.
    std::string basisHomeDir() const;
    /// The resident plugins' names, each followed by a comma.
    std::string basisResidentPlugins() const;

    /// Returns: the value as it was set; empty when it was not.
    std::string wert(const std::string& schluessel) const;

    /// Sets a value; an empty one removes it. A change is told to every observer, in the order of registration, with a
    /// message of kind `AenderungsNachricht::EINSTELLUNG_GEAENDERT`.
    /// Errors: the first exception that an observer threw, after all have been told; the value stays set.
    void setze(const std::string& schluessel, const std::string& wert) const;

    /// Registers an observer for all keys, from the next change on; null is ignored, one registered twice is told twice.
    /// Ownership: stays with the caller, who removes the observer before destroying it.
    void beobachterAnmelden(AenderungsBeobachter* beobachter) const;
    /// Removes the first registration of that observer; null and unknown ones are ignored. An observer may call it while
    /// a change is being told. A message that is being handled on another thread is not waited for.
    void beobachterAbmelden(AenderungsBeobachter* beobachter) const;
};

} // namespace orvo::orvoutil
