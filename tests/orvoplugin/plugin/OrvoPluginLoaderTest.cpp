#include <orvoplugin/plugin/OrvoPluginLoader.h>

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginEntryPoints.h>
#include <orvoplugin/plugin/PluginInitException.h>
#include <orvoplugin/plugin/PluginLoaderException.h>

#include "orvoplugin/plugin/Attrappe.h"
#include "orvoplugin/plugin/Werkstatt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>

using orvo::orvoutil::SharedLib;
using testing::ElementsAre;

namespace {

constexpr char kTypen[] = "symbol orvo_plugin_get_types";
constexpr char kInitialisierung[] = "symbol orvo_plugin_initialize";
constexpr char kUngueltig[] = "UNGUELTIGE_PLUGIN_VERSION: Ung\xFCltige Pluginversion";

template <int... Typ>
void nennt(std::list<orvo_plugin_version_t>* typen) {
    EXPECT_TRUE(typen->empty());
    (typen->push_back({Typ}), ...);
}

int initialisierungen = 0;
OrvoPluginV1* erstes = nullptr;
bool beschreibt(OrvoPluginV1* plugin) {
    if (initialisierungen == 0)
        erstes = plugin;
    plugin->setProduktVersion("1." + std::to_string(++initialisierungen));
    plugin->setFileVersion("7");
    return true;
}

struct OrvoPluginLoaderTest : testing::Test {
    Attrappe::Notizen notizen;
    Attrappe* const bibliothek = new Attrappe(notizen);
    OrvoPluginLoader loader;

    void SetUp() override {
        initialisierungen = 0;
        bibliothek->exportiere("orvo_plugin_initialize", beschreibt);
    }

    /// The failure and its text; the library must be destroyed.
    void erwarteFehler(orvo_plugin_loader_exception_typ_t typ, const std::string& text) {
        try {
            loader.loadPlugin(bibliothek);
            ADD_FAILURE() << "did not throw";
        } catch (const PluginLoaderException& ausnahme) {
            EXPECT_EQ(ausnahme.getTyp(), typ);
            EXPECT_EQ(ausnahme.what(), text);
        }
        EXPECT_EQ(notizen.zerstoert, 1);
    }
};

} // namespace

TEST_F(OrvoPluginLoaderTest, MakesAnInitialisedPluginAndLeavesItToTheCaller) {
    bibliothek->exportiere("orvo_plugin_get_types", nennt<1>);
    std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(bibliothek));
    ASSERT_NE(dynamic_cast<OrvoPluginV1*>(plugin.get()), nullptr);
    EXPECT_EQ(plugin->getProduktVersion(), "1.1");
    EXPECT_EQ(plugin->getSharedLib(), bibliothek);
    EXPECT_EQ(plugin->getStatus(), ORVO_PLUGIN_ERZEUGT);
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load", kTypen, kInitialisierung, "unload"));
    EXPECT_EQ(notizen.zerstoert, 0);
    plugin.reset();
    EXPECT_EQ(notizen.zerstoert, 1);
}

TEST_F(OrvoPluginLoaderTest, DoesNotOpenAnOpenLibrary) {
    bibliothek->exportiere("orvo_plugin_get_types", nennt<1>);
    bibliothek->offen = true;
    const std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(bibliothek));
    EXPECT_THAT(notizen.aufrufe, ElementsAre(kTypen, kInitialisierung, "unload"));
}

TEST_F(OrvoPluginLoaderTest, RefusesALibraryThatDoesNotOpenWithTheLibrarysReason) {
    bibliothek->laesstSichOeffnen = false;
    erwarteFehler(BIBLIOTHEK_FEHLER, "BIBLIOTHEK_FEHLER: geht nicht auf");
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load"));
}

TEST_F(OrvoPluginLoaderTest, RefusesALibraryWithoutTheTypeEntryPoint) {
    erwarteFehler(STRUKTUR_FEHLER,
                  "STRUKTUR_FEHLER: Einsprungpunkt(orvo_plugin_get_types) in Bibliothek nicht gefunden.");
    EXPECT_EQ(initialisierungen, 0);
}

