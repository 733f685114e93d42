#include <orvoplugin/plugin/PluginLoaderException.h>

namespace {

constexpr const char* kLadevorspann[] = {
    "UNGUELTIGE_PLUGIN_VERSION: ", "STRUKTUR_FEHLER: ", "BIBLIOTHEK_FEHLER: "};

const char* vorspann(orvo_plugin_loader_exception_typ_t typ) {
    const bool istBekannt = typ >= UNGUELTIGE_PLUGIN_VERSION && typ <= BIBLIOTHEK_FEHLER;
    return istBekannt ? kLadevorspann[typ - UNGUELTIGE_PLUGIN_VERSION] : "";
}

} // namespace

PluginLoaderException::PluginLoaderException(orvo_plugin_loader_exception_typ_t typ, const std::string& text)
    : typ_(typ), meldung_(vorspann(typ) + text) {}
PluginLoaderException::PluginLoaderException(const PluginLoaderException&) = default;
PluginLoaderException& PluginLoaderException::operator=(const PluginLoaderException&) = default;
PluginLoaderException::~PluginLoaderException() = default;

const char* PluginLoaderException::what() const noexcept { return meldung_.c_str(); }
