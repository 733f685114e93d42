// A whole life with failing allocations: start-up, look-up, get and release, reload, unload, each with its n-th
// allocation failing, for every n. Nothing leaks or crashes, and the next try with memory succeeds.

#include "Zaehler.h"

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/registry/HoleService.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/LogSink.h>
#include <orvoutil/Logger.h>
#include <orvoutil/ObjectLifetimeManager.h>

#include "TestPlugins.h"
#include "support/Beschriftung.h"
#include "support/Prozess.h"
#include "support/Verzeichnis.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace {

using orvo::orvoutil::Einstellungen;
using orvo::orvoutil::Logger;
using orvo::orvoutil::LogLevel;
using orvo::orvoutil::ObjectLifetimeManager;
using Griff = ServiceGriff<orvo::service::ValidierungsService>;
using Check = OrvoValidierungsServiceErweiterung;

const Unterfallart kA = 10, kB = "EinNameDerZuLangFuerDasObjektSelbstIst";

Veranlagungszeitraum jahr2009() { return {2009, "YYYY"}; }

/// Makes each entry and keeps none.
class StummeSenke : public orvo::orvoutil::LogSink {
public:
    void write(const orvo::orvoutil::LogEntry&) override {}
};

struct Umstaende {
    bool mitProtokoll; ///< everything is written to a log
    bool beschrieben;  ///< the plugins are loaded from the descriptions in their files
};

class SpeichermangelAblauf : public testing::TestWithParam<Umstaende> {
protected:
    SpeichermangelAblauf() {
        lege("liba.dylib", "produktversion 1.0\nloeschen\ncheck 10 2009\nfinanzamt\n");
        lege("libb.dylib", "loeschen\ncheck " + kB.getName() + " 2009\n");
        Einstellungen().setze("basis.home_dir", home_.pfad());
        if (GetParam().beschrieben)
            Einstellungen().setze("basis.plugin_beschreibungen", "eingebettet");
        if (GetParam().mitProtokoll) {
            Logger::setSink(std::make_shared<StummeSenke>());
            Logger::setLevel(LogLevel::Debug);
        }
        vorher_ = offeneDeskriptoren();
    }
    ~SpeichermangelAblauf() override {
        ObjectLifetimeManager::instance().destroyAll();
        Logger::setSink(nullptr);
        Einstellungen().setze("basis.home_dir", "");
        Einstellungen().setze("basis.plugin_beschreibungen", "");
        EXPECT_EQ(offeneDeskriptoren(), vorher_);
    }

    void SetUp() override {
        if (!Zaehler::zaehltLader())
            GTEST_SKIP() << "a plugin's start-up code cannot be spared here";
    }

    void lege(const std::string& name, const std::string& beschreibung) const {
        home_.schreibe("plugins/" + name + ".txt", beschreibung);
        const std::string pfad = home_.kopiere(test_plugins::DescribedByFile, "plugins/" + name);
        if (GetParam().beschrieben)
            beschrifte(pfad);
    }

    static OrvoErweiterungsManager& registry() { return *OrvoErweiterungsManager::getInstanz(); }
    static OrvoPluginManager& manager() { return *OrvoPluginManager::getInstanz(nullptr); }
    static Check* check(const Unterfallart& ua) {
        return registry().findeValidierungsServiceErweiterung(ua, jahr2009());
    }

    /// Does `tu` with memory for 0, 1, 2 … allocations, until there is enough, and `pruefe` after each.
    static void fuerJedeZuteilung(const std::function<void()>& bereiteVor, const std::function<void()>& tu,
                                  const std::function<void(bool kamAnsEnde)>& pruefe) {
        bool fehlte = true;
        for (int speicher = 0; fehlte; ++speicher) {
            SCOPED_TRACE("memory runs out at allocation " + std::to_string(speicher));
            bereiteVor();
            const bool kamAnsEnde = Zaehler::mitSpeicherFuer(speicher, tu);
            fehlte = Zaehler::fehlteSpeicher();
            pruefe(kamAnsEnde);
            if (testing::Test::HasFailure())
                return;
        }
    }

    void erwarteGeschlossen() const {
        for (const char* const name : {"plugins/liba.dylib", "plugins/libb.dylib"})
            EXPECT_FALSE(istEingeblendet(home_.pfad(name))) << name;
    }

