#pragma once

#include <orvoplugin/Export.h>

#include <cstdint>
#include <string>

class OrvoPlugin;

/// The step at which the loading of a file ended. Values are never reused.
enum orvo_plugin_ablehnung_t : std::int32_t {
    ABLEHNUNG_DATEIPRUEFUNG = 1,  ///< the file or its name is at fault: the system's loader never saw it
    ABLEHNUNG_OEFFNEN = 2,        ///< the system's loader refused it
    ABLEHNUNG_OHNE_TYPEN = 3,     ///< it lacks orvo_plugin_get_types
    ABLEHNUNG_AUSNAHME_TYPEN = 4, ///< orvo_plugin_get_types threw
    ABLEHNUNG_LEERE_TYPEN = 5,    ///< orvo_plugin_get_types names no interface
    ABLEHNUNG_PLUGINVERSION = 6,  ///< it implements an interface that is not known here
    ABLEHNUNG_OHNE_INITIALISIERUNG = 7,     ///< it lacks orvo_plugin_initialize
    ABLEHNUNG_AUSNAHME_INITIALISIERUNG = 8, ///< orvo_plugin_initialize threw, or what it called did
    ABLEHNUNG_INITIALISIERUNG = 9,          ///< orvo_plugin_initialize returned false
    ABLEHNUNG_BEOBACHTER = 10,              ///< an observer of the manager threw; the plugin stays loaded
};

/// Whoever wants to know what becomes of each file while the plugin manager walks its directories: tools that show
/// an operator what is there, and why not. A client needs none; see `OrvoPluginManager::setLadeBeobachter`.
///
/// Every operation may be left as it is. It must not throw; what it asks the manager to load or unload is refused.
/// Ownership: everything handed over stays the library's, and is valid until the operation returns.
/// Encoding: names and paths are bytes, reasons are Latin-1.
/// Threads: called on the thread that loads.
class ORVOPLUGIN_API LadeBeobachter {
public:
    /// What the manager takes a file for, by its name.
    enum Dateiart : std::int32_t {
        PLUGIN = 0,      ///< a plugin; it is loaded next
        GESPERRT = 1,    ///< on the block list
        UEBERGANGEN = 2, ///< none, for want of the suffix
    };

    virtual ~LadeBeobachter();

    /// A directory is about to be walked.
    virtual void betrittVerzeichnis(const std::string& verzeichnis) noexcept;
    /// A file was found in it. Parameters: `pfad` is the path under which a plugin is loaded, its suffix in lower
    /// case; for other files the path as found.
    virtual void findetDatei(const std::string& verzeichnis, const std::string& name, Dateiart art,
                             const std::string& pfad) noexcept;
    /// A file is about to be loaded. Returns: whether it is to be; false passes it over without a log entry, and
    /// counts as not loaded.
    virtual bool ladeDatei(const std::string& pfad) noexcept;
    /// It was, and every observer of the manager took the plugin.
    virtual void pluginGeladen(const std::string& pfad, const OrvoPlugin& plugin) noexcept;
    /// It was refused. Parameters: `grund` is what the log says.
    virtual void dateiAbgelehnt(const std::string& pfad, orvo_plugin_ablehnung_t schritt,
                                const char* grund) noexcept;
};
