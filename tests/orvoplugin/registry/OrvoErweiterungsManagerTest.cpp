#include <orvoplugin/registry/OrvoErweiterungsManager.h>

#include "Registratur.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/LogSink.h>
#include <orvoutil/Logger.h>
#include <orvoutil/ObjectLifetimeManager.h>

#include "TestPlugins.h"
#include "support/Mitschnitt.h"
#include "support/Prozess.h"

#include <algorithm>
#include <memory>
#include <type_traits>
#include <vector>

using orvo::orvoutil::Einstellungen;
using orvo::orvoutil::LogLevel;
using orvo::orvoutil::ObjectLifetimeManager;

namespace {

constexpr char kName[] = "orvo.plugin.OrvoErweiterungsManager";
constexpr char kSpeicherloch[] = "W Noch Erweiterungen registriert. Speicherloch m\xF6"
                                 "glich!";

} // namespace

class OrvoErweiterungsManagerTest : public Registratur {};

TEST_F(OrvoErweiterungsManagerTest, IsAPluginObserverWithAVirtualDestructor) {
    EXPECT_TRUE((std::is_base_of_v<PluginObserver, OrvoErweiterungsManager>));
    EXPECT_TRUE(std::has_virtual_destructor_v<OrvoErweiterungsManager>);
}

TEST_F(OrvoErweiterungsManagerTest, FindsTheCheckServiceOfARealPlugin) {
    const std::string plugin = lege("eins", "produktversion 1.0\nloeschen\ncheck 10 2009\n");
    auto* const erweiterung = starte().findeValidierungsServiceErweiterung(10, jahr(2009));
    ASSERT_NE(erweiterung, nullptr);
    EXPECT_FALSE(istEingeblendet(plugin));

    auto* const service = erweiterung->holeService();
    ASSERT_NE(service, nullptr);
    EXPECT_TRUE(istEingeblendet(plugin));

    erweiterung->release(service);
    EXPECT_FALSE(istEingeblendet(plugin));
}

TEST_F(OrvoErweiterungsManagerTest, IsOneObjectRegisteredUnderItsCategory) {
    OrvoErweiterungsManager* const erster = OrvoErweiterungsManager::getInstanz();
    ASSERT_NE(erster, nullptr);
    EXPECT_EQ(OrvoErweiterungsManager::getInstanz(), erster);
    EXPECT_EQ(ObjectLifetimeManager::instance().getObject<OrvoErweiterungsManager>(kName), erster);
}

TEST_F(OrvoErweiterungsManagerTest, HasEveryPluginFiledWhenTheFirstRequestReturns) {
    lege("eins", "check 10 2009\n");
    lege("zwei", "feldinfo 10 2009\n");
    EXPECT_EQ(starte().getRegistrierteErweiterungen().size(), 2u);
    EXPECT_EQ(starte().getStatus(), 2);
}

TEST_F(OrvoErweiterungsManagerTest, StartsEmptyOverAnEmptyPluginDirectory) {
    EXPECT_TRUE(starte().getRegistrierteErweiterungen().empty());
    EXPECT_EQ(starte().getStatus(), 2);
}

TEST_F(OrvoErweiterungsManagerTest, FollowsAChangeOfTheHomeDirectory) {
    const Verzeichnis anderes;
    anderes.kopiere(test_plugins::DescribedByFile, "plugins/libanders.dylib");
    anderes.schreibe("plugins/libanders.dylib.txt", "check 10 2010\n");
    lege("eins", "check 10 2009\n");
    OrvoErweiterungsManager& registry = starte();
    Einstellungen().setze("basis.home_dir", anderes.pfad());
    EXPECT_EQ(registry.findeValidierungsServiceErweiterung(10, jahr(2009)), nullptr);
    EXPECT_NE(registry.findeValidierungsServiceErweiterung(10, jahr(2010)), nullptr);
    EXPECT_EQ(registry.getRegistrierteErweiterungen().size(), 1u);
    Einstellungen().setze("basis.home_dir", home_.pfad());
    EXPECT_NE(registry.findeValidierungsServiceErweiterung(10, jahr(2009)), nullptr);
    EXPECT_EQ(registry.getRegistrierteErweiterungen().size(), 1u);
}

TEST_F(OrvoErweiterungsManagerTest, ReadsThePluginsAnewOnReload) {
    lege("eins", "check 10 2009\n");
    OrvoErweiterungsManager& registry = starte();
    home_.schreibe("plugins/libeins.dylib.txt", "check 12 2009\n");
    OrvoPluginManager::getInstanz(nullptr)->reload();
    EXPECT_EQ(registry.findeValidierungsServiceErweiterung(10, jahr(2009)), nullptr);
    EXPECT_NE(registry.findeValidierungsServiceErweiterung(12, jahr(2009)), nullptr);
}

