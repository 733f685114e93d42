#include <orvoplugin/domain/Konstanten.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

#include <memory>
#include <string>

// GCC would make this a unique symbol, which keeps the library in the process.
template <typename T>
struct Zaehler {
    static inline T stand{};
};

class Pruefung : public orvo::service::ValidierungsService {
public:
    Pruefung() {
        const auto merkmal = std::make_shared<int>(7);
        Zaehler<std::string>::stand += "x";
        addSupportedFeature(*merkmal);
    }
    int pruefe(const orvo::data::SteuerfallListe&, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis&) override {
        return 0;
    }
};

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    plugin->setProduktVersion("1.0.0");
    OrvoValidierungsServiceErweiterung erweiterung(UFA_LSTB, Veranlagungszeitraum(2009, "YYYY"));
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    plugin->addErweiterung(erweiterung);
    return true;
}

Service* orvo_plugin_get_check_service() { return new Pruefung; }
