// A process that ends in a state given by its environment: ORVO_SZENARIO names the state, ORVO_HOME the plugins' home
// directory. The log goes to standard error line by line, and so does what the process reports of itself at its end.

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/Logger.h>
#include <orvoutil/ObjectLifetimeManager.h>

#include "support/Mitschnitt.h"
#include "support/Prozess.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

using namespace orvo::orvoutil;

namespace {

std::string umgebung(const char* name) {
    const char* const wert = std::getenv(name);
    return wert ? wert : "";
}

void schreibe(const std::string& zeile) { std::fprintf(stderr, "%s\n", zeile.c_str()); }

class Fehlerausgabe : public LogSink {
public:
    void write(const LogEntry& eintrag) override { schreibe(Mitschnitt::zeile(eintrag)); }
};

/// What still exists, as seen from `ort`.
void siehNach(const std::string& ort) {
    schreibe("-- " + ort);
    schreibe(std::string("Registry: ") + (OrvoErweiterungsManager::getInstanz() ? "da" : "keine"));
    schreibe(std::string("Manager: ") + (OrvoPluginManager::getInstanz(nullptr) ? "da" : "keiner"));
    schreibe(std::string("Bibliotheken: ") + (istEingeblendet(".dylib") ? "offen" : "zu"));
}

bool ist(const char* szenario) { return umgebung("ORVO_SZENARIO") == szenario; }

void richteEin() {
    Logger::setLevel(LogLevel::Debug);
    Logger::setSink(std::make_shared<Fehlerausgabe>());
    Einstellungen().setze("basis.home_dir", umgebung("ORVO_HOME"));
}

// Services that are never given back. The list outlives every object of the process.
auto& ausstehend = *new std::vector<Service*>;

OrvoValidierungsServiceErweiterung* pruefung() {
    return OrvoErweiterungsManager::getInstanz()->findeValidierungsServiceErweiterung(
        10, Veranlagungszeitraum(2009, "YYYY"));
}

void holeService() {
    ausstehend.push_back(pruefung()->holeService());
    schreibe(ausstehend.back() ? "Service: geholt" : "Service: keiner");
}

void benutze() {
    auto* const service = pruefung()->holeService();
    schreibe("Service: geholt");
    pruefung()->release(service);
}

/// Has the plugin end the process: at its first loading, a later one, or its use.
void beendeAus(const char* ort, bool spaeter = false) {
    if (spaeter)
        OrvoErweiterungsManager::getInstanz();
    Einstellungen().setze("test.exit", ort);
    if (spaeter)
        OrvoPluginManager::getInstanz(nullptr)->reload();
    holeService();
}

/// Loads the plugins with a manager of the program's own.
void ladeSelbst() {
    Logger::setSink(nullptr);
    OrvoPluginManager manager(nullptr);
    for (const OrvoPlugin* const plugin : manager.getRegistriertePlugins())
        schreibe(plugin->isResident() ? "Selbst geladen: resident" : "Selbst geladen: nicht resident");
}

/// Calls a function when it is destroyed.
class BeimAbbau {
public:
    explicit BeimAbbau(std::function<void()> ruf) : ruf_(std::move(ruf)) {}
    BeimAbbau(const BeimAbbau&) = delete;
    BeimAbbau& operator=(const BeimAbbau&) = delete;
    ~BeimAbbau() {
        if (ruf_)
            ruf_();
    }

private:
    std::function<void()> ruf_;
};

// Made before the libraries register anything, so destroyed after everything that they registered.
const BeimAbbau zuletzt([] {
    if (ist("im letzten statischen Destruktor"))
        richteEin();
    if (ist("Einstellung danach"))
        Einstellungen().setze("basis.home_dir", umgebung("ORVO_HOME") + "/plugins/..");
    if (ist("eigener Manager danach"))
        ladeSelbst();
    if (!ist("nichts angefordert"))
        siehNach("zuletzt");
});

const bool beimStart = [] {
    if (!ist("im statischen Initialisierer"))
        return false;
    richteEin();
    holeService();
    return true;
}();

/// Runs after all static objects of the program are destroyed.
__attribute__((destructor)) void ganzZuletzt() {
    if (ist("im Destruktor der Programmdatei")) {
        richteEin();
        siehNach("ganz zuletzt");
    }
}

void imAtexit() { siehNach("atexit"); }

const std::map<std::string, std::function<void()>>& szenarien() {
    static const std::map<std::string, std::function<void()>> alle = {
        {"nichts angefordert", [] {}},
        {"leer", [] { OrvoErweiterungsManager::getInstanz(); }},
        {"geladen", [] { OrvoErweiterungsManager::getInstanz(); }},
        {"benutzt", benutze},
        {"Services ausgegeben", [] { holeService(), holeService(); }},
        {"einmal zu oft zurueckgegeben",
         [] {
             benutze();
             OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins().front()->release();
         }},
        {"nur der Manager", [] { OrvoPluginManager::getInstanz(nullptr); }},
        {"im statischen Initialisierer", [] {}},
        {"atexit davor",
         [] {
             std::atexit(imAtexit);
             holeService();
         }},
        {"atexit danach",
         [] {
             holeService();
             std::atexit(imAtexit);
         }},
        {"erst im atexit", [] { std::atexit(imAtexit); }},
        {"im statischen Destruktor davor",
         [] {
             holeService();
             static const BeimAbbau vorher([] {
                 siehNach("vorher");
                 pruefung()->release(ausstehend.back());
             });
         }},
        {"im letzten statischen Destruktor", [] {}},
        {"im Destruktor der Programmdatei", [] {}},
        {"Einstellung danach", holeService},
        {"eigener Manager danach",
         [] {
             Einstellungen().setze("basis.resident_plugins", "a,");
             holeService();
         }},
        {"selbst abgebaut",
         [] {
             holeService();
             ObjectLifetimeManager::instance().destroyAll();
             schreibe("-- neu");
             holeService();
         }},
        {"exit beim Start", [] { beendeAus("initialize"); }},
        {"exit beim Nachladen aus types", [] { beendeAus("types", true); }},
        {"exit beim Nachladen aus initialize", [] { beendeAus("initialize", true); }},
        {"exit aus onload", [] { beendeAus("onload", true); }},
        {"exit aus factory", [] { beendeAus("factory", true); }},
        {"quick_exit",
         [] {
             holeService();
             std::quick_exit(0);
         }},
    };
    return alle;
}

} // namespace

int main() {
    const auto szenario = szenarien().find(umgebung("ORVO_SZENARIO"));
    if (szenario == szenarien().end())
        return 2;
    if (!beimStart && !ist("nichts angefordert") && !ist("im letzten statischen Destruktor") &&
        !ist("im Destruktor der Programmdatei"))
        richteEin();
    szenario->second();
    schreibe("-- Ende");
    return 0;
}
