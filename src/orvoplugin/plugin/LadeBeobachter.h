#pragma once

#include <orvoplugin/Export.h>

#include <cstdint>
#include <string>

class OrvoPlugin;

/// The step at which the loading of a file ended. Values are never reused.
enum orvo_plugin_ablehnung_t : std::int32_t {
    ABLEHNUNG_DATEIPRUEFUNG = 1,            ///< by its name or content, before the system's loader saw it
    ABLEHNUNG_OEFFNEN = 2,                  ///< the system's loader refused it
    ABLEHNUNG_OHNE_TYPEN = 3,               ///< it lacks orvo_plugin_get_types
    ABLEHNUNG_AUSNAHME_TYPEN = 4,           ///< orvo_plugin_get_types threw
    ABLEHNUNG_LEERE_TYPEN = 5,              ///< orvo_plugin_get_types names no interface
    ABLEHNUNG_PLUGINVERSION = 6,            ///< it implements an interface that is not known here
    ABLEHNUNG_OHNE_INITIALISIERUNG = 7,     ///< it lacks orvo_plugin_initialize
    ABLEHNUNG_AUSNAHME_INITIALISIERUNG = 8, ///< orvo_plugin_initialize threw, or what it called did
    ABLEHNUNG_INITIALISIERUNG = 9,          ///< orvo_plugin_initialize returned false
    ABLEHNUNG_BEOBACHTER = 10,              ///< an observer of the manager threw; the plugin stays loaded
};

/// Told what happens to each file while the plugin manager walks its directories: for tools that show an operator what is
/// there, and what was refused. See `OrvoPluginManager::setLadeBeobachter`. It must not load or unload plugins.
/// Ownership: everything handed over stays the library's, and is valid until the operation returns.
/// Encoding: names and paths are bytes, reasons are Latin-1.
class ORVOPLUGIN_API LadeBeobachter {
public:
    /// Kind of a file, by its name.
    enum Dateiart : std::int32_t {
        PLUGIN = 0,      ///< a plugin; it is loaded next
        GESPERRT = 1,    ///< on the block list
        UEBERGANGEN = 2, ///< no plugin: it lacks the suffix
    };

    virtual ~LadeBeobachter();

    /// A directory is about to be walked.
    virtual void betrittVerzeichnis(const std::string& verzeichnis) noexcept;
    /// A file was found in it. Parameters: `pfad` is the path under which a plugin is loaded, its suffix in lower case.
    virtual void findetDatei(const std::string& verzeichnis, const std::string& name, Dateiart art,
                             const std::string& pfad) noexcept;
    /// A file is about to be loaded. Returns: false to skip it without a log entry; it then counts as not loaded.
    virtual bool ladeDatei(const std::string& pfad) noexcept;
    /// It was loaded, and no observer of the manager threw.
    virtual void pluginGeladen(const std::string& pfad, const OrvoPlugin& plugin) noexcept;
    /// It was refused. Parameters: `grund` is what the log says.
    virtual void dateiAbgelehnt(const std::string& pfad, orvo_plugin_ablehnung_t schritt,
                                const char* grund) noexcept;
};
