// Faults in use: factories, hooks, services given back wrongly, files that change on disk.
//
// Keeping a service past a reload is the caller's fault, which the library cannot repair: the code has left the
// process. These tests show that the reload itself works.

#include "faults/Stoerfall.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoplugin/service/PruefErgebnis.h>
#include <orvoplugin/service/SteuerfallListe.h>
#include <orvoutil/Einstellungen.h>

#include "TestPlugins.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <utility>

using orvo::service::ValidierungsService;

namespace {

class NutzungStoerfall : public Stoerfall {
protected:
    /// Starts with a bad plugin that loads well; `erweiterung` is its check service's.
    void starteMit(const char* vorlage, const std::string& beschreibung) {
        legeSchlechtes(vorlage, beschreibung);
        ASSERT_TRUE(starte());
        erweiterung = finde(kDazwischen);
        ASSERT_NE(erweiterung, nullptr);
        log.leere();
    }

    void starteMitFactory(const std::string& name) {
        starteMit(test_plugins::DescribedByFile, "produktversion 1.0\nfactory " + name + "\ncheck 50 2009\n");
    }

    /// There is no service, for that reason, and nothing is left of the attempt.
    void erwarteKeinenService(const Zeilen& erwarteteWarnungen) {
        for (int versuch = 0; versuch < 2; ++versuch) {
            log.leere();
            EXPECT_EQ(erweiterung->holeService(), nullptr);
            EXPECT_EQ(warnungen(), erwarteteWarnungen);
            EXPECT_EQ(geladenes(schlechtes)->getUseCount(), 0);
            EXPECT_EQ(erweiterung->getAusgegeben(), 0);
            erwarteSpurlos();
        }
        erwarteHeileBrauchbar();
    }

    /// Gives an order from inside an operation of the service. Returns: what the log warns of.
    Zeilen warnungenWaehrendEinesRufs(ValidierungsService& service, const std::function<void()>& auftrag);

    OrvoValidierungsServiceErweiterung* erweiterung = nullptr;

    static constexpr char kLaeuft[] = "W Plugins werden gerade geladen, entladen oder gerufen. ";
};

/// Gives an order from inside a service's operation: a service reads its list.
class Auftrag : public orvo::data::SteuerfallListe {
public:
    explicit Auftrag(std::function<void()> auftrag) : auftrag_(std::move(auftrag)) {}
    std::size_t getAnzahl() const override {
        auftrag_();
        return 1;
    }
    const std::string& getDatensatz(std::size_t) const override { return satz_; }

private:
    std::function<void()> auftrag_;
    std::string satz_ = "Datensatz";
};

Stoerfall::Zeilen NutzungStoerfall::warnungenWaehrendEinesRufs(ValidierungsService& service,
                                                               const std::function<void()>& auftrag) {
    log.leere();
    PruefErgebnis ergebnis;
    EXPECT_EQ(service.pruefe(Auftrag([&, erster = std::make_shared<bool>(true)] {
                                 if (std::exchange(*erster, false))
                                     auftrag();
                             }),
                             Unterfallart(kDazwischen), Veranlagungszeitraum(2009, "YYYY"), ergebnis),
              0);
    EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libmmm.dylib", "libzzz.dylib"}));
    return warnungen();
}

} // namespace

TEST_F(NutzungStoerfall, AMissingFactoryGivesNoService) {
    starteMitFactory("gibtEsNicht");
    erwarteKeinenService({"E Konnte Funktion: gibtEsNicht in Plugin " + schlechtes + " nicht finden."});
}

TEST_F(NutzungStoerfall, AFactoryThatReturnsNullGivesNoService) {
    starteMitFactory("keinService");
    erwarteKeinenService({});
}

TEST_F(NutzungStoerfall, AFactoryOfAnotherInterfaceGivesNoServiceAndKeepsThePluginInUse) {
    starteMitFactory("falscherService");
    EXPECT_EQ(erweiterung->holeService(), nullptr);
    EXPECT_EQ(warnungen(), Zeilen{});
    EXPECT_EQ(erweiterung->getAusgegeben(), 1);
    ASSERT_EQ(erweiterung->getInstanzen().size(), 1u);
    Service* const verborgener = erweiterung->getInstanzen().begin()->first;
    erwarteHeileBrauchbar();

    // The base's operations still reach it.
    erweiterung->setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    erweiterung->release(verborgener);
    EXPECT_EQ(erweiterung->getAusgegeben(), 0);
    erwarteSpurlos();
}

