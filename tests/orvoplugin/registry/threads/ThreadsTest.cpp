// What several threads may do at once: look up and list while no thread loads, unloads or gets services, and use
// liborvoutil. Built with ThreadSanitizer (preset tsan), the tests fail if threads share anything that one of them writes.

#include <orvoplugin/domain/Konstanten.h>
#include <orvoplugin/plugin/LibraryVersion.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/DirReader.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/OrvoVersion.h>
#include <orvoutil/StreamLogSink.h>
#include <orvoutil/StringUtil.h>

#include "orvoplugin/plugin/Werkstatt.h"
#include "support/Beschriftung.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

using namespace orvo::orvoutil;

namespace {

constexpr int kThreads = 4;
constexpr int kRunden = 10;

/// Keeps nothing, so that it does not synchronise the threads that write.
class StummeSenke : public LogSink {
public:
    void write(const LogEntry&) override {}
};

void protokolliere(bool ja) {
    Logger::setLevel(ja ? LogLevel::Debug : LogLevel::Info);
    Logger::setSink(ja ? std::make_shared<StummeSenke>() : nullptr);
}

using Tat = std::function<bool()>;

/// Each deed over and over on as many threads. Returns: whether all were true each time.
bool zugleich(const std::vector<Tat>& taten, int threadsJeTat = kThreads) {
    std::atomic<bool> start = false;
    std::atomic<bool> gut = true;
    const auto wiederhole = [&](const Tat& tat) {
        start.wait(false);
        for (int runde = 0; runde < kRunden; ++runde)
            if (!tat())
                gut = false;
    };
    std::vector<std::thread> threads;
    for (const Tat& tat : taten)
        for (int i = 0; i < threadsJeTat; ++i)
            threads.emplace_back(wiederhole, std::cref(tat));
    start = true;
    start.notify_all();
    for (std::thread& thread : threads)
        thread.join();
    return gut;
}

Veranlagungszeitraum jahr(int zahl) { return Veranlagungszeitraum(zahl, "YYYY"); }

/// All of a period can be read.
bool istGelesen(const Veranlagungszeitraum& vz) {
    return vz.getTyp() != Veranlagungszeitraum::UNGELESEN && vz.getTag() == 0 && vz.getZeitraum() == 0 &&
           (vz == Veranlagungszeitraum()
                ? vz.getJahr() == 0
                : vz == jahr(2009) && vz.getText() == "2009" && vz.getQuartal() == -1);
}

/// All of what a look-up found can be read.
bool istLesbar(const OrvoUaVzServiceErweiterung* erweiterung, const Unterfallart& ua) {
    if (!erweiterung)
        return false;
    const auto* const vzs = erweiterung->getVeranlagungszeitraeumeFuerUnterfallArt(ua);
    const auto& alle = erweiterung->getVeranlagungszeitraumUnterfallartMap();
    const auto& plugin = dynamic_cast<const OrvoPluginV1&>(*erweiterung->getPlugin());
    return vzs && vzs->size() == 2 && std::all_of(vzs->begin(), vzs->end(), istGelesen) &&
           erweiterung->getUnterfallArten().size() == alle.size() &&
           const_cast<OrvoUaVzServiceErweiterung*>(erweiterung)
               ->istUnterfallartUndVeranlagungszeitraumUnterstuetzt(ua, jahr(2009)) &&
           erweiterung->getInstanzen().empty() && erweiterung->getAbhaengigkeiten().empty() &&
           erweiterung->istFlagGesetzt(FLAG_SERVICE_LOESCHEN) == false &&
           erweiterung->getServiceFactoryName().starts_with("orvo_plugin_get_") &&
           plugin.getProduktVersion() == "1.2" && plugin.getUseCount() == 0 &&
           plugin.listeErweiterungen().size() >= 6 && plugin.getStatus() == ORVO_PLUGIN_ERZEUGT;
}

/// Every look-up of one pair. Returns: how many found something.
int schlageNach(const OrvoErweiterungsManager& registry, const Unterfallart& ua,
                const Veranlagungszeitraum& vz) {
    return istLesbar(registry.findeValidierungsServiceErweiterung(ua, vz), ua) +
           istLesbar(registry.findeFeldInfoDatenServiceErweiterung(ua, vz), ua) +
           istLesbar(registry.findeFehlertextDatenServiceErweiterung(ua, vz), ua) +
           istLesbar(registry.findeXPathMappingServiceErweiterung(ua, vz), ua) +
           istLesbar(registry.findeDatensatzReaderServiceErweiterung(ua, vz), ua) +
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

/// Returns: whether all that is registered for those sub-case types was found, and nothing else.
bool frageAlles(const OrvoErweiterungsManager& registry, const std::vector<Unterfallart>& vorhandene,
                std::size_t gelistete) {
    const Unterfallart fehlende[] = {11, -6, "Zuwendung", "", UFA_ZMDO};
    int gefundene = registry.findeFADatenServiceErweiterung() != nullptr;
    for (const Veranlagungszeitraum& vz :
         {jahr(2008), jahr(2009), Veranlagungszeitraum::parse("2009-05", "YYYY-MM")}) {
        for (const Unterfallart& ua : vorhandene) // in 2008 the period-independent entry answers
            gefundene += schlageNach(registry, ua, vz);
        for (const Unterfallart& ua : fehlende)
            gefundene += schlageNach(registry, ua, vz);
    }
    const int kPaare = 3 * static_cast<int>(vorhandene.size());
    return gefundene == 7 * kPaare + 1 && liste(registry) == gelistete;
}

/// The process's registry over plugin files.
class ThreadsMitPlugins : public testing::Test {
protected:
    ThreadsMitPlugins() {
        for (const Heimat* const heimat : {&zweite_, &erste_})
            for (const char* const name : {"liba.dylib", "unter/libb.dylib"})
                beschrifte(heimat->beschreibe(name, auftraege(name[0] == 'l' ? "10" : "LSTB")));
        erste_.stelleEin();
    }
    ~ThreadsMitPlugins() override {
        protokolliere(false);
        Einstellungen().setze("basis.plugin_beschreibungen", "");
    }

    static std::string auftraege(const std::string& ua) {
        std::string text = "produktversion 1.2\nlabel eins\n";
        for (const char* const art : {"check ", "feldinfo ", "fehlertext ", "xpath ", "reader "})
            text += art + ua + " immer,2009\n";
        return text + "finanzamt\n";
    }

    /// What a thread may do while none loads: get both objects, look up, list, read.
    static bool nutze() {
        const OrvoErweiterungsManager* const registry = OrvoErweiterungsManager::getInstanz();
        OrvoPluginManager& manager = *OrvoPluginManager::getInstanz(nullptr);
        const auto beschriftet = [](const OrvoPlugin* plugin) {
            return plugin->getLabels().front().text1 == "eins" && !plugin->getSharedLib()->isLoaded();
        };
        const auto& plugins = manager.getRegistriertePlugins();
        char version[16];
        getOrvoSharedLibProductversion(version);
        // Of ten keys with two sub-case types each, three kinds have a listing; of the tax-office data there is one.
        return frageAlles(*registry, {10, "010", UFA_LSTB, "lstb"}, 20 + 12 + 2) && plugins.size() == 2 &&
               std::all_of(plugins.begin(), plugins.end(), beschriftet) && manager.getStatus() == 1 &&
               registry->getStatus() == 2 && !manager.isPluginGesperrt("liba.dylib") && *version != '\0';
    }

    const Heimat zweite_{false};
    const Heimat erste_{false};
};

TEST(Threads, LookUpAndListAtOnce) {
    OrvoUaVzServiceErweiterung::VzMap paare;
    for (const Unterfallart& ua : {Unterfallart(10), Unterfallart("Zuwendungsbestaetigung"), Unterfallart(-5),
                                   Unterfallart("-17780975")})
        paare[ua] = {jahr(2009), Veranlagungszeitraum()};
    OrvoPluginV1 plugin(nullptr);
    plugin.setProduktVersion("1.2");
    plugin.addErweiterung(OrvoValidierungsServiceErweiterung(paare));
    plugin.addErweiterung(OrvoFeldInfoDatenServiceErweiterung(paare));
    plugin.addErweiterung(OrvoFTDatenServiceErweiterung(paare));
    plugin.addErweiterung(OrvoXPathMappingServiceErweiterung(paare));
    plugin.addErweiterung(OrvoDatensatzReaderErweiterung(paare));
    plugin.addErweiterung(OrvoFADatenServiceErweiterung());

    const Heimat heimat;
    for (const bool mitLog : {false, true}) {
        protokolliere(mitLog);
        OrvoErweiterungsManager registry;
        registry.pluginErzeugt(&plugin);
        // Of five kinds with eight keys each, three have a listing; of the tax-office data there is one.
        EXPECT_TRUE(zugleich({[&] {
            return frageAlles(registry, {10, "010", "ZUWENDUNGSBESTAETIGUNG", -5, "-17780975"}, 8 * 8 + 2);
        }}));
        registry.pluginZerstoert(&plugin);
    }
    protokolliere(false);
}

TEST_F(ThreadsMitPlugins, MayUseWhatIsLoadedBetweenReloads) {
    OrvoErweiterungsManager::getInstanz();
    EXPECT_TRUE(zugleich({nutze}));
    OrvoPluginManager::getInstanz(nullptr)->reload();
    EXPECT_TRUE(zugleich({nutze}));
    Einstellungen().setze("basis.plugin_beschreibungen", "eingebettet");
    zweite_.stelleEin();
    EXPECT_TRUE(OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins().front()->istBeschrieben());
    EXPECT_TRUE(zugleich({nutze}));
    protokolliere(true);
    std::thread([] { OrvoPluginManager::getInstanz(nullptr)->reload(); }).join();
    EXPECT_TRUE(zugleich({nutze}));
}

/// What a thread may do with liborvoutil at any time.
bool nutzeHilfen() {
    static std::atomic<int> laufende = 0;
    static std::ostringstream strom;
    static const auto gemeinsame = std::make_shared<StreamLogSink>(strom);
    const int nummer = laufende.fetch_add(1, std::memory_order_relaxed);

    Logger::setLevel(nummer % 2 == 0 ? LogLevel::Debug : LogLevel::Error);
    if (nummer % 3 == 0)
        Logger::setSink(gemeinsame);
    else
        Logger::setSink(nummer % 3 == 1 ? std::make_shared<StummeSenke>() : nullptr);
    const Log log("test." + std::to_string(nummer % 5));
    log.warn([] { return std::string("Text"); });
    log.ereignis("Marke", "Text");

    class Beobachter : public AenderungsBeobachter {
    public:
        void empfangeAenderungsNachricht(const AenderungsNachricht&) override {}
    };
    static Beobachter beobachter; // another thread may still tell one that is being removed
    const Einstellungen einstellungen;
    einstellungen.beobachterAnmelden(&beobachter);
    einstellungen.setze("test.gemeinsam", std::to_string(nummer));
    const std::string eigener = "test." + std::to_string(nummer);
    for (int i = 0; i < 100; ++i) // so that walks over the observers meet
        einstellungen.setze(eigener, i % 2 == 0 ? "" : "wert");
    const bool gesetzt = einstellungen.wert(eigener) == "wert" && !einstellungen.basisHomeDir().empty();
    einstellungen.setze(eigener, "");
    einstellungen.beobachterAbmelden(&beobachter);

    ObjectLifetimeManager& lebenszeit = ObjectLifetimeManager::instance();
    lebenszeit.addObject(eigener, new int(nummer));
    const auto* const objekt = lebenszeit.getObject<int>(eigener);
    return gesetzt && objekt && *objekt == nummer && !lebenszeit.getObject<int>("keines") &&
           DirReader("/", "*").getFehler().empty() && OrvoVersion("17, 4") < OrvoVersion("17.5") &&
           getAbsolutePath("/a/../b") == "/b" && latin1ToUtf8("\xFC") == "\xC3\xBC" &&
           formatNumeric("7", 3) == "007";
}

TEST_F(ThreadsMitPlugins, MayUseTheUtilitiesWhileOthersLookUp) {
    OrvoErweiterungsManager::getInstanz();
    EXPECT_TRUE(zugleich({nutze, nutzeHilfen}, kThreads / 2));
}

} // namespace
