// The product, doing the same work as the floor.
//
//     product <home> start|info|debug|cycle|memory
//
// "info" and "debug" are starts with a log sink at that level that ignores all entries.

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/LogSink.h>
#include <orvoutil/Logger.h>

#include "Messung.h"
#include "Nummer.h"

#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using namespace orvo::orvoutil;

class StummeSenke : public LogSink {
    void write(const LogEntry&) override {}
};

void starte() {
    if (!OrvoErweiterungsManager::getInstanz())
        std::exit(1);
}

OrvoValidierungsServiceErweiterung& erweiterung(int nummer) {
    auto* const gefunden = OrvoErweiterungsManager::getInstanz()->findeValidierungsServiceErweiterung(
        Unterfallart(kErsteNummer + nummer), Veranlagungszeitraum(2009, "YYYY"));
    if (!gefunden)
        std::exit(1);
    return *gefunden;
}

void kreise(OrvoValidierungsServiceErweiterung& e, int anzahl) {
    for (int i = 0; i < anzahl; ++i)
        e.release(e.holeService());
}

/// As in the floor. Memory that the product needs for its start counts as growth too.
void speicherbedarf() {
    const double vorher = speicher();
    starte();
    const auto anzahl =
        static_cast<int>(OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins().size());
    std::vector<std::pair<OrvoValidierungsServiceErweiterung*, Service*>> geholte;
    for (int i = 0; i < anzahl; ++i)
        geholte.emplace_back(&erweiterung(i), erweiterung(i).holeService());
    const double offen = speicher();
    for (const auto& [e, service] : geholte)
        e->release(service);
    std::printf("%.0f %.0f %.0f\n", offen - vorher, speicher() - vorher, eingeblendete());
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
    if (was == "start" || was == "info" || was == "debug") {
        std::printf("%.0f\n", nanosekunden(starte));
    } else if (was == "cycle") {
        OrvoValidierungsServiceErweiterung& e = erweiterung(0);
        kreise(e, 3);
        constexpr int kKreise = 300;
        std::printf("%.1f\n", nanosekunden([&] { kreise(e, kKreise); }) / kKreise);
    } else if (was == "memory") {
        speicherbedarf();
    } else {
        return 2;
    }
    Logger::setSink(nullptr); // the end of the process is not part of the measurement
}
