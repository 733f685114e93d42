// A check service that throws: the number of the sub-case type selects the exception (see the enumeration).

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

#include <stdexcept>
#include <string>

namespace {

enum Wurf { EIGENE = 1, EIGENE_STANDARD = 2, ZAHL = 3, STANDARD = 4 };

/// Classes known to this library only, which own memory.
class EigeneAusnahme {
public:
    virtual ~EigeneAusnahme() = default;

private:
    std::string text_ = "a text that is too long to be kept within the object itself";
};

class EigeneStandardausnahme : public std::exception {
public:
    const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_ = "eine Ausnahme, deren Klasse und deren Text beide im Plugin liegen";
};

class Pruefung : public orvo::service::ValidierungsService {
public:
    int pruefe(const orvo::data::SteuerfallListe&, const Unterfallart& ua, const Veranlagungszeitraum&,
               PruefErgebnis&) override {
        switch (ua.getNummer()) {
        case EIGENE:
            throw EigeneAusnahme();
        case EIGENE_STANDARD:
            throw EigeneStandardausnahme();
        case ZAHL:
            throw 42;
        case STANDARD:
            throw std::runtime_error("Standardausnahme aus dem Plugin");
        default:
            return 0;
        }
    }
};

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    OrvoValidierungsServiceErweiterung erweiterung(Unterfallart(10), Veranlagungszeitraum(2009, "YYYY"));
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    plugin->addErweiterung(erweiterung);
    return true;
}

Service* orvo_plugin_get_check_service() { return new Pruefung; }
