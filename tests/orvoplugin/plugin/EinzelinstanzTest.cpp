// The one plugin manager of the process: when it is made, and when a request is refused.

#include <orvoplugin/plugin/intern/Einzelinstanz.h>

#include <orvoplugin/plugin/OrvoPluginLoader.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>

#include "orvoplugin/plugin/Faelle.h"
#include "orvoplugin/plugin/Werkstatt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

using orvo::orvoutil::LogLevel;
using orvo::orvoutil::ObjectLifetimeManager;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char kName[] = "orvo.plugin.OrvoPluginManager";

struct EinzelinstanzTest : testing::Test {
    Zeilen ereignisse;
    Zeuge zeuge{ereignisse};
    Heimat heimat; // destroyed first, and the manager with it

    static OrvoPluginManager* registriert() {
        return ObjectLifetimeManager::instance().getObject<OrvoPluginManager>(kName);
    }
};

/// The text with which a request is refused; empty if it is not.
std::string ablehnung() {
    try {
        OrvoPluginManager::getInstanz(nullptr);
        return "";
    } catch (const std::logic_error& ausnahme) {
        return ausnahme.what();
    }
}

class EinzelinstanzFromAPlugin : public testing::TestWithParam<Bibliotheksfall> {};

} // namespace

TEST_F(EinzelinstanzTest, IsMadeOnTheFirstRequestUnderItsNameWithThatObserver) {
    heimat.beschreibe("liba.dylib");
    EXPECT_EQ(registriert(), nullptr);
    OrvoPluginManager* const manager = OrvoPluginManager::getInstanz(&zeuge);
    ASSERT_NE(manager, nullptr);
    EXPECT_EQ(registriert(), manager);
    EXPECT_THAT(ereignisse, ElementsAre("+liba.dylib"));
}

TEST_F(EinzelinstanzTest, IgnoresTheObserverOfALaterRequest) {
    heimat.beschreibe("liba.dylib");
    OrvoPluginManager* const manager = OrvoPluginManager::getInstanz(&zeuge);
    Zeilen andere;
    Zeuge spaeter(andere);
    EXPECT_EQ(OrvoPluginManager::getInstanz(&spaeter), manager);
    EXPECT_EQ(OrvoPluginManager::getInstanz(nullptr), manager);
    manager->reload();
    EXPECT_THAT(andere, IsEmpty());
    EXPECT_THAT(ereignisse, ElementsAre("+liba.dylib", "-liba.dylib", "+liba.dylib"));
    ObjectLifetimeManager::instance().destroyAll();
    EXPECT_EQ(ereignisse.back(), "-liba.dylib");
}

TEST_F(EinzelinstanzTest, IsMadeWithoutObserversForNull) {
    heimat.beschreibe("liba.dylib");
    EXPECT_THAT(plugins(*OrvoPluginManager::getInstanz(nullptr)), ElementsAre("liba.dylib"));
    EXPECT_EQ(OrvoPluginManager::getInstanz(&zeuge), registriert());
    EXPECT_THAT(ereignisse, IsEmpty());
}

TEST_F(EinzelinstanzTest, SaysInTheLogWhenItIsLookedForAndWhenItIsMade) {
    const Mitschnitt log;
    OrvoPluginManager::getInstanz(nullptr);
    const Zeilen zeilen = log.zeilen(kName);
    ASSERT_GT(zeilen.size(), 5U);
    EXPECT_THAT(Zeilen(zeilen.begin(), zeilen.begin() + 4),
                ElementsAre("> getInstanz()", "D Hole OrvoPluginManager",
                            "D PluginManger nicht gefunden. Starte Manager", "+> OrvoPluginManager()"));
    EXPECT_THAT(Zeilen(zeilen.end() - 2, zeilen.end()),
                ElementsAre("+< OrvoPluginManager()", "< getInstanz()"));

    Mitschnitt zweites;
    OrvoPluginManager::getInstanz(nullptr);
    EXPECT_THAT(zweites.zeilen(),
                ElementsAre("> getInstanz()", "D Hole OrvoPluginManager", "< getInstanz()"));
    const Mitschnitt ohneDebug(LogLevel::Info);
    OrvoPluginManager::getInstanz(nullptr);
    EXPECT_THAT(ohneDebug.zeilen(), IsEmpty());
}

