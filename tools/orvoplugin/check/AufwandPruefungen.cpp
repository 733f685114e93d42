// Checks of what a plugin costs its host: time, and lines in the log.

#include "check/Katalog.h"
#include "check/Pluginnutzung.h"
#include "kern/Anzeige.h"
#include "kern/Sprache.h"

#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>
#include <orvoutil/LogSink.h>
#include <orvoutil/Logger.h>
#include <orvoutil/SharedLib.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <vector>

using namespace orvo::orvoutil;

namespace werkzeug::check {

namespace {

/// Counts what the host's log would take.
struct Zaehlung final : LogSink {
    void write(const LogEntry& eintrag) override {
        ++eintraege;
        bytes += eintrag.category.size() + eintrag.tag.size() + eintrag.text.size();
    }

    std::atomic<std::size_t> eintraege{0}, bytes{0}; // a plugin may log on threads of its own
};

void pruefeLogmenge(const Pruefling& p, Fundliste& funde) {
    const auto zaehlung = std::make_shared<Zaehlung>();
    Logger::setLevel(LogLevel::Info);
    Logger::setSink(zaehlung);
    ladeUndBenutze(p.pfad);
    Logger::setSink(nullptr);
    const std::size_t eintraege = zaehlung->eintraege, bytes = zaehlung->bytes, erlaubt = p.vorgaben->maxLog;
    if (bytes > erlaubt)
        funde.warnung(satz("writes {1} bytes in {2} entries to the log; {3} bytes are allowed", bytes,
                           eintraege, erlaubt),
                      "log_volume");
    funde.zahlen = {{"entries", eintraege}, {"bytes", bytes}};
}

/// How long each step took, by name: in milliseconds, one number for each round.
using Zeiten = std::map<std::string, std::vector<double>>;

double dauer(const std::function<void()>& schritt) {
    const auto beginn = std::chrono::steady_clock::now();
    schritt();
    return millisekundenSeit(beginn);
}

/// One life. Only the first step opens the library: the later ones find it open.
void missEinLeben(const std::string& pfad, Zeiten& zeiten) {
    SharedLib offen(pfad);
    zeiten["open"].push_back(dauer([&] { offen.load(); }));
    std::unique_ptr<OrvoPluginV1> plugin;
    zeiten["describe"].push_back(dauer([&] { plugin = lade(pfad); }));
    double laengste = -1;
    for (OrvoServiceErweiterung* const erweiterung : serviceErweiterungen(*plugin)) {
        laengste = std::max(laengste, dauer([&] { erweiterung->holeService(); }));
        gibAllesZurueck(*erweiterung);
    }
    if (laengste >= 0)
        zeiten["service"].push_back(laengste);
}

void pruefeZeit(const Pruefling& p, Fundliste& funde) {
    constexpr int kRunden = 5;
    const auto schluss = std::chrono::steady_clock::now() + p.zeitlimit / 4;
    Zeiten zeiten;
    for (int i = 0; i == 0 || (i < kRunden && std::chrono::steady_clock::now() < schluss); ++i)
        missEinLeben(p.pfad, zeiten);
    funde.zahlen = {{"open_ms", nullptr}, {"describe_ms", nullptr}, {"service_ms", nullptr}};
    for (auto& [schritt, alle] : zeiten) {
        const auto mitte = alle.begin() + static_cast<std::ptrdiff_t>(alle.size() / 2);
        std::nth_element(alle.begin(), mitte, alle.end());
        funde.zahlen[schritt + "_ms"] = *mitte;
        if (const double erlaubt = p.vorgaben->maxMs.at(schritt); *mitte > erlaubt)
            funde.fehler(satz("the step {1} takes {2} ms; {3} ms are allowed", schritt, Json(*mitte).dump(),
                              Json(erlaubt).dump()),
                         "too_slow");
    }
}

} // namespace

std::vector<Pruefung> aufwandPruefungen() { return {{"log-volume", pruefeLogmenge}, {"time", pruefeZeit}}; }

} // namespace werkzeug::check
