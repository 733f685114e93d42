// A plugin with one check service, and with the mistake that its build selects.

#include <orvoplugin/plugin/Absicherung.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>

#ifdef UNDEFINIERT
void gibtEsNicht();
#endif

#ifndef MUSTER
#define MUSTER "YYYY"
#endif

#ifdef MIT_C
extern "C" int verdopple(int betrag);
#endif

#ifdef EINMALIG
template <class T>
struct Vorlage {
    static inline int einmalig = 1;
};
#endif

#ifdef SICHTBAR
int sichtbareFunktion() { return 1; }
#endif

namespace {

class Pruefung : public orvo::service::ValidierungsService {
public:
    int pruefe(const orvo::data::SteuerfallListe&, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis&) override {
#ifdef UNDEFINIERT
        gibtEsNicht();
#endif
#ifdef EINMALIG
        return Vorlage<int>::einmalig;
#elif defined(SICHTBAR)
        return sichtbareFunktion();
#elif defined(MIT_C)
        return verdopple(1);
#elif defined(JE_THREAD)
        static thread_local std::string letzter;
        letzter += 'x';
        return static_cast<int>(letzter.size());
#else
        return 0;
#endif
    }
};

[[maybe_unused]] bool beschreibe(OrvoPluginV1* plugin) {
#ifdef WIRFT
    throw std::runtime_error("die Regeln fehlen");
#endif
#ifdef STUERZT_AB
    std::abort();
#endif
#ifdef FADEN
    std::thread([] { std::this_thread::sleep_for(std::chrono::hours(1)); }).detach();
#endif
    plugin->setProduktVersion("1.0");
#ifdef NACH_UMGEBUNG
    plugin->setFileVersion(std::getenv("PATH"));
#endif
#ifdef HOOK
    plugin->setOnLoadFuncName(HOOK);
#endif
    OrvoValidierungsServiceErweiterung pruefung(Unterfallart(10), Veranlagungszeitraum(2009, MUSTER));
    pruefung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
#ifdef FACTORY
    pruefung.setServiceFactoryName(FACTORY);
#endif
    plugin->addErweiterung(pruefung);
#ifdef LEHNT_AB
    return false;
#else
    return true;
#endif
}

} // namespace

#ifdef OHNE_EINTRAG
void orvo_plugin_get_types(std::list<orvo_plugin_version_t>*) {}
#elif !defined(OHNE_TYPEN)
void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }
#endif

#ifdef IM_NAMENSRAUM
namespace autor {
#endif
#ifdef KENNZEICHEN
extern "C" ORVO_PLUGIN_EXPORT
#endif
#ifdef INITIALIZE
    bool INITIALIZE {
    return true;
}
#else
#ifdef ABGESICHERT
bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    return abgesichert([&] { return beschreibe(plugin); });
}
#else
bool orvo_plugin_initialize(OrvoPluginV1* plugin) { return beschreibe(plugin); }
#endif
#endif
#ifdef IM_NAMENSRAUM
}
#endif

#ifdef STATISCH
Service* orvo_plugin_get_check_service() {
    static Pruefung pruefung;
    return &pruefung;
}
#elif !defined(OHNE_FACTORY)
Service* orvo_plugin_get_check_service() { return new Pruefung; }
#endif

extern "C" void nichtGekennzeichnet();
extern "C" void nichtGekennzeichnet() {}
