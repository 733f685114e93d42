// A plugin for the test of the client: its check service reports each empty record.

#include <orvoplugin/domain/Konstanten.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

#include <string>

namespace {

class Testdienst : public orvo::service::ValidierungsService {
public:
    int pruefe(const orvo::data::SteuerfallListe& liste, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis& ergebnis) override {
        for (std::size_t i = 0; i < liste.getAnzahl(); ++i)
            if (liste.getDatensatz(i).empty())
                ergebnis.fuegeHinzu(1, "Datensatz", "record " + std::to_string(i + 1) + " is empty");
        return ergebnis.getMeldungen().empty() ? 0 : 1;
    }
};

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    OrvoValidierungsServiceErweiterung pruefung(UFA_10, Veranlagungszeitraum(2009, "YYYY"));
    pruefung.setzeFlag(FLAG_SERVICE_LOESCHEN, true); // each service is a new object, deleted when given back
    plugin->addErweiterung(pruefung);
    return true;
}

Service* orvo_plugin_get_check_service() { return new Testdienst; }
