// Has everything that a compiler may mark as unique, and a C function from a static library. Its entry points use all
// of it, so that nothing is dropped.

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>

#include <memory>
#include <string>

extern "C" int ausStatischerBibliothek();

inline int inlineVariable = 1;

template <class T>
struct Vorlage {
    static int zaehler;
    static inline std::string text = "a text that is too long to be kept within the object itself";
};
template <class T>
int Vorlage<T>::zaehler = 1;

inline int& inlineFunktion() {
    static int statisch = 1;
    return statisch;
}

template <class T>
T& vorlagenfunktion() {
    static T statisch{};
    return statisch;
}

class Dienst : public Service {
public:
    int summe = inlineVariable + Vorlage<int>::zaehler + static_cast<int>(Vorlage<int>::text.size()) +
                inlineFunktion() + vorlagenfunktion<int>() + *std::make_shared<int>(1) +
                ausStatischerBibliothek();
};

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    plugin->setOnLoadFuncName("einHook");
    OrvoFADatenServiceErweiterung erweiterung;
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    plugin->addErweiterung(erweiterung);
    return true;
}

Service* orvo_plugin_get_finanzamt_daten_service() { return new Dienst; }

extern "C" ORVO_PLUGIN_EXPORT void einHook() {}
extern "C" ORVO_PLUGIN_EXPORT void nochEinHook() {}
extern "C" void ohneKennzeichen() {}
