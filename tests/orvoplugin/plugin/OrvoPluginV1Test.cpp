#include <orvoplugin/plugin/OrvoPluginV1.h>

#include <orvoplugin/plugin/PluginInitException.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

#include "orvoplugin/plugin/Attrappe.h"
#include "support/DeutscheZahlen.h"
#include "support/Mitschnitt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Zeilen = std::vector<std::string>;
using Art = PluginInitException::orvo_plugin_init_exception_t;

const Veranlagungszeitraum kJahr(2009, "YYYY");

OrvoValidierungsServiceErweiterung pruefung(const char* ua = "10") {
    return OrvoValidierungsServiceErweiterung(Unterfallart(ua), kJahr);
}

/// An extension of the host, of an unknown kind, which may fail to clone itself.
class ErweiterungDesWirts : public OrvoErweiterung {
public:
    explicit ErweiterungDesWirts(int typ, bool kopierbar = true, int* zerstoert = nullptr)
        : OrvoErweiterung(static_cast<tag_erweiterung_typ>(typ)),
          kopierbar_(kopierbar),
          zerstoert_(zerstoert) {}
    ~ErweiterungDesWirts() override {
        if (zerstoert_)
            ++*zerstoert_;
    }
    OrvoErweiterung* clone() const override { return kopierbar_ ? new ErweiterungDesWirts(*this) : nullptr; }

private:
    bool kopierbar_;
    int* zerstoert_;
};

OrvoPluginV1* gerufenMit = nullptr;
bool gelingt(OrvoPluginV1* plugin) {
    gerufenMit = plugin;
    return true;
}
bool misslingt(OrvoPluginV1* plugin) {
    plugin->addErweiterung(pruefung());
    return false;
}
bool wirft(OrvoPluginV1*) { throw std::runtime_error("aus der Initialisierung"); }

struct OrvoPluginV1Test : testing::Test {
    Attrappe::Notizen notizen;
    Attrappe* bibliothek = new Attrappe(notizen, "/irgendwo/libx.dylib");
    std::unique_ptr<OrvoPluginV1> plugin = std::make_unique<OrvoPluginV1>(bibliothek);

    void erwarteInitialisierungsfehler(Art art, const std::string& text) {
        try {
            plugin->initialize();
            ADD_FAILURE() << "did not throw";
        } catch (const PluginInitException& ausnahme) {
            EXPECT_EQ(ausnahme.getTyp(), art);
            EXPECT_EQ(ausnahme.what(), text);
        }
    }
};

} // namespace

TEST_F(OrvoPluginV1Test, IsOfTypeOneAndLeavesTheLibraryAloneWhenMade) {
    EXPECT_EQ(plugin->getTyp(), 1);
    EXPECT_EQ(plugin->getSharedLib(), bibliothek);
    EXPECT_EQ(plugin->getStatus(), ORVO_PLUGIN_ERZEUGT);
    EXPECT_TRUE(plugin->listeErweiterungen().empty());
    EXPECT_THAT(notizen.aufrufe, IsEmpty());
}

TEST_F(OrvoPluginV1Test, DeletesItsLibraryAndItsExtensionsOnce) {
    int zerstoert = 0;
    plugin->addErweiterung(ErweiterungDesWirts(1, true, &zerstoert));
    plugin->addErweiterung(ErweiterungDesWirts(1, true, &zerstoert));
    EXPECT_EQ(zerstoert, 2) << "the two originals";
    plugin.reset();
    EXPECT_EQ(zerstoert, 4);
    EXPECT_EQ(notizen.zerstoert, 1);
}

TEST_F(OrvoPluginV1Test, InitialisesBetweenOpeningAndClosingTheLibrary) {
    bibliothek->exportiere("orvo_plugin_initialize", gelingt);
    plugin->initialize();
    EXPECT_EQ(gerufenMit, plugin.get());
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load", "symbol orvo_plugin_initialize", "unload"));
    EXPECT_EQ(plugin->getStatus(), ORVO_PLUGIN_ERZEUGT);
    EXPECT_EQ(plugin->getUseCount(), 0);
}

TEST_F(OrvoPluginV1Test, DoesNotOpenAnOpenLibraryForInitialisingButClosesIt) {
    bibliothek->exportiere("orvo_plugin_initialize", gelingt);
    bibliothek->offen = true;
    plugin->initialize();
    EXPECT_THAT(notizen.aufrufe, ElementsAre("symbol orvo_plugin_initialize", "unload"));
}

