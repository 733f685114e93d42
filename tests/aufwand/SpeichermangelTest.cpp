// What is left after a failed allocation: each allocation fails once.

#include "Zaehler.h"

#include <orvoplugin/domain/Bedingung.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/LogSink.h>
#include <orvoutil/Logger.h>
#include <orvoutil/ObjectLifetimeManager.h>
#include <orvoutil/SharedLib.h>
#include <orvoutil/StreamLogSink.h>

#include "TestPlugins.h"
#include "orvoplugin/plugin/Attrappe.h"
#include "orvoplugin/plugin/erweiterung/Probe.h"
#include "support/Mitschnitt.h"
#include "support/Verzeichnis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace {

using orvo::orvoutil::Logger;
using Check = OrvoValidierungsServiceErweiterung;

Veranlagungszeitraum jahr(int zahl) { return {zahl, "YYYY"}; }

/// Makes each entry and keeps none.
class StummeSenke : public orvo::orvoutil::LogSink {
public:
    void write(const orvo::orvoutil::LogEntry&) override {}
};

class Speichermangel : public testing::Test {
protected:
    Speichermangel() { orvo::orvoutil::Einstellungen().setze("basis.home_dir", home_.pfad()); }
    ~Speichermangel() override { orvo::orvoutil::ObjectLifetimeManager::instance().destroyAll(); }

    const Verzeichnis home_;
};

/// A plugin without a library, with so many keys that a registry's tables grow.
class VieleSchluessel : public OrvoPluginV1 {
public:
    explicit VieleSchluessel(const std::string& version) : OrvoPluginV1(nullptr) {
        setProduktVersion(version);
        OrvoUaVzServiceErweiterung::VzMap paare;
        for (int i = 0; i < kHaelfte; ++i) {
            paare[1000 + i] = {jahr(2009)};
            paare[name(i).c_str()] = {jahr(2009)};
        }
        addErweiterung(Check(paare));
    }

    /// The number of its keys that a look-up finds.
    static std::size_t gefundeneIn(const OrvoErweiterungsManager& registry) {
        std::size_t gefundene = 0;
        for (int i = 0; i < kHaelfte; ++i) {
            gefundene += registry.findeValidierungsServiceErweiterung(1000 + i, jahr(2009)) != nullptr;
            gefundene += registry.findeValidierungsServiceErweiterung(name(i).c_str(), jahr(2009)) != nullptr;
        }
        return gefundene;
    }

private:
    static constexpr int kHaelfte = 20;
    static std::string name(int i) { return "Anmeldung der Art " + std::to_string(i); }
};

/// An extension class of the host that counts its objects.
class Gezaehlte : public OrvoFADatenServiceErweiterung {
public:
    Gezaehlte() { ++lebende; }
    Gezaehlte(const Gezaehlte& andere) : OrvoFADatenServiceErweiterung(andere) { ++lebende; }
    ~Gezaehlte() override { --lebende; }
    OrvoErweiterung* clone() const override { return new Gezaehlte(*this); }

    static inline std::size_t lebende = 0;
};

} // namespace

/// For the order "host" of the misbehaving plugin.
extern "C" __attribute__((visibility("default"))) OrvoErweiterung* hostErweiterung(const char*) {
    return new Gezaehlte;
}

TEST_F(Speichermangel, LetsNoKeyStandInTheListingThatNoLookUpFinds) {
    VieleSchluessel erstes("1.0.0"), besseres("2.0.0");
    bool gemeldet = false;
    for (int speicher = 0; !gemeldet; ++speicher) {
        OrvoErweiterungsManager registry;
        gemeldet = Zaehler::mitSpeicherFuer(speicher, [&] {
            registry.pluginErzeugt(&erstes);
            registry.pluginErzeugt(&besseres);
        });
        ASSERT_NE(gemeldet, Zaehler::fehlteSpeicher()) << "whoever announces a plugin hears of it";
        ASSERT_EQ(VieleSchluessel::gefundeneIn(registry), registry.getRegistrierteErweiterungen().size())
            << "memory ran out at allocation " << speicher;
        registry.pluginZerstoert(&erstes);
        registry.pluginZerstoert(&besseres);
        ASSERT_EQ(VieleSchluessel::gefundeneIn(registry), 0u) << speicher;
        ASSERT_TRUE(registry.getRegistrierteErweiterungen().empty()) << speicher;
    }
}

