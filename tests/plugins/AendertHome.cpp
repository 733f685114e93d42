// Changes the home directory to the setting "test.neues_home" (unless that is empty), from one of: AUS_Types,
// AUS_Initialize, AUS_What (of an exception that it throws from initialise), AUS_Ende (a static object's
// destructor, which runs when the library is closed; the plugin is resident, so that this is when it goes),
// AUS_OnLoad and AUS_OnUnload (its hooks), AUS_Factory, AUS_Loeschen (the end of its service), AUS_Anfang (a static
// object's constructor, which runs when the library is opened).

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoutil/Einstellungen.h>

#include <exception>

namespace {

void aendere() {
    const orvo::orvoutil::Einstellungen einstellungen;
    const std::string neues = einstellungen.wert("test.neues_home");
    if (!neues.empty())
        einstellungen.setze("basis.home_dir", neues);
}

class Dienst : public Service {
#ifdef AUS_Loeschen
public:
    ~Dienst() override { aendere(); }
#endif
};

#if defined(AUS_What)
class Gespraechige : public std::exception {
public:
    const char* what() const noexcept override {
        aendere();
        return "gespraechige Ausnahme";
    }
};
#elif defined(AUS_Anfang)
const struct Anfang {
    Anfang() { aendere(); }
} anfang;
#elif defined(AUS_Ende)
const struct Ende {
    ~Ende() { aendere(); }
} ende;
#endif

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) {
#ifdef AUS_Types
    aendere();
#endif
    typen->push_back({1});
}

bool orvo_plugin_initialize([[maybe_unused]] OrvoPluginV1* plugin) {
#if defined(AUS_Initialize)
    aendere();
#elif defined(AUS_What)
    throw Gespraechige();
#elif defined(AUS_Ende)
    plugin->setResident(true);
#elif defined(AUS_OnLoad)
    plugin->setOnLoadFuncName("hook");
#elif defined(AUS_OnUnload)
    plugin->setOnUnloadFuncName("hook");
#endif
    OrvoFADatenServiceErweiterung erweiterung;
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    plugin->addErweiterung(erweiterung);
    return true;
}

extern "C" ORVO_PLUGIN_EXPORT void hook() { aendere(); }

Service* orvo_plugin_get_finanzamt_daten_service() {
#ifdef AUS_Factory
    aendere();
#endif
    return new Dienst;
}