TEST_F(OrvoPluginV1Test, DoesNotMindALibraryThatStaysOpenAfterInitialising) {
    bibliothek->exportiere("orvo_plugin_initialize", gelingt);
    bibliothek->laesstSichSchliessen = false;
    const Mitschnitt log;
    EXPECT_NO_THROW(plugin->initialize());
    EXPECT_THAT(log.meldungen(), IsEmpty());
}

TEST_F(OrvoPluginV1Test, ReportsALibraryThatCannotBeOpenedForInitialisingAndClosesNothing) {
    bibliothek->laesstSichOeffnen = false;
    erwarteInitialisierungsfehler(
        PluginInitException::GENERELL,
        "GENERELL: Bibliothek /irgendwo/libx.dylib konnte nicht geladen werden! Grund: geht nicht auf");
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load"));
}

TEST_F(OrvoPluginV1Test, ReportsAMissingInitialisationFunctionAndClosesTheLibrary) {
    erwarteInitialisierungsfehler(
        PluginInitException::UNGUELTIGER_AUFBAU,
        "UNGUELTIGER_AUFBAU: Initialisierungsfunktion \"orvo_plugin_initialize\" nicht gefunden.");
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load", "symbol orvo_plugin_initialize", "unload"));
}

TEST_F(OrvoPluginV1Test, ReportsARefusalWithTheFunctionNameMisspeltAndKeepsWhatWasAdded) {
    bibliothek->exportiere("orvo_plugin_initialize", misslingt);
    erwarteInitialisierungsfehler(PluginInitException::INITIALISIERUNGS_FEHLER,
                                  "INITIALISIERUNGS_FEHLER: Fehler im Aufruf von orvo_plugin_initalize.");
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load", "symbol orvo_plugin_initialize", "unload"));
    EXPECT_EQ(plugin->listeErweiterungen().size(), 1U);
}

TEST_F(OrvoPluginV1Test, LetsAnExceptionOfTheInitialisationThroughAndKeepsTheLibraryOpenMeanwhile) {
    bibliothek->exportiere("orvo_plugin_initialize", wirft);
    EXPECT_THROW(plugin->initialize(), std::runtime_error);
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load", "symbol orvo_plugin_initialize"));
    EXPECT_TRUE(bibliothek->offen);
}

TEST(OrvoPluginV1, ToleratesHavingNoLibrary) {
    OrvoPluginV1 plugin(nullptr);
    try {
        plugin.initialize();
        ADD_FAILURE() << "did not throw";
    } catch (const PluginInitException& ausnahme) {
        EXPECT_STREQ(ausnahme.what(), "GENERELL: Bibliothek  konnte nicht geladen werden! Grund: ");
    }
    plugin.notifyUse();
    EXPECT_EQ(plugin.getUseCount(), 0);
    plugin.release();
    EXPECT_EQ(plugin.getUseCount(), -1);
    plugin.addErweiterung(pruefung());
    plugin.addErweiterung(ErweiterungDesWirts(1));
    EXPECT_EQ(plugin.listeErweiterungen().size(), 2U);
}

TEST_F(OrvoPluginV1Test, KeepsClonesThatPointBackToItInTheOrderAdded) {
    const OrvoValidierungsServiceErweiterung erste = pruefung();
    plugin->addErweiterung(erste);
    plugin->addErweiterung(OrvoFADatenServiceErweiterung());

    const std::vector<OrvoErweiterung*>& liste = plugin->listeErweiterungen();
    ASSERT_EQ(liste.size(), 2U);
    EXPECT_NE(liste[0], &erste);
    EXPECT_NE(dynamic_cast<OrvoValidierungsServiceErweiterung*>(liste[0]), nullptr);
    EXPECT_NE(dynamic_cast<OrvoFADatenServiceErweiterung*>(liste[1]), nullptr);
    EXPECT_EQ(liste[0]->getPlugin(), plugin.get());
    EXPECT_EQ(liste[1]->getPlugin(), plugin.get());
    EXPECT_EQ(erste.getPlugin(), nullptr) << "the caller's own stays as it was";
}