TEST_F(OrvoPluginLoaderTest, RefusesALibraryThatNamesNoTypeAsAStructureError) {
    bibliothek->exportiere("orvo_plugin_get_types", nennt<>);
    erwarteFehler(STRUKTUR_FEHLER,
                  "STRUKTUR_FEHLER: Einsprungpunkt(orvo_plugin_get_types) nennt keine Pluginversion.");
    EXPECT_EQ(initialisierungen, 0);
}

TEST_F(OrvoPluginLoaderTest, RefusesTypeTwo) {
    bibliothek->exportiere("orvo_plugin_get_types", nennt<2>);
    erwarteFehler(UNGUELTIGE_PLUGIN_VERSION, kUngueltig);
}

TEST_F(OrvoPluginLoaderTest, RefusesTypeZeroAndNegativeTypes) {
    bibliothek->exportiere("orvo_plugin_get_types", nennt<0>);
    erwarteFehler(UNGUELTIGE_PLUGIN_VERSION, kUngueltig);
    auto* const andere = new Attrappe(notizen);
    andere->exportiere("orvo_plugin_get_types", nennt<-1>);
    EXPECT_THROW(loader.loadPlugin(andere), PluginLoaderException);
    EXPECT_EQ(notizen.zerstoert, 2);
}

TEST_F(OrvoPluginLoaderTest, RefusesAForeignTypeBeforeOneOfItsOwnWithoutInitialising) {
    bibliothek->exportiere("orvo_plugin_get_types", nennt<2, 1>);
    erwarteFehler(UNGUELTIGE_PLUGIN_VERSION, kUngueltig);
    EXPECT_EQ(initialisierungen, 0);
}

TEST_F(OrvoPluginLoaderTest, RefusesAForeignTypeBehindOneOfItsOwnAfterInitialisingThat) {
    bibliothek->exportiere("orvo_plugin_get_types", nennt<1, 2>);
    bibliothek->laesstSichSchliessen = false; // so only its destruction closes it
    erwarteFehler(UNGUELTIGE_PLUGIN_VERSION, kUngueltig);
    EXPECT_EQ(initialisierungen, 1);
}

TEST_F(OrvoPluginLoaderTest, InitialisesALibraryOncePerRecordAndReturnsTheLastPlugin) {
    bibliothek->exportiere("orvo_plugin_get_types", nennt<1, 1, 1>);
    const Mitschnitt log;
    std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(bibliothek));
    EXPECT_EQ(initialisierungen, 3);
    EXPECT_EQ(plugin->getProduktVersion(), "1.3");
    EXPECT_EQ(plugin->getSharedLib(), bibliothek);
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load", kTypen, kInitialisierung, "unload", "load",
                                             kInitialisierung, "unload", "load", kInitialisierung, "unload"));
    EXPECT_EQ(log.anzahl("~> OrvoPluginV1"), 0) << "the earlier ones live on";
    EXPECT_EQ(erstes->getSharedLib(), nullptr) << "without the library";
    EXPECT_THAT(erstes->toString(), testing::HasSubstr("Bibliothek: \n"));
    plugin.reset();
    EXPECT_EQ(log.anzahl("~> OrvoPluginV1"), 3);
    EXPECT_EQ(notizen.zerstoert, 1) << "and share the library";
}

TEST_F(OrvoPluginLoaderTest, TakesTheLibraryAwayFromAnEarlierRecordThatIsInUse) {
    bibliothek->exportiere("orvo_plugin_get_types", nennt<1, 1>);
    bibliothek->exportiere(
        "orvo_plugin_initialize", +[](OrvoPluginV1* plugin) {
            if (initialisierungen == 0)
                plugin->notifyUse();
            return beschreibt(plugin);
        });
    const std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(bibliothek));
    EXPECT_EQ(erstes->getUseCount(), 1);
    erstes->release();
    EXPECT_EQ(erstes->getStatus(), ORVO_PLUGIN_ENTLADEN);
}

