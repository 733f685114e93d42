#pragma once

#include <orvoutil/AenderungsBeobachter.h>
#include <orvoutil/Export.h>

#include <string>

namespace orvo::orvoutil {

/// Key of the home directory.
constexpr char EINSTELLUNG_HOME_DIR[] = "basis.home_dir";

/// Handle on the settings of the process. All handles see the same settings, which live as long as the process.
///
/// Keys with a meaning here: "basis.home_dir", "basis.resident_plugins"; others are kept for whoever reads them.
///
/// Errors: none but want of memory, and what observers throw (see `setze`).
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

    /// Sets a value; an empty one is the same as none. When that changes it, every observer is told, in the order
    /// of registration, with a message of kind `AenderungsNachricht::EINSTELLUNG_GEAENDERT`.
    /// Errors: the first exception that an observer threw, after all have been told; the value stays set.
    void setze(const std::string& schluessel, const std::string& wert) const;

    /// Registers an observer for all keys; null is ignored. One registered twice is told twice; one registered
    /// while a change is being told is told from the next change on.
    /// Ownership: stays with the caller, who takes the observer out before it goes.
    void beobachterAnmelden(AenderungsBeobachter* beobachter) const;
    /// Takes the first registration of that observer back; null and unknown ones are ignored. It may be called
    /// while a change is being told: the observer is not told any more. On another thread it may just then be
    /// at work on a message, and is not waited for.
    void beobachterAbmelden(AenderungsBeobachter* beobachter) const;
};

} // namespace orvo::orvoutil