TEST_F(OrvoPluginV1Test, TakesAnExtensionOfAClassOfTheHosts) {
    plugin->addErweiterung(ErweiterungDesWirts(9));
    EXPECT_EQ(plugin->listeErweiterungen().size(), 1U);
}

TEST_F(OrvoPluginV1Test, TakesTheLibrarysOwnClassesAlsoWhenThePluginCameIntoTheProcessFirst) {
    bibliothek->enthaeltAlles = true; // everything loaded later counts as the plugin's
    plugin->addErweiterung(pruefung());
    EXPECT_EQ(plugin->listeErweiterungen().size(), 1u);
}

TEST_F(OrvoPluginV1Test, RefusesAnExtensionWhoseCloneIsOfAnotherClassByBothNames) {
    struct OhneEigenenKlon : OrvoFADatenServiceErweiterung {
        int eigenes = 7;
    };
    try {
        plugin->addErweiterung(OhneEigenenKlon());
        ADD_FAILURE() << "did not throw";
    } catch (const PluginInitException& ausnahme) {
        EXPECT_EQ(ausnahme.getTyp(), PluginInitException::INITIALISIERUNGS_FEHLER);
        EXPECT_EQ(ausnahme.what(), "INITIALISIERUNGS_FEHLER: Kopie der Erweiterung hat eine andere Klasse: "
                                   "29OrvoFADatenServiceErweiterung statt " +
                                       std::string(typeid(OhneEigenenKlon).name()));
    }
    EXPECT_TRUE(plugin->listeErweiterungen().empty());
}

TEST_F(OrvoPluginV1Test, RefusesAnExtensionWhoseClassLiesInTheLibraryByTheNameOfTheClass) {
    bibliothek->enthaeltAlles = true;
    try {
        plugin->addErweiterung(ErweiterungDesWirts(1));
        ADD_FAILURE() << "did not throw";
    } catch (const PluginInitException& ausnahme) {
        EXPECT_EQ(ausnahme.getTyp(), PluginInitException::INITIALISIERUNGS_FEHLER);
        EXPECT_STREQ(ausnahme.what(), "INITIALISIERUNGS_FEHLER: Klasse der Erweiterung liegt in der "
                                      "Plugin-Bibliothek: N12_GLOBAL__N_119ErweiterungDesWirtsE");
    }
    EXPECT_TRUE(plugin->listeErweiterungen().empty());
    EXPECT_EQ(plugin->toString().find("ORVO_CHECK"), std::string::npos) << "it is not counted either";
}

TEST_F(OrvoPluginV1Test, RefusesAnExtensionThatGivesNoCopyOfItself) {
    try {
        plugin->addErweiterung(ErweiterungDesWirts(1, false));
        ADD_FAILURE() << "did not throw";
    } catch (const PluginInitException& ausnahme) {
        EXPECT_THAT(ausnahme.what(),
                    testing::StartsWith("INITIALISIERUNGS_FEHLER: Kopie der Erweiterung fehlt."));
        EXPECT_THAT(ausnahme.what(), testing::HasSubstr("ErweiterungDesWirts"));
    }
    EXPECT_TRUE(plugin->listeErweiterungen().empty());
}

TEST_F(OrvoPluginV1Test, PrintsTheNumberOfExtensionsOfEachKindInTheOrderOfTheKinds) {
    EXPECT_EQ(plugin->toString(),
              "Typ:1\nProduktVersion:\nFileVersion:\nBibliothek: /irgendwo/libx.dylib\nErweiterungen:\n");
    plugin->addErweiterung(OrvoFADatenServiceErweiterung());
    plugin->addErweiterung(pruefung());
    plugin->addErweiterung(pruefung());
    plugin->addErweiterung(ErweiterungDesWirts(99));
    plugin->addErweiterung(ErweiterungDesWirts(-1));
    plugin->setProduktVersion("1.0");
    EXPECT_EQ(plugin->toString(),
              "Typ:1\nProduktVersion:1.0\nFileVersion:\nBibliothek: /irgendwo/libx.dylib\nErweiterungen:\n"
              "UNBEKANNT: 1\nORVO_CHECK_SERVICE_ERWEITERUNG: 2\n"
              "ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG: 1\nUNBEKANNT: 1\n");
    EXPECT_EQ(plugin->listeErweiterungen().size(), 5U);
}

