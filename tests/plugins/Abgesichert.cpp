// Guards its code, and throws in one of: AUS_Types, AUS_Initialize, AUS_Factory (of the tax-office data; its check
// service is fine).

#include <orvoplugin/plugin/Absicherung.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

#include <exception>

namespace {

class EigeneAusnahme : public std::exception {
public:
    const char* what() const noexcept override { return "eigene Ausnahme des Plugins"; }
};

class Pruefung : public orvo::service::ValidierungsService {
public:
    int pruefe(const orvo::data::SteuerfallListe&, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis&) override {
        return 0;
    }
};

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) {
    abgesichert([&] {
#ifdef AUS_Types
        throw EigeneAusnahme();
#endif
        typen->push_back({1});
    });
}

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    return abgesichert([&] {
        plugin->addErweiterung(OrvoFADatenServiceErweiterung());
        OrvoValidierungsServiceErweiterung pruefung(Unterfallart(10), Veranlagungszeitraum(2009, "YYYY"));
        pruefung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
        plugin->addErweiterung(pruefung);
#ifdef AUS_Initialize
        throw EigeneAusnahme();
#endif
        return true;
    });
}

Service* orvo_plugin_get_check_service() {
    return abgesichert([] { return new Pruefung; });
}

Service* orvo_plugin_get_finanzamt_daten_service() {
    return abgesichert([]() -> Service* { throw EigeneAusnahme(); });
}