    /// The registry holds extensions of the manager's plugins and no others, and looks them up as it lists them.
    static void erwarteStimmig() {
        const auto& plugins = manager().getRegistriertePlugins();
        for (const OrvoErweiterung* const erweiterung : registry().getRegistrierteErweiterungen())
            EXPECT_NE(std::find(plugins.begin(), plugins.end(), erweiterung->getPlugin()), plugins.end());
        const std::size_t gefundene = (check(kA) != nullptr) + (check(kB) != nullptr) +
                                      (registry().findeFADatenServiceErweiterung() != nullptr);
        EXPECT_EQ(registry().getRegistrierteErweiterungen().size(), gefundene);
    }

    void erwarteVollstaendig() const {
        ASSERT_NE(OrvoErweiterungsManager::getInstanz(), nullptr); // first, so that it hears of the plugins
        EXPECT_EQ(manager().getRegistriertePlugins().size(), 2u);
        EXPECT_EQ(registry().getRegistrierteErweiterungen().size(), 3u);
        erwarteStimmig();
        for (const Unterfallart& ua : {kA, kB}) {
            EXPECT_TRUE(Griff(check(ua)));
            EXPECT_EQ(check(ua)->getAusgegeben(), 0);
            EXPECT_EQ(check(ua)->getPlugin()->getUseCount(), 0);
        }
        erwarteGeschlossen();
    }

    const Verzeichnis home_;
    int vorher_;
};

} // namespace

TEST_P(SpeichermangelAblauf, OfTheStartLeavesNothingBehindOrARegistryThatListens) {
    fuerJedeZuteilung([] { ObjectLifetimeManager::instance().destroyAll(); },
                      [] { OrvoErweiterungsManager::getInstanz(); },
                      [&](bool kamAnsEnde) {
                          erwarteGeschlossen();
                          if (kamAnsEnde) { // perhaps without a plugin; the log then says so
                              erwarteStimmig();
                              manager().reload();
                          }
                          erwarteVollstaendig();
                      });
}

TEST_P(SpeichermangelAblauf, OfTheManagersStartLeavesNothingBehind) {
    fuerJedeZuteilung([] { ObjectLifetimeManager::instance().destroyAll(); },
                      [] { OrvoPluginManager::getInstanz(nullptr); },
                      [&](bool kamAnsEnde) {
                          erwarteGeschlossen();
                          EXPECT_EQ(ObjectLifetimeManager::instance().getObject<OrvoPluginManager>(
                                        "orvo.plugin.OrvoPluginManager") != nullptr,
                                    kamAnsEnde);
                          manager().reload();
                          EXPECT_EQ(manager().getRegistriertePlugins().size(), 2u);
                      });
}

TEST_P(SpeichermangelAblauf, OfALookUpNeverComes) {
    registry();
    Logger::setLevel(LogLevel::Info); // entries of the log need memory
    const Veranlagungszeitraum jahr = jahr2009();
    fuerJedeZuteilung([] {},
                      [&] {
                          check(kA);
                          registry().findeValidierungsServiceErweiterung(kB, jahr);
                          registry().istUnterfallartUndJahrUnterstuetzt(ORVO_CHECK_SERVICE_ERWEITERUNG, kB,
                                                                        Veranlagungszeitraum());
                      },
                      [](bool kamAnsEnde) { EXPECT_TRUE(kamAnsEnde); });
}

TEST_P(SpeichermangelAblauf, OfGettingAServiceGivesTheUseBack) {
    registry();
    fuerJedeZuteilung([] { manager().reload(); },
                      [] {
                          Check* const erweiterung = check(kB);
                          if (Service* const service = erweiterung->holeService())
                              erweiterung->release(service);
                      },
                      [&](bool kamAnsEnde) {
                          EXPECT_TRUE(kamAnsEnde) << "neither throws";
                          EXPECT_EQ(check(kB)->getAusgegeben(), 0);
                          EXPECT_TRUE(check(kB)->getInstanzen().empty());
                          // Below zero after a failed opening, which is by contract.
                          EXPECT_LE(check(kB)->getPlugin()->getUseCount(), 0);
                          erwarteGeschlossen();
                      });
}