TEST_F(OrvoPluginLoaderTest, NamesTheOpeningAsTheStepThatFailedAlsoForALaterRecord) {
    EXPECT_EQ(loader.getSchritt(), ABLEHNUNG_OEFFNEN) << "the first of all";
    static Attrappe* eine;
    eine = bibliothek;
    bibliothek->exportiere("orvo_plugin_get_types", nennt<1, 1>);
    bibliothek->exportiere(
        "orvo_plugin_initialize", +[](OrvoPluginV1*) {
            eine->laesstSichOeffnen = false;
            return true;
        });
    EXPECT_THROW(loader.loadPlugin(bibliothek), PluginInitException);
    EXPECT_EQ(loader.getSchritt(), ABLEHNUNG_OEFFNEN);
}

TEST_F(OrvoPluginLoaderTest, ClosesTheLibraryOfAnEarlierExceptionBeforeItOpensTheNext) {
    struct Naechste : Attrappe {
        explicit Naechste(Notizen& n) : Attrappe(n), zerstoerte(n.zerstoert) {}
        bool load() override {
            EXPECT_EQ(zerstoerte, 1);
            return Attrappe::load();
        }
        const int& zerstoerte;
    };
    bibliothek->exportiere(
        "orvo_plugin_get_types", +[](std::list<orvo_plugin_version_t>*) { throw 1; });
    EXPECT_THROW(loader.loadPlugin(bibliothek), int);
    EXPECT_EQ(notizen.zerstoert, 0);
    EXPECT_THROW(loader.loadPlugin(new Naechste(notizen)), PluginLoaderException);
}

TEST_F(OrvoPluginLoaderTest, NeedsNoDeeperStackForTheEndOfTwentyFiveThousandRecords) {
    bibliothek->exportiere(
        "orvo_plugin_get_types",
        +[](std::list<orvo_plugin_version_t>* typen) { typen->assign(25'000, {1}); });
    std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(bibliothek));
    EXPECT_EQ(initialisierungen, 25'000);
    plugin.reset();
    EXPECT_EQ(notizen.zerstoert, 1);
}

TEST_F(OrvoPluginLoaderTest, DeletesThePluginBeforeItPassesAnInitialisationFailureOn) {
    bibliothek->exportiere("orvo_plugin_get_types", nennt<1>);
    bibliothek->symbole.erase("orvo_plugin_initialize");
    try {
        loader.loadPlugin(bibliothek);
        ADD_FAILURE() << "did not throw";
    } catch (const PluginInitException& ausnahme) {
        EXPECT_EQ(notizen.zerstoert, 1);
        EXPECT_STREQ(
            ausnahme.what(),
            "UNGUELTIGER_AUFBAU: Initialisierungsfunktion \"orvo_plugin_initialize\" nicht gefunden.");
    }
}

TEST_F(OrvoPluginLoaderTest, RefusesToHaveNoLibrary) {
    delete bibliothek;
    try {
        loader.loadPlugin(nullptr);
        ADD_FAILURE() << "did not throw";
    } catch (const PluginLoaderException& ausnahme) {
        EXPECT_STREQ(ausnahme.what(), "BIBLIOTHEK_FEHLER: ");
    }
}

TEST_F(OrvoPluginLoaderTest, SaysWhatItFoundInTheTagAndLeavesTheTextEmpty) {
    bibliothek->exportiere("orvo_plugin_get_types", nennt<1>);
    const Mitschnitt log(orvo::orvoutil::LogLevel::Error);
    const std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(bibliothek));
    EXPECT_THAT(log.zeilen(),
                ElementsAre("[Kompatibles Plugin gefunden : Type=1,Version=1.1 Fileversion=7|99||99]"));
    EXPECT_EQ(log.eintraege().front().category, "orvo.plugin.loader.OrvoPluginLoader");
}