// An extension left in the registry would be used after its end.
TEST_F(Speichermangel, LeavesNothingOfAPluginThatGoes) {
    OrvoErweiterungsManager registry;
    VieleSchluessel plugin("1.0.0");
    plugin.addErweiterung(OrvoFADatenServiceErweiterung());
    registry.pluginErzeugt(&plugin);
    ASSERT_GT(VieleSchluessel::gefundeneIn(registry), 0u);
    EXPECT_TRUE(Zaehler::mitSpeicherFuer(0, [&] { registry.pluginZerstoert(&plugin); }));
    EXPECT_EQ(VieleSchluessel::gefundeneIn(registry), 0u);
    EXPECT_TRUE(registry.getRegistrierteErweiterungen().empty());
}

TEST_F(Speichermangel, UnloadsEveryPluginAlsoWhenThereIsNoMemoryToTellTheLogOfIt) {
    home_.kopiere(test_plugins::DescribedByFile, "plugins/libpruefung.dylib");
    home_.schreibe("plugins/libpruefung.dylib.txt", "check 10 2009\n");
    Logger::setSink(std::make_shared<StummeSenke>());
    const OrvoErweiterungsManager& registry = *OrvoErweiterungsManager::getInstanz();
    OrvoPluginManager& manager = *OrvoPluginManager::getInstanz(nullptr);
    for (int speicher = 0; speicher < 4; ++speicher) {
        ASSERT_EQ(manager.getRegistriertePlugins().size(), 1u);
        manager.getRegistriertePlugins().front()->notifyUse();
        EXPECT_TRUE(Zaehler::mitSpeicherFuer(speicher, [&] { manager.entladePlugins(); }));
        ASSERT_TRUE(manager.getRegistriertePlugins().empty()) << speicher;
        ASSERT_TRUE(registry.getRegistrierteErweiterungen().empty()) << speicher;
        manager.ladePlugins();
    }
    Logger::setSink(nullptr);
}

// A value that is set but untold would never reach who lives by it.
TEST_F(Speichermangel, SetsNoValueThatObserversAreNotToldOf) {
    struct Hoerer : orvo::orvoutil::AenderungsBeobachter {
        void empfangeAenderungsNachricht(const orvo::orvoutil::AenderungsNachricht&) override { ++gehoert; }
        int gehoert = 0;
    } hoerer;
    const orvo::orvoutil::Einstellungen einstellungen;
    einstellungen.beobachterAnmelden(&hoerer);
    const std::string schluessel = "probe.ein_langer_schluessel", wert = "ein Wert, der auch lang ist";
    for (int speicher = 0; hoerer.gehoert == 0 && !HasFailure(); ++speicher) {
        const bool gelungen =
            Zaehler::mitSpeicherFuer(speicher, [&] { einstellungen.setze(schluessel, wert); });
        ASSERT_NE(gelungen, Zaehler::fehlteSpeicher());
        EXPECT_EQ(hoerer.gehoert == 1, einstellungen.wert(schluessel) == wert) << speicher;
    }
    einstellungen.setze(schluessel, "");
    einstellungen.beobachterAbmelden(&hoerer);
}

TEST_F(Speichermangel, LeavesAConditionAsItWasWhenItsNewPeriodCannotBeCopied) {
    const UfaPruefungBedingung neue("LSTB", jahr(2009));
    UfaPruefungBedingung bedingung(10, jahr(2008));
    EXPECT_FALSE(Zaehler::mitSpeicherFuer(0, [&] { bedingung = neue; }));
    EXPECT_EQ(bedingung.getUnterfallart(), 10);
    EXPECT_EQ(*bedingung.getVeranlagungszeitraum(), jahr(2008));
}

TEST_F(Speichermangel, KeepsNoSymbolFromWhoAsksForIt) {
    const std::string pfad = home_.kopiere(test_plugins::DescribedByFile, "bibliothek.dylib");
    const std::string name = "orvo_plugin_get_types";
    for (const int speicher : {0, 1}) {
        orvo::orvoutil::SharedLib bibliothek(pfad);
        ASSERT_TRUE(bibliothek.load()) << bibliothek.getLastError();
        void* adresse = nullptr;
        EXPECT_TRUE(Zaehler::mitSpeicherFuer(speicher, [&] { adresse = bibliothek.getSymbol(name); }));
        EXPECT_NE(adresse, nullptr);
        EXPECT_EQ(bibliothek.getLastError(), "");
        EXPECT_EQ(bibliothek.getSymbol(name), adresse) << "as it is found once there is memory again";
    }
}