TEST_F(EinzelinstanzTest, IsRefusedWhileItIsBeingMadeWithAClearText) {
    heimat.beschreibe("liba.dylib");
    std::string text;
    zeuge.beimErzeugen = [&](OrvoPlugin&) { text = ablehnung(); };
    const Mitschnitt log;
    OrvoPluginManager* const manager = OrvoPluginManager::getInstanz(&zeuge);
    EXPECT_EQ(text, "orvo.plugin.OrvoPluginManager: wird gerade gestartet und ist noch nicht verfuegbar.");
    EXPECT_EQ(log.anzahl("+> OrvoPluginManager()"), 1);
    EXPECT_EQ(registriert(), manager);
    EXPECT_EQ(ablehnung(), "") << "afterwards it is there";
    zeuge.beimErzeugen = nullptr;
}

TEST_F(EinzelinstanzTest, GivesTheStartUpCodeOfALibraryNullWhileItIsBeingMadeAndItselfLater) {
    heimat.lege(test_plugins::AsksForManagerWhenOpened, "liba.dylib");
    heimat.lege(test_plugins::AsksForRegistryWhenOpened, "libb.dylib");
    ASSERT_NE(OrvoErweiterungsManager::getInstanz(), nullptr);
    OrvoPluginManager* const manager = registriert();
    const auto antworten = [&] {
        Zeilen versionen;
        for (const OrvoPlugin* const plugin : manager->getRegistriertePlugins())
            versionen.push_back(plugin->getProduktVersion());
        return versionen;
    };
    EXPECT_THAT(antworten(), ElementsAre("null", "null"));
    manager->reload();
    EXPECT_THAT(antworten(), ElementsAre("there", "there"));
}

TEST_F(EinzelinstanzTest, GivesTheStartUpCodeNullAlsoWhenAnObserverOpensTheLibraryAgain) {
    heimat.lege(test_plugins::AsksForManagerWhenOpened, "liba.dylib");
    bool offen = false;
    zeuge.beimErzeugen = [&](OrvoPlugin& plugin) {
        plugin.notifyUse();
        offen = plugin.getSharedLib()->isLoaded();
        plugin.release();
    };
    EXPECT_NE(OrvoPluginManager::getInstanz(&zeuge), nullptr);
    EXPECT_TRUE(offen);
    zeuge.beimErzeugen = nullptr;
}

TEST_F(EinzelinstanzTest, GivesTheLastCodeOfALibraryNullWhileItIsBeingMade) {
    heimat.lege(test_plugins::AsksForManagerWhenClosed, "liba.dylib");
    heimat.lege(test_plugins::AsksForRegistryWhenClosed, "libb.dylib");
    heimat.lege(test_plugins::AsksForManagerWhenRefused, "libba.dylib");
    heimat.lege(test_plugins::ThrowsStandardExceptionFromTypes, "libc.dylib"); // and for later plugins
    ASSERT_NE(OrvoErweiterungsManager::getInstanz(), nullptr);
    EXPECT_THAT(plugins(*registriert()), ElementsAre("liba.dylib", "libb.dylib"));
    registriert()->reload();
    EXPECT_THAT(plugins(*registriert()), ElementsAre("liba.dylib", "libb.dylib"));
}

TEST_F(EinzelinstanzTest, IsAvailableToAnObserverOnceItIsMade) {
    heimat.beschreibe("liba.dylib");
    OrvoPluginManager* const manager = OrvoPluginManager::getInstanz(&zeuge);
    OrvoPluginManager* gesehen = nullptr;
    zeuge.beimErzeugen =
        zeuge.beimZerstoeren = [&](OrvoPlugin&) { gesehen = OrvoPluginManager::getInstanz(nullptr); };
    manager->reload();
    EXPECT_EQ(gesehen, manager);
    zeuge.beimZerstoeren = nullptr;
}