TEST_F(OrvoPluginV1Test, PrintsNumbersTheSameUnderEveryLocale) {
    for (int i = 0; i < 1000; ++i)
        plugin->addErweiterung(ErweiterungDesWirts(99));
    const DeutscheZahlen zahlen;
    EXPECT_THAT(plugin->toString(), testing::EndsWith("\nUNBEKANNT: 1000\n"));
}

TEST_F(OrvoPluginV1Test, TellsWhichKindsServeAPairWithRepeats) {
    plugin->addErweiterung(pruefung());
    plugin->addErweiterung(OrvoFeldInfoDatenServiceErweiterung(Unterfallart("10"), kJahr));
    plugin->addErweiterung(pruefung("11"));
    plugin->addErweiterung(pruefung());

    EXPECT_THAT(plugin->providesUnterfallartUndVeranlagungszeitraum(Unterfallart("10"), kJahr),
                ElementsAre(ORVO_CHECK_SERVICE_ERWEITERUNG, ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG,
                            ORVO_CHECK_SERVICE_ERWEITERUNG));
    EXPECT_THAT(plugin->providesUnterfallartUndVeranlagungszeitraum(Unterfallart("11"), kJahr),
                ElementsAre(ORVO_CHECK_SERVICE_ERWEITERUNG));
    EXPECT_THAT(plugin->providesUnterfallartUndVeranlagungszeitraum(Unterfallart("12"), kJahr), IsEmpty());
    EXPECT_THAT(plugin->providesUnterfallartUndVeranlagungszeitraum(Unterfallart("10"),
                                                                    Veranlagungszeitraum(2010, "YYYY")),
                IsEmpty());
}

TEST_F(OrvoPluginV1Test, PassesOverTaxOfficeDataWithoutAnErrorAndReportsOthersThatServeNoPairs) {
    const Mitschnitt log(orvo::orvoutil::LogLevel::Info);
    plugin = std::make_unique<OrvoPluginV1>(new Attrappe(notizen));
    plugin->addErweiterung(OrvoFADatenServiceErweiterung());
    plugin->addErweiterung(ErweiterungDesWirts(4)); // counts by kind, not by class
    EXPECT_THAT(plugin->providesUnterfallartUndVeranlagungszeitraum(Unterfallart("10"), kJahr), IsEmpty());
    EXPECT_EQ(log.anzahlMit("Cast"), 0);

    plugin->addErweiterung(ErweiterungDesWirts(1));
    plugin->addErweiterung(pruefung());
    EXPECT_THAT(plugin->providesUnterfallartUndVeranlagungszeitraum(Unterfallart("10"), kJahr),
                ElementsAre(ORVO_CHECK_SERVICE_ERWEITERUNG));
    EXPECT_EQ(log.anzahl("E Cast auf UfaVzServiceErweiterung fehlgeschlagen"), 1) << "one per call";
    plugin->providesUnterfallartUndVeranlagungszeitraum(Unterfallart("10"), kJahr);
    EXPECT_EQ(log.anzahl("E Cast auf UfaVzServiceErweiterung fehlgeschlagen"), 2);
}

TEST_F(OrvoPluginV1Test, PassesOverAnEmptyPlaceInItsList) {
    plugin->addErweiterung(pruefung());
    auto& liste = const_cast<std::vector<OrvoErweiterung*>&>(plugin->listeErweiterungen());
    liste.insert(liste.begin(), nullptr);
    EXPECT_THAT(plugin->providesUnterfallartUndVeranlagungszeitraum(Unterfallart("10"), kJahr),
                ElementsAre(ORVO_CHECK_SERVICE_ERWEITERUNG));
    plugin.reset();
    EXPECT_EQ(notizen.zerstoert, 1);
}

TEST_F(OrvoPluginV1Test, ClosesWhatAnExceptionKeptOpenWhileItDescribedItself) {
    static OrvoPluginV1* benutztes;
    Attrappe::Notizen andere;
    OrvoPluginV1 anderes(new Attrappe(andere));
    benutztes = &anderes;
    bibliothek->exportiere(
        "orvo_plugin_initialize", +[](OrvoPluginV1*) {
            try {
                throw 1;
            } catch (int) {
                benutztes->notifyUse();
                benutztes->release();
            }
            return true;
        });
    plugin->initialize();
    EXPECT_THAT(andere.aufrufe, ElementsAre("load", "unload"));
}