TEST_F(Speichermangel, CostsALineOfTheStreamAndNothingAfterIt) {
    struct : std::streambuf { // takes no memory itself
        char platz[4096];
        std::string_view geschriebenes() const {
            return {pbase(), static_cast<std::size_t>(pptr() - pbase())};
        }
        void leere() { setp(platz, platz + sizeof platz); }
    } puffer;
    std::ostream ausgabe(&puffer);
    Logger::setSink(std::make_shared<orvo::orvoutil::StreamLogSink>(ausgabe));
    constexpr char kWarnung[] = "eine Warnung, die in keinem Text ohne eigenen Speicher Platz hat";
    const std::string ende = std::string(" WARN  orvo.probe: ") + kWarnung + "\n";
    const auto warne = [&] {
        puffer.leere();
        Logger::getInstance("orvo.probe")->warn(kWarnung);
    };
    warne();
    bool fehlte = true;
    int verlorene = 0;
    for (int speicher = 0; fehlte; ++speicher) {
        EXPECT_TRUE(Zaehler::mitSpeicherFuer(speicher, warne)) << "nothing escapes";
        fehlte = Zaehler::fehlteSpeicher();
        verlorene += puffer.geschriebenes().empty();
        EXPECT_TRUE(puffer.geschriebenes().empty() || puffer.geschriebenes().ends_with(ende)) << speicher;
        warne();
        EXPECT_TRUE(puffer.geschriebenes().ends_with(ende)) << speicher;
    }
    EXPECT_GT(verlorene, 0);
    Logger::setSink(nullptr);
}

TEST_F(Speichermangel, UnloadsWhatTheManagerLoadedWhenItsStartFails) {
    struct Zaehlend : PluginObserver {
        void pluginErzeugt(OrvoPlugin*) override { ++geladene; }
        void pluginZerstoert(OrvoPlugin*) override { --geladene; }
        int geladene = 0;
    };
    home_.kopiere(test_plugins::DescribedByFile, "plugins/libpruefung.dylib");
    bool fehlte = true;
    for (int speicher = 0; fehlte; ++speicher) {
        Zaehlend beobachter;
        Zaehler::mitSpeicherFuer(speicher, [&] { const OrvoPluginManager manager(&beobachter); });
        fehlte = Zaehler::fehlteSpeicher();
        EXPECT_EQ(beobachter.geladene, 0) << "memory ran out at allocation " << speicher;
    }
}

TEST_F(Speichermangel, LosesNoPluginForWhichTheManagerHasNoRoom) {
    const std::string pfad = home_.kopiere(test_plugins::Misbehaves, "bibliothek.dylib");
    home_.schreibe("bibliothek.dylib.txt", "host gezaehlte\n");
    OrvoPluginManager manager(nullptr);
    bool fehlte = true;
    for (int speicher = 0; fehlte; ++speicher) {
        Zaehler::mitSpeicherFuer(speicher, [&] { manager.ladePlugin(pfad); });
        fehlte = Zaehler::fehlteSpeicher();
        ASSERT_LE(Gezaehlte::lebende, manager.getRegistriertePlugins().size()) << speicher;
        manager.entladePlugins();
    }
    EXPECT_EQ(Gezaehlte::lebende, 0u);
}

TEST_F(Speichermangel, LosesNoLibraryForWhichNoPluginIsMade) {
    Attrappe::Notizen notizen;
    bool gelungen = false;
    for (int speicher = 0; !gelungen; ++speicher) {
        auto* const bibliothek = new Attrappe(notizen);
        gelungen = Zaehler::mitSpeicherFuer(speicher, [&] { const OrvoPluginV1 plugin(bibliothek); });
        ASSERT_EQ(notizen.zerstoert, speicher + 1);
    }
}

TEST_F(Speichermangel, CountsNoExtensionThatIsNotKept) {
    OrvoPluginV1 plugin(nullptr);
    const OrvoFADatenServiceErweiterung erweiterung;
    plugin.addErweiterung(erweiterung);
    bool gelungen = false;
    for (int speicher = 0; !gelungen; ++speicher) {
        gelungen = Zaehler::mitSpeicherFuer(speicher, [&] { plugin.addErweiterung(erweiterung); });
        ASSERT_THAT(plugin.toString(),
                    testing::EndsWith(": " + std::to_string(plugin.listeErweiterungen().size()) + "\n"))
            << speicher;
    }
    EXPECT_EQ(plugin.listeErweiterungen().size(), 2u);
}