TEST_P(SpeichermangelAblauf, OfAHandleLeavesEverythingUsable) {
    registry();
    fuerJedeZuteilung([] {},
                      [] {
                          Griff griff(check(kB));
                          const Griff zweiter(check(kB));
                          griff = Griff(check(kA));
                      },
                      [&](bool kamAnsEnde) {
                          EXPECT_TRUE(kamAnsEnde) << "a handle throws nothing";
                          erwarteVollstaendig();
                      });
}

TEST_P(SpeichermangelAblauf, OfGivingBackChangesNothing) {
    registry();
    std::optional<Griff> griff;
    Service* lose = nullptr;
    fuerJedeZuteilung(
        [&] {
            griff.emplace(check(kA));
            lose = check(kB)->holeService();
            ASSERT_NE(lose, nullptr);
        },
        [&] {
            griff.reset();
            check(kB)->release(lose);
        },
        [&](bool kamAnsEnde) {
            EXPECT_TRUE(kamAnsEnde) << "neither throws";
            erwarteVollstaendig();
        });
}

TEST_P(SpeichermangelAblauf, OfAReloadIsMendedByTheNext) {
    registry();
    fuerJedeZuteilung([] { manager().reload(); }, [] { manager().reload(); },
                      [&](bool) {
                          erwarteGeschlossen();
                          erwarteStimmig();
                          manager().reload();
                          erwarteVollstaendig();
                      });
}

TEST_P(SpeichermangelAblauf, OfAReloadWithChangesIsMendedByTheNext) {
    lege("libc.dylib", "check 99 2009\n");
    const std::string hier = home_.pfad("plugins/"), anderswo = home_.legeAn("anderswo") + "/";
    const auto tausche = [&](const std::string& neues, const std::string& altes) {
        std::filesystem::rename(anderswo + neues, hier + neues);
        std::filesystem::rename(hier + altes, anderswo + altes);
    };
    std::filesystem::rename(hier + "libc.dylib", anderswo + "libc.dylib");
    registry();
    fuerJedeZuteilung(
        [&] {
            tausche("libc.dylib", "libb.dylib");
            manager().reload();
            ASSERT_NE(check(99), nullptr);
            tausche("libb.dylib", "libc.dylib");
        },
        [] { manager().reload(); },
        [&](bool) {
            erwarteGeschlossen();
            erwarteStimmig();
            manager().reload();
            erwarteVollstaendig();
        });
}

TEST_P(SpeichermangelAblauf, OfAnUnloadKeepsNothing) {
    registry();
    fuerJedeZuteilung(
        [] {
            manager().reload();
            check(kA)->holeService(); // in use when it is unloaded
        },
        [] { manager().entladePlugins(); },
        [&](bool kamAnsEnde) {
            EXPECT_TRUE(kamAnsEnde);
            EXPECT_TRUE(manager().getRegistriertePlugins().empty());
            EXPECT_TRUE(registry().getRegistrierteErweiterungen().empty());
            erwarteGeschlossen();
        });
}

TEST_P(SpeichermangelAblauf, OfAChangeOfTheHomeIsMendedByAReload) {
    registry();
    const Verzeichnis anderes;
    anderes.legeAn("plugins");
    fuerJedeZuteilung(
        [&] {
            Einstellungen().setze("basis.home_dir", anderes.pfad());
            manager().reload();
        },
        [&] { Einstellungen().setze("basis.home_dir", home_.pfad()); },
        [&](bool) {
            erwarteGeschlossen();
            erwarteStimmig();
            Einstellungen().setze("basis.home_dir", home_.pfad()); // if memory ran out before it was set
            manager().initPluginSuchPfad();
            manager().reload();
            erwarteVollstaendig();
        });
}

INSTANTIATE_TEST_SUITE_P(, SpeichermangelAblauf,
                         testing::Values(Umstaende{false, false}, Umstaende{true, false},
                                         Umstaende{false, true}, Umstaende{true, true}),
                         [](const auto& fall) {
                             return std::string(fall.param.mitProtokoll ? "WithALog" : "WithoutALog") +
                                    (fall.param.beschrieben ? "FromDescriptions" : "");
                         });
