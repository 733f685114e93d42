// A plugin that misbehaves as a text file beside it says, "<library>.txt", with one order per line:
//
//     typ N [ANZAHL]         get_types appends that record, so many times; without the order, one of type 1
//     wirft ORT ART          throws from types, initialize, service, onload or onunload; ART see `wirf`
//     abgelehnt              initialise returns false, after all orders
//     checks ANZAHL          adds so many check services, for the sub-case types from 1000 on, in the year 2009
//     check UA               adds one, in the year 2009; its services are of its own
//     ohnezeitraum UA        one for no period at all
//     eigene WIE             an extension of a class of this library, whose clone() is of it too (WIE eigene), of
//                            the class that it derives from (geerbt), null (keine), or throws (wirft)
//     host WIE               an extension that the host makes, of a class of the host's
//     fragt WEN              asks for the registry or the manager; fragtfrueh WEN does so in get_types
//     home PFAD              sets the home directory; the path may contain blanks

#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/PluginInitException.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>

#include <dlfcn.h>

#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

/// Classes known to this library only.
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
    std::string text_ = "Ausnahme einer Klasse des Plugins, mit einem Text von einiger L\xE4nge";
};

class AusnahmeOhneText : public std::exception {
public:
    const char* what() const noexcept override { return nullptr; }
};

class EigeneInitAusnahme : public PluginInitException {
public:
    EigeneInitAusnahme() : PluginInitException(GENERELL, "von einer abgeleiteten Klasse") {}
};

class EigeneErweiterung : public OrvoValidierungsServiceErweiterung {
public:
    EigeneErweiterung(const std::string& wie, int ua)
        : OrvoValidierungsServiceErweiterung(Unterfallart(ua), Veranlagungszeitraum(2009, "YYYY")),
          wie_(wie) {}
    OrvoErweiterung* clone() const override {
        if (wie_ == "eigene")
            return new EigeneErweiterung(*this);
        if (wie_ == "geerbt")
            return OrvoValidierungsServiceErweiterung::clone();
        if (wie_ == "keine")
            return nullptr;
        throw EigeneStandardausnahme();
    }

private:
    std::string wie_;
};

namespace {

constexpr int kUnterfallart = 50;

class Pruefung : public orvo::service::ValidierungsService {
public:
    int pruefe(const orvo::data::SteuerfallListe&, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis&) override {
        return 0;
    }
};

[[noreturn]] void wirf(const std::string& art) {
    if (art == "standard")
        throw std::runtime_error("Standardausnahme aus dem Plugin");
    if (art == "eigeneStandard")
        throw EigeneStandardausnahme();
    if (art == "eigene")
        throw EigeneAusnahme();
    if (art == "ohneText")
        throw AusnahmeOhneText();
    if (art == "init")
        throw PluginInitException(PluginInitException::GENERELL, "vom Plugin selbst");
    if (art == "eigeneInit")
        throw EigeneInitAusnahme();
    throw 42;
}

/// Calls `befolge` for each order, with its first word and the rest of the line.
void lies(const std::function<void(const std::string&, std::istream&)>& befolge) {
    Dl_info wir{};
    dladdr(reinterpret_cast<void*>(&orvo_plugin_initialize), &wir);
    std::ifstream datei(std::string(wir.dli_fname) + ".txt");
    for (std::string zeile; std::getline(datei, zeile);) {
        std::istringstream worte(zeile);
        std::string auftrag;
        worte >> auftrag;
        befolge(auftrag, worte);
    }
}

void wirfFallsBestellt(const std::string& hier) {
    lies([&](const std::string& auftrag, std::istream& worte) {
        std::string ort, art;
        if (auftrag == "wirft" && worte >> ort >> art && ort == hier)
            wirf(art);
    });
}

std::unique_ptr<OrvoErweiterung> vomHost(const std::string& wie) {
    using Funktion = OrvoErweiterung* (*)(const char*);
    return std::unique_ptr<OrvoErweiterung>(
        reinterpret_cast<Funktion>(dlsym(RTLD_DEFAULT, "hostErweiterung"))(wie.c_str()));
}

OrvoValidierungsServiceErweiterung pruefung(int ua) {
    OrvoValidierungsServiceErweiterung erweiterung(Unterfallart(ua), Veranlagungszeitraum(2009, "YYYY"));
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    return erweiterung;
}

void frage(const std::string& wen) {
    if (wen == "registry")
        OrvoErweiterungsManager::getInstanz();
    else
        OrvoPluginManager::getInstanz(nullptr);
}

bool fuehreAus(OrvoPluginV1& plugin) {
    bool erfolg = true;
    plugin.setProduktVersion("1.0");
    plugin.setOnLoadFuncName("beimLaden");
    plugin.setOnUnloadFuncName("beimEntladen");
    lies([&](const std::string& auftrag, std::istream& worte) {
        std::string wort;
        int zahl = 0;
        if (auftrag == "abgelehnt") {
            erfolg = false;
        } else if (auftrag == "checks" && worte >> zahl) {
            for (int i = 0; i < zahl; ++i)
                plugin.addErweiterung(pruefung(1000 + i));
        } else if (auftrag == "check" && worte >> zahl) {
            plugin.addErweiterung(pruefung(zahl));
        } else if (auftrag == "ohnezeitraum" && worte >> zahl) {
            plugin.addErweiterung(
                OrvoValidierungsServiceErweiterung(Unterfallart(zahl), std::list<Veranlagungszeitraum>()));
        } else if (auftrag == "eigene" && worte >> wort) {
            plugin.addErweiterung(EigeneErweiterung(wort, kUnterfallart));
        } else if (auftrag == "host" && worte >> wort) {
            plugin.addErweiterung(*vomHost(wort));
        } else if (auftrag == "fragt" && worte >> wort) {
            frage(wort);
        } else if (auftrag == "home" && std::getline(worte >> std::ws, wort)) {
            orvo::orvoutil::Einstellungen().setze("basis.home_dir", wort);
        }
    });
    return erfolg;
}

} // namespace

void orvo_plugin_get_types(std::list<orvo_plugin_version_t>* typen) {
    lies([&](const std::string& auftrag, std::istream& worte) {
        int typ = 0;
        std::size_t anzahl = 1;
        if (auftrag != "typ" || !(worte >> typ))
            return;
        worte >> anzahl;
        typen->insert(typen->end(), worte ? anzahl : 1, {typ});
    });
    if (typen->empty())
        typen->push_back({1});
    lies([](const std::string& auftrag, std::istream& worte) {
        std::string wen;
        if (auftrag == "fragtfrueh" && worte >> wen)
            frage(wen);
    });
    wirfFallsBestellt("types");
}

bool orvo_plugin_initialize(OrvoPluginV1* plugin) {
    const bool erfolg = fuehreAus(*plugin);
    wirfFallsBestellt("initialize");
    return erfolg;
}

Service* orvo_plugin_get_check_service() {
    wirfFallsBestellt("service");
    return new Pruefung;
}

extern "C" {
ORVO_PLUGIN_EXPORT void beimLaden() { wirfFallsBestellt("onload"); }
ORVO_PLUGIN_EXPORT void beimEntladen() { wirfFallsBestellt("onunload"); }
}
