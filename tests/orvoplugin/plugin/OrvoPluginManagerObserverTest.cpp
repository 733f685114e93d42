// What observers may do while the manager tells them of plugins, and the results.

#include <orvoplugin/plugin/OrvoPluginManager.h>

#include "orvoplugin/plugin/Werkstatt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

using orvo::orvoutil::Einstellungen;
using orvo::orvoutil::LogLevel;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::string abgelehnt(const std::string& auftrag) {
    return "W Plugins werden gerade geladen, entladen oder gerufen. Abgelehnt: " + auftrag;
}

/// A manager with the plugins liba.dylib and libb.dylib, loaded before there are observers, and observers for it.
struct OrvoPluginManagerObserver : testing::Test {
    Heimat heimat;
    Mitschnitt log{LogLevel::Info};
    Zeilen ereignisse;
    Zeuge erster{ereignisse, "1"};
    Zeuge zweiter{ereignisse, "2"};
    Zeuge dritter{ereignisse, "3"};
    std::unique_ptr<OrvoPluginManager> manager;

    void SetUp() override {
        heimat.beschreibe("liba.dylib");
        heimat.beschreibe("libb.dylib");
        manager = std::make_unique<OrvoPluginManager>(nullptr);
        log.leere();
    }

    void meldeAn(std::initializer_list<PluginObserver*> beobachter) {
        for (PluginObserver* const b : beobachter)
            manager->addObserver(b);
    }
    void melde() { manager->notifyLoad(manager->getRegistriertePlugins().front()); }
    /// Loads liba.dylib once more.
    bool lade() { return manager->ladePlugin(heimat.ort("liba.dylib")); }
};

} // namespace

TEST_F(OrvoPluginManagerObserver, IsToldInTheOrderOfRegistration) {
    meldeAn({&zweiter, &erster});
    melde();
    manager->notifyUnload(manager->getRegistriertePlugins().back());
    EXPECT_THAT(ereignisse, ElementsAre("2+liba.dylib", "1+liba.dylib", "2-libb.dylib", "1-libb.dylib"));
}

TEST_F(OrvoPluginManagerObserver, IsToldTwiceWhenRegisteredTwiceAndOnceWhenThenTakenOutOnce) {
    meldeAn({&erster, &zweiter, &erster});
    melde();
    EXPECT_THAT(ereignisse, ElementsAre("1+liba.dylib", "2+liba.dylib", "1+liba.dylib"));
    ereignisse.clear();
    manager->removeObserver(&erster); // removes the first entry
    melde();
    EXPECT_THAT(ereignisse, ElementsAre("2+liba.dylib", "1+liba.dylib"));
}

TEST_F(OrvoPluginManagerObserver, MayBeNullOrUnknownToNoEffect) {
    meldeAn({nullptr, &erster, nullptr});
    manager->removeObserver(nullptr);
    manager->removeObserver(&zweiter);
    melde();
    EXPECT_THAT(ereignisse, ElementsAre("1+liba.dylib"));
    manager->removeObserver(&erster);
    manager->removeObserver(&erster);
    melde();
    EXPECT_EQ(ereignisse.size(), 1U);
}

TEST_F(OrvoPluginManagerObserver, MayRemoveItselfWhileItIsTold) {
    erster.beimErzeugen = [&](OrvoPlugin&) { manager->removeObserver(&erster); };
    meldeAn({&erster, &zweiter});
    melde();
    melde();
    EXPECT_THAT(ereignisse, ElementsAre("1+liba.dylib", "2+liba.dylib", "2+liba.dylib"));
}

TEST_F(OrvoPluginManagerObserver, MayRemoveOthersWhileItIsTold) {
    zweiter.beimErzeugen = [&](OrvoPlugin&) {
        manager->removeObserver(&erster);
        manager->removeObserver(&dritter);
    };
    meldeAn({&erster, &zweiter, &dritter});
    melde();
    EXPECT_THAT(ereignisse, ElementsAre("1+liba.dylib", "2+liba.dylib")) << "one taken out is told no more";
    melde();
    EXPECT_EQ(ereignisse.back(), "2+liba.dylib");
    EXPECT_EQ(ereignisse.size(), 3U);
}

TEST_F(OrvoPluginManagerObserver, HearsOfTheNextPluginWhenAddedWhileAnotherIsTold) {
    erster.beimErzeugen = [&](OrvoPlugin&) {
        if (ereignisse.size() == 1)
            manager->addObserver(&zweiter);
    };
    meldeAn({&erster});
    melde();
    EXPECT_THAT(ereignisse, ElementsAre("1+liba.dylib"));
    melde();
    EXPECT_THAT(ereignisse, ElementsAre("1+liba.dylib", "1+liba.dylib", "2+liba.dylib"));
}

