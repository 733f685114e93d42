// Uses classes and exceptions of different owners: adds an extension of a class defined here (EIGENE_Erweiterung), or
// throws an exception of the host (WIRFT_Init, WIRFT_Loader), or one of a class derived here from the host's
// (WIRFT_EigeneInit), after adding an extension of the host.

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/PluginInitException.h>
#include <orvoplugin/plugin/PluginLoaderException.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>

#ifdef EIGENE_Erweiterung
class ErweiterungDesPlugins : public OrvoFADatenServiceErweiterung {
public:
    OrvoErweiterung* clone() const override { return new ErweiterungDesPlugins(*this); }
};
#else
using ErweiterungDesPlugins = OrvoFADatenServiceErweiterung;
#endif

#ifdef WIRFT_EigeneInit
class AusnahmeDesPlugins : public PluginInitException {
public:
    AusnahmeDesPlugins() : PluginInitException(GENERELL, "") {}
    const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_ = "Text einer Ausnahme, deren Klasse im Plugin liegt, und auch ihr \xC4nderungsstand";
};
#endif

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    plugin->addErweiterung(ErweiterungDesPlugins());
#if defined(WIRFT_Init)
    throw PluginInitException(PluginInitException::GENERELL, "vom Plugin selbst");
#elif defined(WIRFT_Loader)
    throw PluginLoaderException(STRUKTUR_FEHLER, "vom Plugin selbst");
#elif defined(WIRFT_EigeneInit)
    throw AusnahmeDesPlugins();
#else
    return true;
#endif
}