TEST_F(NutzungStoerfall, TheSameObjectTwiceIsCountedTwice) {
    starteMitFactory("gleicherService");
    ValidierungsService* const erster = erweiterung->holeService();
    ValidierungsService* const zweiter = erweiterung->holeService();
    ASSERT_NE(erster, nullptr);
    EXPECT_EQ(erster, zweiter);
    EXPECT_EQ(geladenes(schlechtes)->getUseCount(), 2);
    erwarteHeileBrauchbar();

    erweiterung->release(erster);
    EXPECT_TRUE(istEingeblendet(schlechtes));
    erweiterung->release(zweiter);
    EXPECT_EQ(warnungen(), Zeilen{});
    erwarteSpurlos();
}

TEST_F(NutzungStoerfall, AReleaseTooMuchIsIgnored) {
    starteMitFactory("gleicherService");
    ValidierungsService* const service = erweiterung->holeService();
    erweiterung->release(service);
    erweiterung->release(service);
    EXPECT_EQ(warnungen(), Zeilen{"W Unbekannte Serviceinstanz. Ignoriere sie."});
    EXPECT_EQ(geladenes(schlechtes)->getUseCount(), 0);
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

TEST_F(NutzungStoerfall, AReleaseOfNullIsIgnored) {
    starteMitFactory("gleicherService");
    erweiterung->release(nullptr);
    EXPECT_EQ(warnungen(), Zeilen{"W Unbekannte Serviceinstanz. Ignoriere sie."});
    EXPECT_EQ(geladenes(schlechtes)->getUseCount(), 0);
    erwarteHeileBrauchbar();
}

TEST_F(NutzungStoerfall, AReleaseOfAnotherPluginsServiceIsIgnored) {
    starteMitFactory("gleicherService");
    ValidierungsService* const eigener = erweiterung->holeService();
    ValidierungsService* const fremder = finde(kVorher)->holeService();
    ASSERT_NE(fremder, nullptr);
    erweiterung->release(fremder);
    EXPECT_EQ(warnungen(), Zeilen{"W Unbekannte Serviceinstanz. Ignoriere sie."});
    EXPECT_EQ(geladenes(schlechtes)->getUseCount(), 1);
    EXPECT_EQ(geladenes(vorher)->getUseCount(), 1);

    finde(kVorher)->release(fremder);
    erweiterung->release(eigener);
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

TEST_F(NutzungStoerfall, AReleaseTooMuchOfThePluginItselfOpensNothing) {
    starteMitFactory("gleicherService");
    OrvoPlugin* const plugin = geladenes(schlechtes);
    plugin->release();
    EXPECT_EQ(plugin->getUseCount(), -1);
    EXPECT_EQ(erweiterung->holeService(), nullptr); // raises the count only to 0, so nothing is opened
    EXPECT_EQ(warnungen(),
              Zeilen{"E Konnte Funktion: gleicherService in Plugin " + schlechtes + " nicht finden."});
    EXPECT_EQ(plugin->getUseCount(), -1);
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

TEST_F(NutzungStoerfall, AServiceThatIsOutDoesNotHinderAReload) {
    starteMitFactory("gleicherService");
    ASSERT_NE(erweiterung->holeService(), nullptr); // not to be touched after the reload
    EXPECT_TRUE(ladeNeu());
    erwarteSpurlos();
    erwarteHeileBrauchbar();
    EXPECT_EQ(geladenes(schlechtes)->getUseCount(), 0);
    EXPECT_EQ(finde(kDazwischen)->getAusgegeben(), 0);
}

TEST_F(NutzungStoerfall, OrdersFromInsideAServicesOperationUnloadNothing) {
    starteMitFactory("gleicherService");
    ValidierungsService* const service = erweiterung->holeService();
    ASSERT_NE(service, nullptr);
    const auto waehrendEinesRufs = [&](const std::function<void()>& auftrag) {
        return warnungenWaehrendEinesRufs(*service, auftrag);
    };
    const std::string laeuft = kLaeuft;
    EXPECT_EQ(waehrendEinesRufs([&] { manager->reload(); }), Zeilen{laeuft + "Abgelehnt: reload()"});
    EXPECT_EQ(waehrendEinesRufs([&] { manager->entladePlugins(); }),
              Zeilen{laeuft + "Abgelehnt: entladePlugins()"});
    const orvo::orvoutil::Einstellungen einstellungen;
    EXPECT_EQ(waehrendEinesRufs([&] { einstellungen.setze("basis.home_dir", home.pfad("nirgends")); }),
              Zeilen{laeuft + "Aufgeschoben: basis.home_dir"});
    EXPECT_EQ(waehrendEinesRufs([&] {
                  manager->setPluginSuchPfad(home.pfad("nirgends"));
                  manager->ladePlugins();
              }),
              Zeilen{})
        << "loading unloads nothing either, and is no order to unload";
    erwarteHeileBrauchbar();
    erweiterung->release(service);
    erwarteSpurlos();

    EXPECT_TRUE(manager->ladePlugins()); // carries the change out
    EXPECT_EQ(geladene(), Zeilen{});
    einstellungen.setze("basis.home_dir", home.pfad());
    erwarteHeileBrauchbar();
}

TEST_F(NutzungStoerfall, OrdersFromInsideAServiceOfTheFirstPluginUnloadNothing) {
    starteMitFactory("gleicherService");
    ValidierungsService* const service = finde(kVorher)->holeService();
    ASSERT_NE(service, nullptr);
    EXPECT_EQ(warnungenWaehrendEinesRufs(*service, [&] { manager->reload(); }),
              Zeilen{std::string(kLaeuft) + "Abgelehnt: reload()"});
    finde(kVorher)->release(service);
}

TEST_F(NutzungStoerfall, OrdersFromInsideAResidentPluginUnloadNothingAlsoAfterItsLastUse) {
    starteMit(test_plugins::DescribedByFile, "resident\nfactory gleicherService\ncheck 50 2009\n");
    ValidierungsService* const service = erweiterung->holeService(); // lives as long as the library is open
    ASSERT_NE(service, nullptr);
    erweiterung->release(service);
    EXPECT_EQ(geladenes(schlechtes)->getUseCount(), 0);
    EXPECT_EQ(warnungenWaehrendEinesRufs(*service, [&] { manager->reload(); }),
              Zeilen{std::string(kLaeuft) + "Abgelehnt: reload()"});
}

TEST_F(NutzungStoerfall, AMissingOnLoadFunctionIsAWarning) {
    starteMit(test_plugins::DescribedByFile,
              "produktversion 1.0\nonload gibtEsNicht\nloeschen\ncheck 50 2009\n");
    erwarteBrauchbar(kDazwischen, schlechtes);
    EXPECT_EQ(warnungen(), Zeilen{"W Konnte Onload Funktion in Plugin nicht laden"});
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

TEST_F(NutzungStoerfall, AMissingOnUnloadFunctionIsAWarning) {
    starteMit(test_plugins::DescribedByFile,
              "produktversion 1.0\nonunload gibtEsNicht\nloeschen\ncheck 50 2009\n");
    erwarteBrauchbar(kDazwischen, schlechtes);
    EXPECT_EQ(warnungen(), Zeilen{"W Konnte OnUnload Funktion in Plugin nicht laden"});
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

TEST_F(NutzungStoerfall, ALibraryDeletedAfterLoadingGivesNoServiceAndLeavesItsCountBelowZero) {
    starteMitFactory("gleicherService");
    std::filesystem::remove(schlechtes);
    EXPECT_EQ(erweiterung->holeService(), nullptr);
    ASSERT_EQ(warnungen().size(), 2u);
    EXPECT_TRUE(warnungen()[0].starts_with("E Konnte Plugin nicht laden: " + schlechtes + ": "));
    EXPECT_EQ(warnungen()[1],
              "E Konnte Funktion: gleicherService in Plugin " + schlechtes + " nicht finden.");
    EXPECT_EQ(geladenes(schlechtes)->getUseCount(), -1);
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

TEST_F(NutzungStoerfall, ALibraryDeletedWhileInUseServesOnAndLeavesWithItsLastUse) {
    starteMitFactory("gleicherService");
    ValidierungsService* const service = erweiterung->holeService();
    ASSERT_NE(service, nullptr);
    std::filesystem::remove(schlechtes);
    EXPECT_EQ(erweiterung->holeService(), service);
    erweiterung->release(service);
    erweiterung->release(service);
    EXPECT_EQ(warnungen(), Zeilen{});
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

TEST_F(NutzungStoerfall, ALibraryDeletedAndReplacedByAnotherPluginGivesThatOnesServices) {
    starteMitFactory("gleicherService");
    std::filesystem::remove(schlechtes);
    legeSchlechtes(test_plugins::DescribedByFile); // a new file, of the same code
    ValidierungsService* const service = erweiterung->holeService();
    ASSERT_NE(service, nullptr);
    erweiterung->release(service);
    EXPECT_EQ(warnungen(), Zeilen{});
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

TEST_F(NutzungStoerfall, ALibraryReplacedByOneThatIsNoPluginGivesNoService) {
    starteMitFactory("gleicherService");
    std::filesystem::remove(schlechtes);
    legeSchlechtes(test_plugins::WithoutEntryPoints);
    erwarteKeinenService({"E Konnte Funktion: gleicherService in Plugin " + schlechtes + " nicht finden."});
}

TEST_F(NutzungStoerfall, ALibraryDeletedBeforeAReloadIsGone) {
    starteMitFactory("gleicherService");
    std::filesystem::remove(schlechtes);
    EXPECT_TRUE(ladeNeu());
    EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libzzz.dylib"}));
    EXPECT_EQ(finde(kDazwischen), nullptr);
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

namespace {

struct Ausnahme {
    const char* art;
    const char* grund;
};

void PrintTo(const Ausnahme& ausnahme, std::ostream* out) { *out << ausnahme.art; }

class NutzungAusnahme : public NutzungStoerfall, public testing::WithParamInterface<Ausnahme> {
protected:
    void starteMitAusnahmeAus(const std::string& ort) {
        starteMit(test_plugins::Misbehaves, "check 50\nwirft " + ort + " " + GetParam().art);
    }
};

const Ausnahme kAusnahmen[] = {
    {"standard", "Standardausnahme aus dem Plugin"},
    {"eigeneStandard", "Ausnahme einer Klasse des Plugins, mit einem Text von einiger L\xE4nge"},
    {"eigene", "unbekannte Ausnahme"},
    {"int", "unbekannte Ausnahme"},
    {"ohneText", ""},
};

} // namespace

TEST_P(NutzungAusnahme, FromAFactoryGivesNoService) {
    starteMitAusnahmeAus("service");
    erwarteKeinenService({"E Ausnahme in Funktion: orvo_plugin_get_check_service in Plugin " + schlechtes +
                          ": " + GetParam().grund});
}

TEST_P(NutzungAusnahme, FromOnLoadIsAWarning) {
    starteMitAusnahmeAus("onload");
    erwarteBrauchbar(kDazwischen, schlechtes);
    EXPECT_EQ(warnungen(), Zeilen{std::string("W Ausnahme in Onload Funktion: ") + GetParam().grund});
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

TEST_P(NutzungAusnahme, FromOnUnloadIsAWarning) {
    starteMitAusnahmeAus("onunload");
    erwarteBrauchbar(kDazwischen, schlechtes);
    EXPECT_EQ(warnungen(), Zeilen{std::string("W Ausnahme in OnUnload Funktion: ") + GetParam().grund});
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

INSTANTIATE_TEST_SUITE_P(AnException, NutzungAusnahme, testing::ValuesIn(kAusnahmen),
                         [](const auto& fall) { return std::string(fall.param.art); });