TEST_F(OrvoPluginManagerObserver, CostsTheOthersNothingWhenItThrows) {
    erster.beimErzeugen = [](OrvoPlugin&) {
        throw std::runtime_error("will nicht \xFC"
                                 "berrascht werden");
    };
    zweiter.beimErzeugen = [](OrvoPlugin&) { throw 42; };
    meldeAn({&erster, &zweiter, &dritter});

    EXPECT_FALSE(lade());
    EXPECT_THAT(ereignisse, ElementsAre("1+liba.dylib", "2+liba.dylib", "3+liba.dylib"));
    EXPECT_EQ(log.zeilen().back(), markiert("Plugin nicht geladen: will nicht \xFC"
                                            "berrascht werden"))
        << "the first of the two";
    EXPECT_EQ(log.anzahl(markiert("Plugin erfolgreich geladen")), 0);
}

TEST_F(OrvoPluginManagerObserver, LeavesThePluginInTheListWhenItThrowsToBeUnloadedWithTheRest) {
    erster.beimErzeugen = [](OrvoPlugin&) { throw 42; };
    meldeAn({&erster});
    EXPECT_FALSE(lade());
    EXPECT_EQ(log.zeilen().back(), markiert("Plugin nicht geladen: unbekannte Ausnahme"));
    EXPECT_THAT(plugins(*manager), ElementsAre("liba.dylib", "libb.dylib", "liba.dylib"));
    ereignisse.clear();
    manager->entladePlugins();
    EXPECT_THAT(ereignisse, ElementsAre("1-liba.dylib", "1-libb.dylib", "1-liba.dylib"));
}

TEST_F(OrvoPluginManagerObserver, DoesNotKeepPluginsFromGoingWhenItThrows) {
    erster.beimZerstoeren = [](OrvoPlugin& plugin) {
        if (dateiname(plugin) == "liba.dylib")
            throw std::runtime_error("bleib");
        throw 42;
    };
    meldeAn({&erster, &zweiter});
    EXPECT_TRUE(manager->entladePlugins());
    EXPECT_THAT(ereignisse, ElementsAre("1-liba.dylib", "2-liba.dylib", "1-libb.dylib", "2-libb.dylib"));
    EXPECT_THAT(log.zeilen(), ElementsAre("E Ausnahme beim Abmelden eines Plugins: bleib",
                                          "E Ausnahme beim Abmelden eines Plugins: unbekannte Ausnahme"));
    EXPECT_TRUE(manager->getRegistriertePlugins().empty());
}

TEST_F(OrvoPluginManagerObserver, GetsItsFirstExceptionBackFromADirectNotification) {
    erster.beimErzeugen = [](OrvoPlugin&) { throw std::runtime_error("erste"); };
    zweiter.beimErzeugen = [](OrvoPlugin&) { throw std::logic_error("zweite"); };
    meldeAn({&erster, &zweiter});
    EXPECT_THROW(melde(), std::runtime_error);
    EXPECT_EQ(ereignisse.size(), 2U);
}

TEST_F(OrvoPluginManagerObserver, IsRefusedEveryRunWhileItIsTold) {
    std::vector<bool> ergebnisse;
    erster.beimErzeugen = erster.beimZerstoeren = [&](OrvoPlugin&) {
        manager->reload();
        ergebnisse = {manager->entladePlugins(), manager->ladePlugins(),
                      manager->ladePluginsRekursiv(heimat.ort())};
    };
    meldeAn({&erster});

    const Zeilen warnungen{abgelehnt("reload()"), abgelehnt("entladePlugins()"), abgelehnt("ladePlugins()"),
                           abgelehnt("ladePluginsRekursiv()")};
    melde();
    EXPECT_EQ(log.zeilen(), warnungen);
    EXPECT_EQ(ergebnisse, (std::vector<bool>{true, false, false}));
    EXPECT_THAT(plugins(*manager), ElementsAre("liba.dylib", "libb.dylib"));

    log.leere();
    manager->notifyUnload(manager->getRegistriertePlugins().front());
    EXPECT_EQ(log.zeilen(), warnungen);

    log.leere();
    EXPECT_TRUE(lade());
    EXPECT_EQ(log.anzahl(abgelehnt("reload()")), 1);
    EXPECT_THAT(plugins(*manager), ElementsAre("liba.dylib", "libb.dylib", "liba.dylib"));

    log.leere();
    ereignisse.clear();
    manager->entladePlugins();
    EXPECT_EQ(log.anzahl(abgelehnt("reload()")), 3);
    EXPECT_THAT(ereignisse, ElementsAre("1-liba.dylib", "1-libb.dylib", "1-liba.dylib"));
    erster.beimErzeugen = erster.beimZerstoeren = nullptr;
    log.leere();
    manager->reload();
    EXPECT_EQ(log.anzahl(abgelehnt("reload()")), 0) << "afterwards orders are taken again";
    EXPECT_THAT(plugins(*manager), ElementsAre("liba.dylib", "libb.dylib"));
}