TEST_F(Speichermangel, NamesNoSubcaseTypeWithoutItsPeriods) {
    const Unterfallart neue = "ein Name, der zu lang ist";
    const std::list<Veranlagungszeitraum> jahre{jahr(2010)};
    bool gelungen = false;
    for (int speicher = 0; !gelungen; ++speicher) {
        Check erweiterung(Unterfallart(10), jahr(2009));
        gelungen = Zaehler::mitSpeicherFuer(speicher,
                                            [&] { erweiterung.addUnterstuetzteUnterfallArt(neue, jahre); });
        for (const Unterfallart& ua : erweiterung.getUnterfallArten())
            ASSERT_NE(erweiterung.getVeranlagungszeitraeumeFuerUnterfallArt(ua), nullptr) << speicher;
    }
}

/// A service extension with a log, and fakes that need no memory.
class SpeichermangelBeimService : public Probe {
protected:
    SpeichermangelBeimService() {
        dienstleister.setPlugin(&plugin);
        ablauf.reserve(1000);
    }

    /// Requests `naechster` with memory for so many allocations.
    Service* holeMitSpeicherFuer(int speicher) {
        Service* service = nullptr;
        EXPECT_TRUE(Zaehler::mitSpeicherFuer(speicher, [&] { service = dienstleister.holeService(); }));
        return service;
    }

    const Mitschnitt log{orvo::orvoutil::LogLevel::Info};
    Erweiterungsprobe dienstleister;
    const Ablauf keinSpeicher{"E Nicht genug Speicher. Kein Service."};
};

TEST_F(SpeichermangelBeimService, IsLoggedAndGivesNone) {
    Dienst dienst;
    naechster = &dienst;
    EXPECT_EQ(holeMitSpeicherFuer(0), nullptr);
    EXPECT_EQ(log.meldungen(), keinSpeicher);
    EXPECT_EQ(seither(), Ablauf());
    EXPECT_EQ(dienstleister.holeService(), &dienst);
}

TEST_F(SpeichermangelBeimService, LeavesTheEarlierUseOfTheSameObjectAsItWas) {
    Dienst dienst;
    naechster = &dienst;
    EXPECT_EQ(holeMitSpeicherFuer(1), &dienst) << "its entry is all that it needs";
    EXPECT_EQ(holeMitSpeicherFuer(1), nullptr);
    EXPECT_EQ(log.meldungen(), keinSpeicher);
    EXPECT_EQ(dienstleister.getAusgegeben(), 1);
    EXPECT_EQ(dienstleister.getInstanzen().at(&dienst), 1);
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_EQ(dienstleister.holeService(), &dienst);
    EXPECT_EQ(dienstleister.getInstanzen().at(&dienst), 2);
}

TEST_F(SpeichermangelBeimService, DoesNotMatterWhenAnObjectThatIsOutTwiceComesBack) {
    dienstleister.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    for (Service* const dienst : {new Dienst, new Dienst, new Dienst}) {
        naechster = dienst;
        dienstleister.holeService();
        dienstleister.holeService();
        for (int i = 0; i < 2; ++i)
            EXPECT_TRUE(Zaehler::mitSpeicherFuer(0, [&] { dienstleister.release(dienst); }));
    }
    EXPECT_EQ(std::count(ablauf.begin(), ablauf.end(), "delete"), 3);
    EXPECT_EQ(dienstleister.getAusgegeben(), 0);
}

TEST_F(SpeichermangelBeimService, DoesNotMatterWhenSeveralObjectsThatAreOutTwiceComeBack) {
    dienstleister.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    Service* const dienste[] = {new Dienst, new Dienst, new Dienst};
    for (Service* const dienst : dienste) {
        naechster = dienst;
        dienstleister.holeService();
        dienstleister.holeService();
    }
    for (int i = 0; i < 2; ++i)
        for (Service* const dienst : dienste)
            EXPECT_TRUE(Zaehler::mitSpeicherFuer(0, [&] { dienstleister.release(dienst); }));
    EXPECT_EQ(std::count(ablauf.begin(), ablauf.end(), "delete"), 3);
    EXPECT_EQ(dienstleister.getAusgegeben(), 0);
}