TEST_F(EinzelinstanzTest, IsFoundWhileItIsBeingDestroyedAndNotMadeAnewThen) {
    heimat.beschreibe("liba.dylib");
    OrvoPluginManager* const manager = OrvoPluginManager::getInstanz(&zeuge);
    OrvoPluginManager* gesehen = nullptr;
    zeuge.beimZerstoeren = [&](OrvoPlugin&) { gesehen = OrvoPluginManager::getInstanz(nullptr); };
    ObjectLifetimeManager::instance().destroyAll();
    EXPECT_EQ(gesehen, manager);
    EXPECT_EQ(registriert(), nullptr);
}

TEST_F(EinzelinstanzTest, IsNullForWhoAsksDuringTheTeardownWhenItIsGoneOrNeverWas) {
    struct Fragende {
        explicit Fragende(OrvoPluginManager*& a) : antwort(a) {}
        ~Fragende() { antwort = OrvoPluginManager::getInstanz(nullptr); }
        OrvoPluginManager*& antwort;
    };
    for (const bool gabEsEinen : {false, true}) {
        OrvoPluginManager unwichtig(nullptr);
        OrvoPluginManager* antwort = &unwichtig;
        ObjectLifetimeManager::instance().addObject("test.Fragende", new Fragende(antwort));
        if (gabEsEinen) // made later, so destroyed earlier
            OrvoPluginManager::getInstanz(nullptr);
        const Mitschnitt log;
        ObjectLifetimeManager::instance().destroyAll();
        EXPECT_EQ(antwort, nullptr);
        EXPECT_EQ(log.anzahl("D PluginManger nicht gefunden. Starte Manager"), 0);
        EXPECT_EQ(log.zeilen(kName).back(), "< getInstanz()");
    }
}

TEST_F(EinzelinstanzTest, StartsAnewAfterTheTeardown) {
    OrvoPluginManager::getInstanz(nullptr);
    ObjectLifetimeManager::instance().destroyAll();
    heimat.beschreibe("liba.dylib");
    EXPECT_THAT(plugins(*OrvoPluginManager::getInstanz(&zeuge)), ElementsAre("liba.dylib"));
    EXPECT_THAT(ereignisse, ElementsAre("+liba.dylib"));
}

TEST_F(EinzelinstanzTest, IsMadeOnTheNextRequestWhenMakingItFailed) {
    static constexpr EinzelinstanzTexte texte{"test.Einzelinstanz", "op", "suche", "start"};
    using Zahl = int;
    EXPECT_THROW(holeEinzelinstanz<Zahl>(texte, []() -> Zahl* { throw std::runtime_error("nein"); }),
                 std::runtime_error);
    const Zahl* const zahl = holeEinzelinstanz<Zahl>(texte, [] { return new Zahl(5); });
    ASSERT_NE(zahl, nullptr);
    EXPECT_EQ(*zahl, 5);
    EXPECT_EQ(holeEinzelinstanz<Zahl>(texte, [] { return new Zahl(6); }), zahl);
}

TEST_P(EinzelinstanzFromAPlugin, IsRefusedWithAClearTextWhileItIsBeingMadeAndGivenAfterwards) {
    const Heimat heimat;
    heimat.beschreibe("liba.dylib");
    heimat.lege(GetParam().bibliothek, "libb.dylib");
    heimat.beschreibe("libc.dylib");
    const Mitschnitt log;
    ASSERT_NE(OrvoErweiterungsManager::getInstanz(), nullptr);
    OrvoPluginManager* const manager = OrvoPluginManager::getInstanz(nullptr);
    EXPECT_THAT(plugins(*manager), ElementsAre("liba.dylib", "libc.dylib"));
    EXPECT_EQ(log.anzahl(markiert("Plugin nicht geladen: " + std::string(GetParam().text) +
                                  ": wird gerade gestartet und ist noch nicht verfuegbar.")),
              1);

    manager->reload();
    EXPECT_THAT(plugins(*manager), ElementsAre("liba.dylib", "libb.dylib", "libc.dylib"));
    EXPECT_EQ(log.anzahl("+> OrvoPluginManager()"), 1);
    EXPECT_EQ(log.anzahl("> OrvoErweiterungsManager::OrvoErweiterungsManager"), 1);
    EXPECT_FALSE(istEingeblendet(heimat.ort("libb.dylib")));
    EXPECT_EQ(OrvoPluginManager::getInstanz(nullptr), manager);
}