TEST_F(OrvoPluginManagerObserver, IsRefusedEveryRunOfAnotherManagerThatUnloads) {
    OrvoPluginManager anderer(nullptr);
    const OrvoPlugin* const plugin = anderer.getRegistriertePlugins().front();
    erster.beimErzeugen = [&](OrvoPlugin&) {
        anderer.reload();
        anderer.entladePlugins();
    };
    meldeAn({&erster});
    log.leere();
    melde();
    EXPECT_THAT(log.zeilen(), ElementsAre(abgelehnt("reload()"), abgelehnt("entladePlugins()")));
    EXPECT_THAT(plugins(anderer), ElementsAre("liba.dylib", "libb.dylib"));
    EXPECT_EQ(anderer.getRegistriertePlugins().front(), plugin);
}

TEST_F(OrvoPluginManagerObserver, LoadsNothingWhileAPluginGoes) {
    erster.beimZerstoeren = [&](OrvoPlugin&) {
        EXPECT_FALSE(manager->ladePlugin(heimat.ort("libb.dylib"))) << "it would be unloaded at once";
    };
    meldeAn({&erster});
    manager->entladePlugins();
    EXPECT_TRUE(manager->getRegistriertePlugins().empty());
    EXPECT_EQ(log.anzahl(abgelehnt("ladePlugin()")), 2);
    erster.beimZerstoeren = nullptr;
}

TEST_F(OrvoPluginManagerObserver,
       HasAHomeThatItChangesFollowedAtTheManagersNextCallAfterADirectNotification) {
    erster.beimErzeugen = [&](OrvoPlugin&) { Einstellungen().setze("basis.home_dir", heimat.ort()); };
    meldeAn({&erster});
    melde();
    EXPECT_EQ(
        log.anzahl("W Plugins werden gerade geladen, entladen oder gerufen. Aufgeschoben: basis.home_dir"),
        1);
    EXPECT_THAT(plugins(*manager), ElementsAre("liba.dylib", "libb.dylib"));
    manager->ladePlugins();
    EXPECT_EQ(manager->getPluginSuchPfad(), heimat.ort("plugins"));
    EXPECT_TRUE(manager->getRegistriertePlugins().empty());
}

TEST_F(OrvoPluginManagerObserver, MayGiveOrdersAgainAfterOneThrew) {
    erster.beimErzeugen = [](OrvoPlugin&) { throw 42; };
    meldeAn({&erster});
    lade();
    EXPECT_THROW(melde(), int);
    log.leere();
    manager->entladePlugins();
    EXPECT_THAT(log.zeilen(), IsEmpty());
    EXPECT_TRUE(manager->getRegistriertePlugins().empty());
}

TEST_F(OrvoPluginManagerObserver, DoesNotLeadARunningSearchAstrayByMovingTheSearchPath) {
    erster.beimErzeugen = [&](OrvoPlugin&) { manager->setPluginSuchPfad("/nirgends"); };
    meldeAn({&erster});
    heimat.lege(test_plugins::DescribedByFile, "s/libc.dylib");
    manager->entladePlugins();
    EXPECT_TRUE(manager->ladePlugins());
    EXPECT_THAT(plugins(*manager), ElementsAre("liba.dylib", "libb.dylib", "libc.dylib"));
    EXPECT_EQ(manager->getPluginSuchPfad(), "/nirgends");
}

TEST_F(OrvoPluginManagerObserver, DoesNotLeadASearchOfTheManagersOwnPathAstrayEither) {
    erster.beimErzeugen = [&](OrvoPlugin&) { manager->setPluginSuchPfad("/nirgends"); };
    meldeAn({&erster});
    manager->entladePlugins();
    EXPECT_TRUE(manager->ladePluginsRekursiv(manager->getPluginSuchPfad()));
    EXPECT_THAT(plugins(*manager), ElementsAre("liba.dylib", "libb.dylib"));
}

TEST_F(OrvoPluginManagerObserver, SeesThePluginAtTheEndOfTheListWhenItIsCreated) {
    OrvoPlugin* gemeldet = nullptr;
    OrvoPlugin* letztes = nullptr;
    erster.beimErzeugen = [&](OrvoPlugin& plugin) {
        gemeldet = &plugin;
        letztes = manager->getRegistriertePlugins().back();
    };
    meldeAn({&erster});
    lade();
    EXPECT_NE(gemeldet, nullptr);
    EXPECT_EQ(gemeldet, letztes);
    EXPECT_EQ(log.zeilen().back(), markiert("Plugin erfolgreich geladen")) << "said after the observers know";
}

TEST_F(OrvoPluginManagerObserver, MayUseAPluginAsSoonAsItIsTold) {
    erster.beimErzeugen = [&](OrvoPlugin& plugin) {
        plugin.notifyUse();
        EXPECT_TRUE(istEingeblendet(heimat.ort("liba.dylib")));
        plugin.release();
    };
    meldeAn({&erster});
    EXPECT_TRUE(lade());
    EXPECT_FALSE(istEingeblendet(heimat.ort("liba.dylib")));
}
