// A plugin with one extension of each kind, with every attribute that an extension can have, and factories for every
// behaviour: their objects count themselves.

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>

#include <stdexcept>
#include <string>

namespace {

int lebende = 0;

template <class Schnittstelle>
class Gezaehlt : public Schnittstelle {
public:
    Gezaehlt() { ++lebende; }
    ~Gezaehlt() override { --lebende; }
};

class Pruefung : public orvo::service::ValidierungsService {
public:
    int pruefe(const orvo::data::SteuerfallListe&, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis&) override {
        return 42;
    }
};

/// Classes known to this library only, which own memory.
class EigeneStandardausnahme : public std::exception {
public:
    const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_ = "eine Ausnahme, deren Klasse und deren Text beide im Plugin liegen";
};

class EigeneAusnahme {
public:
    virtual ~EigeneAusnahme() = default;

private:
    std::string text_ = "a text that is too long to be kept within the object itself";
};

/// A condition and a dependency of the plugin's own classes.
class EigeneBedingung : public Bedingung {
public:
    EigeneBedingung() : Bedingung(77) {}
};

class EigeneAbhaengigkeit : public Abhaengigkeit {
public:
    EigeneAbhaengigkeit() : Abhaengigkeit(78) {}
};

Veranlagungszeitraum jahr(int wert) { return Veranlagungszeitraum(wert, "YYYY"); }

template <class Erweiterung>
void bietePruefungAn(OrvoPluginV1& plugin) {
    Erweiterung erweiterung(OrvoUaVzServiceErweiterung::VzMap{
        {10, {jahr(2009), Veranlagungszeitraum::parse("2010-05", "YYYY-MM")}}, {"LSTB", {}}});
    erweiterung.addVorbedingung(UfaPruefungBedingung("LSTB", jahr(2009)));
    erweiterung.addVorbedingung(EigeneBedingung());
    erweiterung.addNachbedingung(FormalePruefungBedingung());
    erweiterung.setNachbedingungen({EigeneBedingung(), SummenBerechnungsBedingung()});
    erweiterung.addAbhaengigkeit(UfaVzAbhaengigkeit("LSTB", jahr(2007), jahr(2009)));
    erweiterung.addAbhaengigkeit(EigeneAbhaengigkeit());
    erweiterung.setzeFlag(FLAG_RESERVIERT_4, true);
    plugin.addErweiterung(erweiterung);
}

template <class Erweiterung>
void bieteAn(OrvoPluginV1& plugin) {
    plugin.addErweiterung(
        Erweiterung(Unterfallart("Ein Name, der zu lang f\xFCr das Objekt selbst ist"), jahr(2009)));
}

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    bietePruefungAn<OrvoValidierungsServiceErweiterung>(*plugin);
    bieteAn<OrvoFeldInfoDatenServiceErweiterung>(*plugin);
    bieteAn<OrvoFTDatenServiceErweiterung>(*plugin);
    plugin->addErweiterung(OrvoFADatenServiceErweiterung());
    bieteAn<OrvoXPathMappingServiceErweiterung>(*plugin);
    bietePruefungAn<OrvoDatensatzReaderErweiterung>(*plugin);
    return true;
}

Service* orvo_plugin_get_check_service() { return new Gezaehlt<Pruefung>; }
Service* orvo_plugin_get_feldinfo_daten_service() { return new Gezaehlt<Service>; }
Service* orvo_plugin_get_fehlertext_daten_service() { return new Gezaehlt<Service>; }
Service* orvo_plugin_get_finanzamt_daten_service() { return new Gezaehlt<Service>; }
Service* orvo_plugin_get_xpath_mapping_service() { return new Gezaehlt<orvo::service::IXPathMappingService>; }
Service* orvo_plugin_get_datensatz_reader_service() {
    return new Gezaehlt<orvo::service::DatensatzReaderService>;
}

extern "C" {

/// Makes one object, and returns it on each call.
ORVO_PLUGIN_EXPORT Service* gibtDenselbenService() {
    static Service* const service = new Gezaehlt<Pruefung>;
    return service;
}
/// Returns one object that is destroyed with the library.
ORVO_PLUGIN_EXPORT Service* gibtStaendigenService() {
    static Pruefung service;
    return &service;
}
ORVO_PLUGIN_EXPORT Service* gibtKeinenService() { return nullptr; }
ORVO_PLUGIN_EXPORT Service* gibtDatenService() { return new Gezaehlt<Service>; }
ORVO_PLUGIN_EXPORT Service* wirftStandardausnahme() { throw std::runtime_error("kann nicht"); }
ORVO_PLUGIN_EXPORT Service* wirftEigeneStandardausnahme() { throw EigeneStandardausnahme(); }
ORVO_PLUGIN_EXPORT Service* wirftEigeneAusnahme() { throw EigeneAusnahme(); }
ORVO_PLUGIN_EXPORT Service* wirftZahl() { throw 42; }

/// Number of objects alive since the library was opened.
ORVO_PLUGIN_EXPORT int lebendeServices() { return lebende; }
}
