// The product, doing the same work as the floor.
//
//     product <home> start|described|info|debug|reload|open|use|memory|describe
//
// "described" is a start from the descriptions in the files, which "describe" writes; "info" and "debug" are starts with a
// log sink at that level that ignores all entries.

#include <orvoplugin/beschreibung/Beschreibung.h>
#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginLoader.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/Logger.h>
#include <orvoutil/SharedLib.h>

#include "../StummeSenke.h"
#include "Messung.h"
#include "Nummer.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <utility>

namespace {

using namespace orvo::orvoutil;

void starte() {
    if (!OrvoErweiterungsManager::getInstanz())
        std::exit(1);
}

void beschreibe(const std::string& home) {
    for (const auto& eintrag : std::filesystem::directory_iterator(home + "/plugins")) {
        OrvoPluginLoader loader;
        const std::string datei = eintrag.path();
        const std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(new SharedLib(datei)));
        const auto stelle = static_cast<std::streamoff>(liesBeschreibung(datei).stelle);
        std::fstream strom(datei, std::ios::in | std::ios::out | std::ios::binary);
        if (stelle == 0 || !(strom.seekp(stelle) << schreibeBeschreibung(*plugin)).flush())
            std::exit(1);
    }
}

/// Another name of the same directory has all plugins unloaded and loaded.
void ladeNeu(const std::string& home) {
    Einstellungen().setze("basis.home_dir", home + "/.");
    if (OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins().empty())
        std::exit(1);
}

OrvoValidierungsServiceErweiterung& erweiterung(int nummer) {
    auto* const gefunden = OrvoErweiterungsManager::getInstanz()->findeValidierungsServiceErweiterung(
        Unterfallart(kErsteNummer + nummer), Veranlagungszeitraum(2009, "YYYY"));
    if (!gefunden)
        std::exit(1);
    return *gefunden;
}

void holeUndGib(OrvoValidierungsServiceErweiterung& e, int anzahl) {
    for (int i = 0; i < anzahl; ++i)
        e.release(e.holeService());
}

void nutze(OrvoValidierungsServiceErweiterung& e) {
    Service* const gehalten = e.holeService();
    miss(kNutzungen, [&] { holeUndGib(e, kNutzungen); });
    e.release(gehalten);
}

/// The heap's growth by the start, and the libraries that are mapped after all services were handed out and given back.
void speicherbedarf() {
    const double vorher = heap();
    starte();
    const double gewachsen = heap() - vorher;
    const auto anzahl =
        static_cast<int>(OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins().size());
    std::vector<std::pair<OrvoValidierungsServiceErweiterung*, Service*>> geholte;
    for (int i = 0; i < anzahl; ++i)
        geholte.emplace_back(&erweiterung(i), erweiterung(i).holeService());
    for (const auto& [e, service] : geholte)
        e->release(service);
    std::printf("%.0f %d\n", gewachsen, eingeblendete());
}

} // namespace

int main(int anzahl, char** argumente) {
    if (anzahl != 3)
        return 2;
    Einstellungen().setze("basis.home_dir", argumente[1]);
    const std::string_view was = argumente[2];
    if (was == "info" || was == "debug") {
        Logger::setSink(std::make_shared<StummeSenke>());
        Logger::setLevel(was == "info" ? LogLevel::Info : LogLevel::Debug);
    }
    if (was == "described")
        Einstellungen().setze("basis.plugin_beschreibungen", "eingebettet");
    if (was == "start" || was == "described" || was == "info" || was == "debug") {
        miss(1, starte);
    } else if (was == "reload") {
        starte();
        miss(1, [&] { ladeNeu(argumente[1]); });
    } else if (was == "open") {
        OrvoValidierungsServiceErweiterung& e = erweiterung(0);
        holeUndGib(e, 3);
        miss(kOeffnungen, [&] { holeUndGib(e, kOeffnungen); });
    } else if (was == "use") {
        nutze(erweiterung(0));
    } else if (was == "memory") {
        speicherbedarf();
    } else if (was == "describe") {
        beschreibe(argumente[1]);
    } else {
        return 2;
    }
    Logger::setSink(nullptr); // the end of the process is not part of the measurement
}
