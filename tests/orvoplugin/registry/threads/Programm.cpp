// Several threads look up and list at once while no thread loads, unloads or gets services. ThreadSanitizer reports
// shared writes.

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/LogSink.h>
#include <orvoutil/Logger.h>
#include <orvoutil/ObjectLifetimeManager.h>

#include <atomic>
#include <cstdio>
#include <functional>
#include <memory>
#include <sstream>
#include <string_view>
#include <thread>
#include <vector>

using namespace orvo::orvoutil;

namespace {

constexpr int kThreads = 4;
constexpr int kRunden = 20;

class StummeSenke : public LogSink {
public:
    void write(const LogEntry&) override { ++eintraege_; }

private:
    std::atomic<int> eintraege_ = 0;
};

Veranlagungszeitraum jahr(int zahl) { return Veranlagungszeitraum(zahl, "YYYY"); }

void fuelle(OrvoPluginV1& plugin) {
    OrvoUaVzServiceErweiterung::VzMap paare;
    for (const Unterfallart& ua : {Unterfallart(10), Unterfallart("Zuwendungsbestaetigung"), Unterfallart(-5),
                                   Unterfallart("-17780975")})
        paare[ua] = {jahr(2009), Veranlagungszeitraum()};
    plugin.addErweiterung(OrvoValidierungsServiceErweiterung(paare));
    plugin.addErweiterung(OrvoFeldInfoDatenServiceErweiterung(paare));
    plugin.addErweiterung(OrvoFTDatenServiceErweiterung(paare));
    plugin.addErweiterung(OrvoXPathMappingServiceErweiterung(paare));
    plugin.addErweiterung(OrvoDatensatzReaderErweiterung(paare));
    plugin.addErweiterung(OrvoFADatenServiceErweiterung());
}

/// Every look-up of one pair. Returns: how many found something.
int schlageNach(const OrvoErweiterungsManager& registry, const Unterfallart& ua,
                const Veranlagungszeitraum& vz) {
    return (registry.findeValidierungsServiceErweiterung(ua, vz) != nullptr) +
           (registry.findeFeldInfoDatenServiceErweiterung(ua, vz) != nullptr) +
           (registry.findeFehlertextDatenServiceErweiterung(ua, vz) != nullptr) +
           (registry.findeXPathMappingServiceErweiterung(ua, vz) != nullptr) +
           (registry.findeDatensatzReaderServiceErweiterung(ua, vz) != nullptr) +
           registry.istUnterfallartUndJahrUnterstuetzt(ORVO_CHECK_SERVICE_ERWEITERUNG, ua, vz) +
           (registry.schlageNach(ORVO_CHECK_SERVICE_ERWEITERUNG, ua, vz).schluessel != nullptr);
}

std::size_t liste(const OrvoErweiterungsManager& registry) {
    std::ostringstream bericht;
    registry.dump(bericht);
    return registry.getRegistrierteErweiterungen().size() +
           registry.getRegistrierteValidierungsServiceErweiterungen().size() +
           registry.getRegistrierteFeldInfoDatenServiceErweiterungen().size() +
           registry.getRegistrierteFehlertextDatenServiceErweiterungen().size() +
           registry.getRegistrierteFinanzamtsDatenErweiterungen().size();
}

/// Returns: whether every registered entry was found.
bool frageAlles(const OrvoErweiterungsManager& registry) {
    const Unterfallart vorhandene[] = {10, "010", "ZUWENDUNGSBESTAETIGUNG", -5, "-17780975"};
    const Unterfallart fehlende[] = {11, -6, "-5", "Zuwendung", ""};
    int gefundene = registry.findeFADatenServiceErweiterung() != nullptr;
    for (const int zahl : {2008, 2009}) { // the first falls back to the period-independent entry
        for (const Unterfallart& ua : vorhandene)
            gefundene += schlageNach(registry, ua, jahr(zahl));
        for (const Unterfallart& ua : fehlende)
            gefundene += schlageNach(registry, ua, jahr(zahl));
    }
    constexpr int kPaare = 2 * 5;     // registered years and sub-case types
    constexpr std::size_t kJeArt = 8; // keys of a kind
    constexpr std::size_t kArten = 5; // kinds with such keys, three of them with a listing
    return gefundene == 7 * kPaare + 1 && liste(registry) == (kArten + 3) * kJeArt + 2;
}

/// Returns: whether `tu` was true each time, on all threads.
bool aufAllen(const std::function<bool()>& tu) {
    std::atomic<bool> start = false;
    std::atomic<bool> gut = true;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&] {
            start.wait(false);
            for (int runde = 0; runde < kRunden; ++runde)
                if (!tu())
                    gut = false;
        });
    start = true;
    start.notify_all();
    for (std::thread& thread : threads)
        thread.join();
    return gut;
}

bool schlagenNach() {
    Logger::setLevel(LogLevel::Debug);
    Logger::setSink(std::make_shared<StummeSenke>());
    OrvoErweiterungsManager registry;
    OrvoPluginV1 plugin(nullptr);
    fuelle(plugin);
    registry.pluginErzeugt(&plugin);
    const bool gut = aufAllen([&] { return frageAlles(registry); });
    registry.pluginZerstoert(&plugin);
    return gut;
}

bool holenInstanzen() {
    const OrvoErweiterungsManager* const registry = OrvoErweiterungsManager::getInstanz();
    const OrvoPluginManager* const manager = OrvoPluginManager::getInstanz(nullptr);
    const auto holen = [&] {
        return OrvoErweiterungsManager::getInstanz() == registry &&
               OrvoPluginManager::getInstanz(nullptr) == manager;
    };
    const bool ohneSenke = aufAllen(holen);
    Logger::setSink(std::make_shared<StummeSenke>());
    return aufAllen(holen) && ohneSenke;
}

} // namespace

int main(int anzahl, char** woerter) {
    Einstellungen().setze("basis.home_dir", "/nirgends");
    const std::string_view was = anzahl == 2 ? woerter[1] : "";
    const bool gut = was == "look-ups" ? schlagenNach() : was == "instances" && holenInstanzen();
    std::puts(gut ? "good" : "not everything was found");
    ObjectLifetimeManager::instance().destroyAll();
    return gut ? 0 : 1;
}