const Bibliotheksfall kFragende[] = {
    {"ManagerFromTypes", test_plugins::AsksForManagerFromTypes, kPluginManagerName},
    {"ManagerFromInitialize", test_plugins::AsksForManagerFromInitialize, kPluginManagerName},
    {"RegistryFromTypes", test_plugins::AsksForRegistryFromTypes, kErweiterungsManagerName},
    {"RegistryFromInitialize", test_plugins::AsksForRegistryFromInitialize, kErweiterungsManagerName},
};
INSTANTIATE_TEST_SUITE_P(EntryPoints, EinzelinstanzFromAPlugin, testing::ValuesIn(kFragende), nameDesFalls);

TEST_F(EinzelinstanzTest, LoadsAPluginThatLivesWithTheRefusal) {
    heimat.lege(test_plugins::AsksForManagerAndGoesOn, "liba.dylib");
    OrvoPluginManager* const manager = OrvoPluginManager::getInstanz(nullptr);
    ASSERT_EQ(manager->getRegistriertePlugins().size(), 1U);
    EXPECT_EQ(manager->getRegistriertePlugins().front()->getProduktVersion(),
              "orvo.plugin.OrvoPluginManager: wird gerade gestartet und ist noch nicht verfuegbar.");
}

TEST_F(EinzelinstanzTest, IsMadeForAPluginThatDescribesItselfElsewhere) {
    heimat.beschreibe("liba.dylib");
    const Verzeichnis anderswo;
    const std::string pfad = anderswo.kopiere(test_plugins::AsksForManagerFromInitialize, "libb.dylib");
    const std::unique_ptr<OrvoPlugin> plugin(
        OrvoPluginLoader().loadPlugin(new orvo::orvoutil::SharedLib(pfad)));
    ASSERT_NE(registriert(), nullptr);
    EXPECT_THAT(plugins(*registriert()), ElementsAre("liba.dylib"));
}

TEST_F(EinzelinstanzTest, IsMadeForTheStartUpCodeOfALibraryElsewhere) {
    heimat.beschreibe("liba.dylib");
    const Verzeichnis anderswo;
    const std::string pfad = anderswo.kopiere(test_plugins::AsksForManagerWhenOpened, "libb.dylib");
    const std::unique_ptr<OrvoPlugin> plugin(
        OrvoPluginLoader().loadPlugin(new orvo::orvoutil::SharedLib(pfad)));
    EXPECT_EQ(plugin->getProduktVersion(), "there");
    ASSERT_NE(registriert(), nullptr);
    EXPECT_THAT(plugins(*registriert()), ElementsAre("liba.dylib"));
}

TEST_F(EinzelinstanzTest, StartsFromTheRegistryWithItAsTheFirstObserver) {
    heimat.beschreibe("liba.dylib", "check 10 2009\n");
    OrvoErweiterungsManager* const registry = OrvoErweiterungsManager::getInstanz();
    ASSERT_NE(registry, nullptr);
    OrvoPluginManager* const manager = registriert();
    ASSERT_NE(manager, nullptr);
    EXPECT_EQ(OrvoPluginManager::getInstanz(&zeuge), manager);
    EXPECT_EQ(registry->getRegistrierteErweiterungen().size(), 1U);
    manager->entladePlugins();
    EXPECT_EQ(registry->getRegistrierteErweiterungen().size(), 0U);
}
