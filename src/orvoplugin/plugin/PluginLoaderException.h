#pragma once

#include <orvoplugin/Export.h>

#include <cstdint>
#include <exception>
#include <string>

/// Kinds of failure while a library is turned into a plugin. Any other value is carried too; its message has no
/// prefix.
enum orvo_plugin_loader_exception_typ_t : std::int32_t {
    UNGUELTIGE_PLUGIN_VERSION = 1, ///< the library implements an interface that is not known here
    STRUKTUR_FEHLER = 2,           ///< an entry point is missing
    BIBLIOTHEK_FEHLER = 3,         ///< the library could not be opened
};

/// Says why a library is no plugin. The message begins with the name of the kind of failure.
class ORVOPLUGIN_API PluginLoaderException : public std::exception {
public:
    PluginLoaderException(orvo_plugin_loader_exception_typ_t typ, const std::string& text);
    PluginLoaderException(const PluginLoaderException&);
    PluginLoaderException& operator=(const PluginLoaderException&);
    ~PluginLoaderException() override;

    const char* what() const noexcept override;
    orvo_plugin_loader_exception_typ_t getTyp() const { return typ_; }

private:
    orvo_plugin_loader_exception_typ_t typ_;
    std::string meldung_;
};
