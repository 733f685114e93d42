// Throws from an entry point: AUS_Types or AUS_Initialize; WIRFT_... selects the exception.

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>

#include <stdexcept>
#include <string>

namespace {

/// A class known to this library only, which owns memory.
class EigeneAusnahme {
public:
    virtual ~EigeneAusnahme() = default;

private:
    std::string text_ = "a text that is too long to be kept within the object itself";
};

class EigeneStandardAusnahme : public std::exception {
public:
    const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_ = "Ausnahme einer Klasse des Plugins, mit einem langen Text: \xFC"
                        "ber alle Grenzen";
};

[[noreturn]] void wirf() {
#if defined(WIRFT_StandardException)
    throw std::runtime_error("Standardausnahme aus dem Plugin");
#elif defined(WIRFT_OwnStandardException)
    throw EigeneStandardAusnahme();
#elif defined(WIRFT_OwnClass)
    throw EigeneAusnahme();
#else
    throw 42;
#endif
}

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) {
    typen->push_back({1});
#ifdef AUS_Types
    wirf();
#endif
}

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    plugin->setProduktVersion("1.0");
#ifdef AUS_Initialize
    wirf();
#else
    return true;
#endif
}
