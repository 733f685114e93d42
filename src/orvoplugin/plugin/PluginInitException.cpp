#include <orvoplugin/plugin/PluginInitException.h>

namespace {

constexpr const char* kVorspann[] = {"UNGUELTIGER_AUFBAU: ", "INITIALISIERUNGS_FEHLER: ", "GENERELL: "};

const char* vorspann(PluginInitException::orvo_plugin_init_exception_t typ) {
    const bool istBekannt =
        typ >= PluginInitException::UNGUELTIGER_AUFBAU && typ <= PluginInitException::GENERELL;
    return istBekannt ? kVorspann[typ - PluginInitException::UNGUELTIGER_AUFBAU] : "";
}

} // namespace

PluginInitException::PluginInitException(orvo_plugin_init_exception_t typ, const std::string& text)
    : typ_(typ), meldung_(vorspann(typ) + text) {}
PluginInitException::PluginInitException(const PluginInitException&) = default;
PluginInitException& PluginInitException::operator=(const PluginInitException&) = default;
PluginInitException::~PluginInitException() = default;

const char* PluginInitException::what() const noexcept { return meldung_.c_str(); }