TEST_F(OrvoErweiterungsManagerTest, KeepsTheHigherVersionInEitherOrderOfLoading) {
    const Mitschnitt mitschnitt;
    const std::string zeile = doppelt("ORVO_CHECK_SERVICE_ERWEITERUNG/10/2009");
    lege("eins", "produktversion 1.0.0\ncheck 10 2009\n");
    lege("zwei", "produktversion 1.2.0\ncheck 10 2009\n");
    OrvoErweiterungsManager& registry = starte();
    EXPECT_EQ(registry.findeValidierungsServiceErweiterung(10, jahr(2009)), erweiterungVon("zwei"));
    EXPECT_EQ(mitschnitt.anzahl(zeile), 1);

    lege("eins", "produktversion 1.10.0\ncheck 10 2009\n");
    OrvoPluginManager::getInstanz(nullptr)->reload();
    EXPECT_EQ(registry.findeValidierungsServiceErweiterung(10, jahr(2009)), erweiterungVon("eins"));
    EXPECT_EQ(mitschnitt.anzahl(zeile), 2);
}

TEST_F(OrvoErweiterungsManagerTest, MissesTheWinnersEntryOnceTheLosingPluginIsGone) {
    lege("eins", "produktversion 1.0\ncheck 10 2009\n");
    lege("zwei", "produktversion 2.0\ncheck 10 2009,2010\n");
    OrvoErweiterungsManager& registry = starte();
    entlade("eins");
    EXPECT_EQ(registry.findeValidierungsServiceErweiterung(10, jahr(2009)), nullptr);
    EXPECT_EQ(registry.findeValidierungsServiceErweiterung(10, jahr(2010)), erweiterungVon("zwei"));
    entlade("zwei");
    EXPECT_TRUE(registry.getRegistrierteErweiterungen().empty());
}

TEST_F(OrvoErweiterungsManagerTest, IsEmptyWhenAllPluginsAreUnloaded) {
    lege("eins", "produktversion 1.0\ncheck 10 2008,2009\nfinanzamt\n");
    lege("zwei", "produktversion 2.0\ncheck 10 2009\nfinanzamt\nxpath LSTB immer\n");
    OrvoErweiterungsManager& registry = starte();
    ASSERT_EQ(registry.getRegistrierteErweiterungen().size(), 4u);
    OrvoPluginManager::getInstanz(nullptr)->entladePlugins();
    EXPECT_TRUE(registry.getRegistrierteErweiterungen().empty());
}

// The plugin manager uses only the observer of the first request.
TEST_F(OrvoErweiterungsManagerTest, HearsNothingWhenThePluginManagerWasThereBefore) {
    lege("eins", "check 10 2009\n");
    OrvoPluginManager* const plugins = OrvoPluginManager::getInstanz(nullptr);
    OrvoErweiterungsManager& registry = starte();
    EXPECT_EQ(registry.getStatus(), 2);
    EXPECT_TRUE(registry.getRegistrierteErweiterungen().empty());
    plugins->reload();
    EXPECT_TRUE(registry.getRegistrierteErweiterungen().empty());
}

TEST_F(OrvoErweiterungsManagerTest, ObservesThePluginManagerThatItStarts) {
    lege("eins", "check 10 2009\n");
    auto registry = std::make_unique<OrvoErweiterungsManager>();
    EXPECT_EQ(registry->getRegistrierteErweiterungen().size(), 1u);
    registry.reset(); // removes itself from the observers
    OrvoPluginManager::getInstanz(nullptr)->reload();
    EXPECT_EQ(OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins().size(), 1u);
}

TEST_F(OrvoErweiterungsManagerTest, WarnsWhenItGoesWhileExtensionsAreFiled) {
    const Mitschnitt mitschnitt(LogLevel::Warn);
    lege("eins", "check 10 2009\n");
    starte();
    ObjectLifetimeManager::instance().destroyAll(); // the registry goes first, with the plugins loaded
    EXPECT_EQ(mitschnitt.anzahl(kSpeicherloch), 1);
}

