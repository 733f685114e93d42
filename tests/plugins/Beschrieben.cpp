// A plugin controlled by a text file beside it, "<library>.txt", with one order per line:
//
//     produktversion 1.2.0        fileversion 3            label text
//     resident                    status 2
//     onload NAME                 onunload NAME            (hooks zaehleOnLoad, zaehleOnUnload are exported)
//     check UA JAHR[,JAHR...]     feldinfo ...  fehlertext ...  xpath ...  reader ...     JAHR may be "immer",
//                            and finer: 2009-05, 2009-42 (a quarter by its code) or 2009-05-31
//     finanzamt
//     loeschen                    the extensions declared after it delete their services on release
//     factory NAME                the extensions declared after it use that factory
//     abgelehnt                   initialise returns false, after all orders
//
// Without the file it declares nothing and succeeds. The name of a factory decides what its services do: the standard
// ones give a new object each, "gleicherService" always the same, "keinService" null, "falscherService" one of no
// interface, "werfenderService" throws.

#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>

#include <dlfcn.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

class Pruefung : public orvo::service::ValidierungsService {
public:
    int pruefe(const orvo::data::SteuerfallListe& liste, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis& ergebnis) override {
        for (std::size_t i = 0; i < liste.getAnzahl(); ++i)
            if (liste.getDatensatz(i).empty())
                ergebnis.fuegeHinzu(7, "Datensatz", "leer");
        return ergebnis.getMeldungen().empty() ? 0 : 1;
    }
};

class Zuordnung : public orvo::service::IXPathMappingService {};
class Leser : public orvo::service::DatensatzReaderService {};
class Daten : public Service {};

std::string beschreibung() {
    Dl_info wir{};
    dladdr(reinterpret_cast<void*>(&orvo_plugin_initialize), &wir);
    return std::string(wir.dli_fname) + ".txt";
}

std::list<Veranlagungszeitraum> zeitraeume(const std::string& jahre) {
    std::list<Veranlagungszeitraum> vzs;
    std::istringstream strom(jahre);
    for (std::string jahr; std::getline(strom, jahr, ',');)
        vzs.push_back(jahr == "immer" ? Veranlagungszeitraum()
                                      : Veranlagungszeitraum::parse(jahr, jahr.size() == 7    ? "YYYY-MM"
                                                                          : jahr.size() == 10 ? "YYYY-MM-TT"
                                                                                              : "YYYY"));
    return vzs;
}

class Ausfuehrung {
public:
    explicit Ausfuehrung(OrvoPluginV1& plugin) : plugin_(plugin) {}

    bool fuehreAus() {
        std::ifstream datei(beschreibung());
        for (std::string zeile; std::getline(datei, zeile);) {
            std::istringstream worte(zeile);
            std::string auftrag, erstes, zweites;
            worte >> auftrag >> erstes >> zweites;
            befolge(auftrag, erstes, zweites);
        }
        return erfolg_;
    }

private:
    void befolge(const std::string& auftrag, const std::string& erstes, const std::string& zweites) {
        if (auftrag == "produktversion")
            plugin_.setProduktVersion(erstes);
        else if (auftrag == "fileversion")
            plugin_.setFileVersion(erstes);
        else if (auftrag == "label")
            beschrifte(erstes);
        else if (auftrag == "resident")
            plugin_.setResident(true);
        else if (auftrag == "status")
            plugin_.setStatus(static_cast<orvo_plugin_status_t>(std::stoi(erstes)));
        else if (auftrag == "onload")
            plugin_.setOnLoadFuncName(erstes);
        else if (auftrag == "onunload")
            plugin_.setOnUnloadFuncName(erstes);
        else if (auftrag == "check")
            biete<OrvoValidierungsServiceErweiterung>(erstes, zweites);
        else if (auftrag == "feldinfo")
            biete<OrvoFeldInfoDatenServiceErweiterung>(erstes, zweites);
        else if (auftrag == "fehlertext")
            biete<OrvoFTDatenServiceErweiterung>(erstes, zweites);
        else if (auftrag == "xpath")
            biete<OrvoXPathMappingServiceErweiterung>(erstes, zweites);
        else if (auftrag == "reader")
            biete<OrvoDatensatzReaderErweiterung>(erstes, zweites);
        else if (auftrag == "finanzamt")
            fuegeHinzu(OrvoFADatenServiceErweiterung());
        else if (auftrag == "loeschen")
            loeschen_ = true;
        else if (auftrag == "factory")
            factory_ = erstes;
        else if (auftrag == "abgelehnt")
            erfolg_ = false;
        else
            throw std::runtime_error("unbekannter Auftrag: " + auftrag);
    }

    void beschrifte(const std::string& text) {
        OrvoPlugin::LabelEintrag label;
        label.zahl1 = 1;
        label.text1 = text;
        label.zeitraum = Veranlagungszeitraum(2009, "YYYY");
        plugin_.addLabelInformation(label);
    }

    template <class Erweiterung>
    void biete(const std::string& ua, const std::string& jahre) {
        fuegeHinzu(Erweiterung(Unterfallart(ua.c_str()), zeitraeume(jahre)));
    }

    template <class Erweiterung>
    void fuegeHinzu(Erweiterung erweiterung) {
        erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, loeschen_);
        if (!factory_.empty())
            erweiterung.setServiceFactoryName(factory_);
        plugin_.addErweiterung(erweiterung);
    }

    OrvoPluginV1& plugin_;
    bool erfolg_ = true;
    bool loeschen_ = false;
    std::string factory_;
};

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) { typen->push_back({1}); }
bool orvo_plugin_initialize(OrvoPluginV1* plugin) { return Ausfuehrung(*plugin).fuehreAus(); }

Service* orvo_plugin_get_check_service() { return new Pruefung; }
Service* orvo_plugin_get_feldinfo_daten_service() { return new Daten; }
Service* orvo_plugin_get_fehlertext_daten_service() { return new Daten; }
Service* orvo_plugin_get_finanzamt_daten_service() { return new Daten; }
Service* orvo_plugin_get_xpath_mapping_service() { return new Zuordnung; }
Service* orvo_plugin_get_datensatz_reader_service() { return new Leser; }

extern "C" {

ORVO_PLUGIN_EXPORT Service* gleicherService() {
    static Pruefung pruefung;
    return &pruefung;
}
ORVO_PLUGIN_EXPORT Service* keinService() { return nullptr; }
ORVO_PLUGIN_EXPORT Service* falscherService() { return new Service; }
ORVO_PLUGIN_EXPORT Service* werfenderService() { throw std::runtime_error("Factory kann nicht"); }

/// The hooks count their calls in a file beside the library, so that the count outlives the library.
ORVO_PLUGIN_EXPORT void zaehleOnLoad() {
    std::ofstream(beschreibung() + ".hooks", std::ios::app) << "load\n";
}
ORVO_PLUGIN_EXPORT void zaehleOnUnload() {
    std::ofstream(beschreibung() + ".hooks", std::ios::app) << "unload\n";
}
ORVO_PLUGIN_EXPORT void werfenderHook() { throw std::runtime_error("Hook kann nicht"); }
}
