// Services that implement the interfaces of Dienste.h in every way that a class can.
#include "Dienste.h"

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

namespace {

struct Vorn {
    virtual ~Vorn() = default;
    virtual int vorn() { return 0; }
    int platz[8] = {};
};

struct Einfach : Zaehler {
    int zaehle() override { return EINFACH; }
};
struct AnZweiterStelle : Vorn, Einfach {
    int zaehle() override { return AN_ZWEITER_STELLE; }
};
struct Virtuell : Vorn, virtual Zaehler {
    int zaehle() override { return VIRTUELL; }
};
struct NichtOeffentlich : private Zaehler {
    int zaehle() override { return NICHT_OEFFENTLICH; }
    Service* alsService() { return this; }
};
struct DieUhr : Uhr {
    int stunde() override { return 12; }
};
struct UhrMitZaehler : DieUhr, Einfach {};

class Pruefung : public orvo::service::ValidierungsService {
    int pruefe(const orvo::data::SteuerfallListe&, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis&) override {
        return 0;
    }
};

void biete(OrvoPluginV1& plugin, Bauart bauart, const char* factory) {
    OrvoFeldInfoDatenServiceErweiterung erweiterung(Unterfallart(bauart), Veranlagungszeitraum(2009, "YYYY"));
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    erweiterung.setServiceFactoryName(factory);
    plugin.addErweiterung(erweiterung);
}

} // namespace

extern "C" {
ORVO_PLUGIN_EXPORT Service* einfach() { return new Einfach; }
ORVO_PLUGIN_EXPORT Service* anZweiterStelle() { return new AnZweiterStelle; }
ORVO_PLUGIN_EXPORT Service* virtuell() { return new Virtuell; }
ORVO_PLUGIN_EXPORT Service* nichtOeffentlich() { return (new NichtOeffentlich)->alsService(); }
ORVO_PLUGIN_EXPORT Service* dieUhr() { return new DieUhr; }
ORVO_PLUGIN_EXPORT Service* uhrMitZaehler() { return static_cast<DieUhr*>(new UhrMitZaehler); }
}

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    plugin->setProduktVersion("1.0.0");
    biete(*plugin, EINFACH, "einfach");
    biete(*plugin, AN_ZWEITER_STELLE, "anZweiterStelle");
    biete(*plugin, VIRTUELL, "virtuell");
    biete(*plugin, NICHT_OEFFENTLICH, "nichtOeffentlich");
    biete(*plugin, DIE_UHR, "dieUhr");
    biete(*plugin, UHR_MIT_ZAEHLER, "uhrMitZaehler");
    OrvoValidierungsServiceErweiterung pruefung("LSTB", Veranlagungszeitraum(2009, "YYYY"));
    pruefung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    plugin->addErweiterung(pruefung);
    return true;
}

Service* orvo_plugin_get_check_service() { return new Pruefung; }
