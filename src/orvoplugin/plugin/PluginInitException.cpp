#include <orvoplugin/plugin/PluginInitException.h>

namespace {

const char* vorspann(PluginInitException::orvo_plugin_init_exception_t typ) {
    switch (typ) {
    case PluginInitException::UNGUELTIGER_AUFBAU:
        return "UNGUELTIGER_AUFBAU: ";
    case PluginInitException::INITIALISIERUNGS_FEHLER:
        return "INITIALISIERUNGS_FEHLER: ";
    case PluginInitException::GENERELL:
        return "GENERELL: ";
    }
    return "";
}

} // namespace

PluginInitException::PluginInitException(orvo_plugin_init_exception_t typ, const std::string& text)
    : typ_(typ), meldung_(vorspann(typ) + text) {}
PluginInitException::PluginInitException(const PluginInitException&) = default;
PluginInitException& PluginInitException::operator=(const PluginInitException&) = default;
PluginInitException::~PluginInitException() = default;

const char* PluginInitException::what() const noexcept { return meldung_.c_str(); }