TEST_F(OrvoErweiterungsManagerTest, FindsNothingOnceItHasForgottenAllAtItsEnd) {
    /// A log that looks something up when the registry writes its last line.
    class Frager : public orvo::orvoutil::LogSink {
    public:
        void write(const orvo::orvoutil::LogEntry& eintrag) override {
            if (eintrag.kind == orvo::orvoutil::LogKind::Leave &&
                eintrag.text == "OrvoErweiterungsManager::~OrvoErweiterungsManager")
                antworten.push_back(registry->findeValidierungsServiceErweiterung("LSTB", jahr(2009)));
        }

        OrvoErweiterungsManager* registry = nullptr;
        std::vector<OrvoErweiterung*> antworten;
    };
    lege("eins", "check LSTB 2009\n");
    const auto frager = std::make_shared<Frager>();
    orvo::orvoutil::Logger::setLevel(LogLevel::Debug);
    orvo::orvoutil::Logger::setSink(frager);
    auto registry = std::make_unique<OrvoErweiterungsManager>();
    frager->registry = registry.get();
    ASSERT_NE(registry->findeValidierungsServiceErweiterung("LSTB", jahr(2009)), nullptr);
    registry.reset();
    orvo::orvoutil::Logger::setSink(nullptr);
    EXPECT_EQ(frager->antworten, std::vector<OrvoErweiterung*>{nullptr});
}

TEST_F(OrvoErweiterungsManagerTest, DoesNotWarnWhenItGoesEmpty) {
    const Mitschnitt mitschnitt;
    lege("eins", "check 10 2009\n");
    starte();
    OrvoPluginManager::getInstanz(nullptr)->entladePlugins();
    ObjectLifetimeManager::instance().destroyAll();
    EXPECT_EQ(mitschnitt.anzahl(kSpeicherloch), 0);
}

TEST_F(OrvoErweiterungsManagerTest, KeepsTheWarningToItselfAboveItsLevel) {
    const Mitschnitt mitschnitt(LogLevel::Error);
    lege("eins", "check 10 2009\n");
    starte();
    ObjectLifetimeManager::instance().destroyAll();
    EXPECT_EQ(mitschnitt.anzahl(kSpeicherloch), 0);
}

TEST_F(OrvoErweiterungsManagerTest, LeavesTheExtensionsToTheirPluginsWhenItGoes) {
    auto registry = std::make_unique<OrvoErweiterungsManager>();
    LosesPlugin plugin("1.0");
    const auto* const erweiterung = plugin.biete(OrvoValidierungsServiceErweiterung(10, jahr(2009)));
    registry->pluginErzeugt(&plugin);
    registry.reset();
    EXPECT_EQ(erweiterung->getTyp(), ORVO_CHECK_SERVICE_ERWEITERUNG);
    EXPECT_EQ(erweiterung->getPlugin(), &plugin);
}

TEST_F(OrvoErweiterungsManagerTest, DoesNotStartAPluginManagerOnlyToTakeItselfOut) {
    auto registry = std::make_unique<OrvoErweiterungsManager>();
    ObjectLifetimeManager::instance().destroyAll(); // the plugin manager is destroyed before the registry
    const Mitschnitt mitschnitt;
    registry.reset();
    EXPECT_EQ(mitschnitt.anzahlMit("Starte Manager"), 0);
    EXPECT_EQ(ObjectLifetimeManager::instance().getObject<OrvoPluginManager>("orvo.plugin.OrvoPluginManager"),
              nullptr);
}

TEST_F(OrvoErweiterungsManagerTest, StartsAnewAfterAllObjectsWereDestroyed) {
    lege("eins", "check 10 2009\n");
    starte();
    ObjectLifetimeManager::instance().destroyAll();
    lege("zwei", "check 10 2010\n");
    EXPECT_EQ(starte().getRegistrierteErweiterungen().size(), 2u);
}

TEST_F(OrvoErweiterungsManagerTest, ChecksNoDependencies) {
    lege("eins", "check 10 2009\n");
    EXPECT_TRUE(starte().checkAbhaengigkeiten());
    EXPECT_EQ(starte().getRegistrierteErweiterungen().size(), 1u);
}

TEST_F(OrvoErweiterungsManagerTest, IsNotToBeHadTwiceUnderOneName) {
    int fremd = 0;
    struct Fremder {
        int& geloescht;
        ~Fremder() { ++geloescht; }
    };
    ObjectLifetimeManager::instance().addObject(kName, new Fremder{fremd});
    EXPECT_THROW(OrvoErweiterungsManager::getInstanz(), std::logic_error);
    // The registry whose making failed has removed itself from the plugin manager.
    OrvoPluginManager::getInstanz(nullptr)->reload();
    ObjectLifetimeManager::instance().destroyAll();
    EXPECT_EQ(fremd, 1);
}
