#include <orvoplugin/plugin/PluginLoaderException.h>

namespace {

const char* vorspann(orvo_plugin_loader_exception_typ_t typ) {
    switch (typ) {
    case UNGUELTIGE_PLUGIN_VERSION:
        return "UNGUELTIGE_PLUGIN_VERSION: ";
    case STRUKTUR_FEHLER:
        return "STRUKTUR_FEHLER: ";
    case BIBLIOTHEK_FEHLER:
        return "BIBLIOTHEK_FEHLER: ";
    }
    return "";
}

} // namespace

PluginLoaderException::PluginLoaderException(orvo_plugin_loader_exception_typ_t typ, const std::string& text)
    : typ_(typ), meldung_(vorspann(typ) + text) {}
PluginLoaderException::PluginLoaderException(const PluginLoaderException&) = default;
PluginLoaderException& PluginLoaderException::operator=(const PluginLoaderException&) = default;
PluginLoaderException::~PluginLoaderException() = default;

const char* PluginLoaderException::what() const noexcept { return meldung_.c_str(); }
