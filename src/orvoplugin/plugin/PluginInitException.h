#pragma once

#include <orvoplugin/Export.h>

#include <cstdint>
#include <exception>
#include <string>

/// Says why a plugin could not be initialised. The message begins with the name of the kind of failure.
class ORVOPLUGIN_API PluginInitException : public std::exception {
public:
    /// Kinds of failure. Any other value is carried too; its message has no prefix.
    enum orvo_plugin_init_exception_t : std::int32_t {
        UNGUELTIGER_AUFBAU = 1,      ///< the library has no initialisation function
        INITIALISIERUNGS_FEHLER = 2, ///< the initialisation function refused
        GENERELL = 3,                ///< the library could not be opened
    };

    PluginInitException(orvo_plugin_init_exception_t typ, const std::string& text);
    PluginInitException(const PluginInitException&);
    PluginInitException& operator=(const PluginInitException&);
    ~PluginInitException() override;

    const char* what() const noexcept override;
    orvo_plugin_init_exception_t getTyp() const { return typ_; }

private:
    orvo_plugin_init_exception_t typ_;
    std::string meldung_;
};
