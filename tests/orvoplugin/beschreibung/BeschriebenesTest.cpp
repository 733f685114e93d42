// Plugins that are loaded from the descriptions in their files.

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/HoleService.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>

#include "orvoplugin/plugin/Werkstatt.h"
#include "support/Beschriftung.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <utility>

using namespace orvo::orvoutil;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;

namespace {

constexpr char kUebernommen[] = "I Beschreibung aus der Datei \xFC"
                                "bernommen: ";
constexpr char kIgnoriert[] = "W Beschreibung in der Datei ignoriert: ";
constexpr char kVerdacht[] =
    "W Das Plugin wurde nach der Beschreibung in seiner Datei geladen, die falsch sein kann: ";

class BeschriebenesTest : public testing::Test {
protected:
    ~BeschriebenesTest() override { schalte(false); }

    static void schalte(bool an) {
        Einstellungen().setze("basis.plugin_beschreibungen", an ? "eingebettet" : "");
    }
    /// Puts a plugin there whose file says what the text says. Afterwards it would say something else.
    std::string lege(const std::string& name, const std::string& text) const {
        const std::string pfad = heimat_.beschreibe(name, text);
        beschrifte(pfad);
        heimat_.verzeichnis.schreibe("plugins/" + name + ".txt", "produktversion 0.0 gefragt\n");
        return pfad;
    }
    /// Starts with descriptions. Returns: the only plugin.
    OrvoPluginV1& starte() {
        schalte(true);
        registry_ = OrvoErweiterungsManager::getInstanz();
        auto& plugins = OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins();
        EXPECT_EQ(plugins.size(), 1u);
        return dynamic_cast<OrvoPluginV1&>(*plugins.front());
    }
    ServiceGriff<orvo::service::ValidierungsService> holePruefung() const {
        return ServiceGriff(
            registry_->findeValidierungsServiceErweiterung(10, Veranlagungszeitraum(2009, "YYYY")));
    }

    Mitschnitt mitschnitt_{LogLevel::Info};
    const Heimat heimat_;
    OrvoErweiterungsManager* registry_ = nullptr;
};

Zeilen ohneAdressen(Zeilen zeilen) {
    for (std::string& zeile : zeilen)
        zeile = std::regex_replace(zeile, std::regex("0x[0-9a-f]+"), "0x");
    return zeilen;
}

TEST_F(BeschriebenesTest, ItsLibraryIsNotOpenedAtStartUp) {
    const std::string pfad = lege("liba.dylib", "produktversion 1.2.3\nfileversion 4\ncheck 10 2009\n");
    const OrvoPluginV1& plugin = starte();
    EXPECT_TRUE(plugin.istBeschrieben());
    EXPECT_EQ(plugin.getProduktVersion(), "1.2.3");
    EXPECT_EQ(plugin.getFileVersion(), "4");
    EXPECT_EQ(plugin.getSharedLib()->getName(), pfad);
    EXPECT_FALSE(plugin.getSharedLib()->isLoaded());
    EXPECT_EQ(mitschnitt_.anzahl(kUebernommen + pfad), 1);
    EXPECT_NE(registry_->findeValidierungsServiceErweiterung(10, Veranlagungszeitraum(2009, "YYYY")),
              nullptr);
}

TEST_F(BeschriebenesTest, UnlessTheSettingIsOnThePluginIsAsked) {
    lege("liba.dylib", "produktversion 1.2.3\n");
    const OrvoPluginManager& manager = *OrvoPluginManager::getInstanz(nullptr);
    const OrvoPlugin& plugin = *const_cast<OrvoPluginManager&>(manager).getRegistriertePlugins().front();
    EXPECT_EQ(plugin.getProduktVersion(), "0.0");
    EXPECT_FALSE(plugin.istBeschrieben());
}

TEST_F(BeschriebenesTest, TheSettingIsReadAtTheBeginningOfEachLoadingRun) {
    const std::string pfad = lege("liba.dylib", "produktversion 1\n");
    schalte(true);
    OrvoPluginManager manager(nullptr);
    const auto versionen = [&] {
        Zeilen alle;
        for (const OrvoPlugin* const plugin : manager.getRegistriertePlugins())
            alle.push_back(plugin->getProduktVersion());
        return alle;
    };
    EXPECT_THAT(versionen(), ElementsAre("1"));
    schalte(false);
    EXPECT_TRUE(manager.ladePlugin(pfad));
    EXPECT_THAT(versionen(), ElementsAre("1", "0.0"));
    schalte(true);
    EXPECT_TRUE(manager.ladePluginsRekursiv(heimat_.ort()));
    EXPECT_THAT(versionen(), ElementsAre("1", "0.0", "1"));
    schalte(false);
    manager.reload();
    EXPECT_THAT(versionen(), ElementsAre("0.0"));
    Einstellungen().setze("basis.plugin_beschreibungen", "Eingebettet"); // another value
    manager.reload();
    EXPECT_THAT(versionen(), ElementsAre("0.0"));
    schalte(true);
    manager.reload();
    EXPECT_THAT(versionen(), ElementsAre("1"));
}

/// What a client and its log see of a directory.
struct Ansicht {
    Zeilen meldungen, ereignisse, plugins;
    std::vector<std::string> schluessel;
};

class GemischtesVerzeichnis : public BeschriebenesTest {
protected:
    GemischtesVerzeichnis() {
        heimat_.beschreibe("liba.dylib",
                           "produktversion 1.0\nfileversion 7\ncheck 10 2008,2009\nxpath LSTB 2009\n");
        heimat_.beschreibe("libb.dylib", "produktversion 2.0\ncheck 10 2009,immer\nfinanzamt\nlabel Text\n");
        heimat_.beschreibe("libc.dylib",
                           "produktversion 1.5\ncheck 010 2008\nfinanzamt\nresident\nstatus 1\n");
        heimat_.beschreibe("libd.dylib", "abgelehnt\n");
        heimat_.beschreibe("libe.dylib",
                           "feldinfo LSTB 2009-05,2009-42\nonload zaehleOnLoad\nreader zmdo immer\n");
        heimat_.lege(test_plugins::OffersEverything, "libf.dylib");
        heimat_.lege(test_plugins::DeclaresTypeOneTwice, "libg.dylib");
        heimat_.verzeichnis.schreibe("plugins/libh.dylib", "no library");
        heimat_.lege(test_plugins::WithoutInitialize, "libi.dylib");
        heimat_.beschreibe("sub/liba.dylib", "produktversion 2.0\ncheck 10 2009\nfehlertext 10 2009\n");
    }

    Ansicht ansicht() {
        Ansicht bild;
        mitschnitt_.leere();
        const OrvoErweiterungsManager& registry = *OrvoErweiterungsManager::getInstanz();
        OrvoPluginManager& manager = *OrvoPluginManager::getInstanz(nullptr);
        Zeuge zeuge(bild.ereignisse);
        manager.addObserver(&zeuge);
        manager.reload();
        for (const OrvoPlugin* const plugin : manager.getRegistriertePlugins())
            bild.plugins.push_back(plugin->toString() + schreibeBeschreibung(*plugin));
        for (const OrvoErweiterung* const erweiterung : registry.getRegistrierteErweiterungen())
            bild.schluessel.push_back(erweiterung->getPlugin()->getSharedLib()->getName() +
                                      erweiterungTypName(erweiterung->getTyp()));
        manager.removeObserver(&zeuge);
        ObjectLifetimeManager::instance().destroyAll();
        std::ranges::sort(bild.schluessel); // the table's order
        bild.meldungen = ohneAdressen(mitschnitt_.meldungen());
        return bild;
    }
};

TEST_F(GemischtesVerzeichnis, LooksAsItDoesWhenEachPluginIsAsked) {
    const Ansicht gefragt = ansicht();
    for (const char* const name :
         {"liba.dylib", "libc.dylib", "libe.dylib", "libf.dylib", "libg.dylib", "sub/liba.dylib"})
        beschrifte(heimat_.ort(name));
    schalte(true);
    Ansicht beschrieben = ansicht();
    EXPECT_EQ(gefragt.plugins, beschrieben.plugins);
    EXPECT_EQ(gefragt.ereignisse, beschrieben.ereignisse);
    EXPECT_EQ(gefragt.schluessel, beschrieben.schluessel);
    const auto zusaetzliche = std::erase_if(
        beschrieben.meldungen, [](const std::string& zeile) { return zeile.starts_with(kUebernommen); });
    EXPECT_EQ(zusaetzliche, 2 * 6) << "one for each described plugin, in both runs";
    ASSERT_EQ(gefragt.meldungen.size(), beschrieben.meldungen.size());
    for (std::size_t i = 0; i < gefragt.meldungen.size(); ++i)
        EXPECT_EQ(gefragt.meldungen[i], beschrieben.meldungen[i]) << i;
    EXPECT_THAT(gefragt.meldungen, Contains(HasSubstr("Es existiert schon eine Erweiterung")))
        << "versions decide here";
}

TEST_F(BeschriebenesTest, ItsLibraryIsOpenedForTheFirstServiceAndItsHooksAreCalled) {
    const std::string pfad =
        lege("liba.dylib", "loeschen\ncheck 10 2009\nonload zaehleOnLoad\nonunload zaehleOnUnload\n");
    const OrvoPluginV1& plugin = starte();
    const std::string hooks = pfad + ".txt.hooks";
    EXPECT_FALSE(fs::exists(hooks));
    {
        const auto pruefung = holePruefung();
        ASSERT_TRUE(pruefung);
        EXPECT_TRUE(istEingeblendet(pfad));
        EXPECT_EQ(plugin.getUseCount(), 1);
        EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_GELADEN);
    }
    EXPECT_FALSE(istEingeblendet(pfad));
    EXPECT_EQ(plugin.getUseCount(), 0);
    std::ifstream datei(hooks);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(datei), {}), "load\nunload\n");
}

TEST_F(BeschriebenesTest, ALibraryThatCannotBeOpenedFailsAtTheFirstServiceAndWorksWhenItIsRepaired) {
    const std::string pfad = lege("liba.dylib", "loeschen\ncheck 10 2009\n");
    const std::string heil = heimat_.verzeichnis.kopiere(pfad, "heil");
    const OrvoPluginV1& plugin = starte();
    const auto scheitert = [&](const std::string& warum) {
        mitschnitt_.leere();
        EXPECT_FALSE(holePruefung());
        EXPECT_EQ(plugin.getUseCount(), 0);
        EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_ERZEUGT);
        EXPECT_THAT(mitschnitt_.meldungen(),
                    Contains(StartsWith("E Konnte Plugin nicht laden: " + pfad + ": " + warum)));
        EXPECT_EQ(mitschnitt_.anzahl(kVerdacht + pfad), 1);
    };
    fs::remove(pfad);
    scheitert("kann nicht");
    heimat_.verzeichnis.kopiere(heil, "plugins/liba.dylib");
    fs::resize_file(pfad, fs::file_size(pfad) / 2);
    scheitert("abgeschnitten");
    heimat_.verzeichnis.schreibe("plugins/liba.dylib", "something else");
    scheitert("keine ELF-Datei");
    fs::rename(heil, pfad);
    EXPECT_TRUE(holePruefung());
    EXPECT_EQ(plugin.getUseCount(), 0);
}

TEST_F(BeschriebenesTest, AFileThatIsCutBehindItsDescriptionIsAPluginUntilItIsUsed) {
    const std::string pfad = lege("liba.dylib", "loeschen\ncheck 10 2009\n");
    fs::resize_file(pfad, fs::file_size(pfad) / 2);
    EXPECT_TRUE(starte().istBeschrieben());
    EXPECT_FALSE(holePruefung());
}

TEST_F(BeschriebenesTest, AMissingFactoryOrHookCastsDoubtOnTheDescription) {
    const std::string pfad =
        lege("liba.dylib", "onload keinHook\nonunload keinHook\nfactory keineFactory\ncheck 10 2009\n");
    const OrvoPluginV1& plugin = starte();
    mitschnitt_.leere();
    EXPECT_FALSE(holePruefung());
    EXPECT_EQ(plugin.getUseCount(), 0);
    const std::string verdacht = kVerdacht + pfad;
    EXPECT_THAT(mitschnitt_.meldungen(),
                ElementsAre("[Plugin|99|Lade Plugin: " + pfad + "|99]",
                            "W Konnte Onload Funktion in Plugin nicht laden", verdacht,
                            "E Konnte Funktion: keineFactory in Plugin " + pfad + " nicht finden.", verdacht,
                            "[Plugin|99|Entlade Plugin: " + pfad + "|99]",
                            "W Konnte OnUnload Funktion in Plugin nicht laden", verdacht));
}

TEST_F(BeschriebenesTest, APluginThatWasAskedIsNotDoubted) {
    heimat_.beschreibe("liba.dylib", "onload keinHook\nfactory keineFactory\ncheck 10 2009\n");
    starte();
    EXPECT_FALSE(holePruefung());
    EXPECT_EQ(mitschnitt_.anzahlMit("nach der Beschreibung"), 0);
}

TEST_F(BeschriebenesTest, ADescriptionThatIsRefusedIsLoggedAndThePluginAsked) {
    const std::string pfad = lege("liba.dylib", "produktversion 1.2.3\n");
    std::string bytes = liesBeschreibung(pfad).bytes;
    ++bytes.back();
    trageEin(pfad, bytes);
    const OrvoPluginV1& plugin = starte();
    EXPECT_EQ(plugin.getProduktVersion(), "0.0");
    EXPECT_FALSE(plugin.istBeschrieben());
    EXPECT_EQ(mitschnitt_.anzahl(kIgnoriert + pfad +
                                 ". Grund: besch\xE4"
                                 "digt"),
              1);
    EXPECT_EQ(mitschnitt_.anzahlMit(kUebernommen), 0);
}

TEST_F(BeschriebenesTest, AResidentPluginStaysOpenAfterItsFirstUse) {
    const std::string pfad = lege("liba.dylib", "resident\nloeschen\ncheck 10 2009\n");
    const OrvoPluginV1& plugin = starte();
    EXPECT_TRUE(plugin.isResident());
    EXPECT_FALSE(istEingeblendet(pfad));
    EXPECT_TRUE(holePruefung());
    EXPECT_TRUE(istEingeblendet(pfad));
    OrvoPluginManager::getInstanz(nullptr)->reload();
    EXPECT_FALSE(istEingeblendet(pfad));
}

TEST_F(BeschriebenesTest, ADescribedAndAnOpenLibraryAreTakenOverByTheLoader) {
    const std::string pfad = lege("liba.dylib", "produktversion 1\n");
    OrvoPluginLoader loader(true);
    const std::unique_ptr<OrvoPlugin> beschrieben(loader.loadPlugin(new SharedLib(pfad)));
    EXPECT_EQ(beschrieben->getProduktVersion(), "1");
    const std::unique_ptr<OrvoPlugin> gefragt(loader.loadPlugin(new SharedLib(pfad, true)));
    EXPECT_EQ(gefragt->getProduktVersion(), "0.0") << "an open library can be asked at once";
    EXPECT_FALSE(istEingeblendet(pfad));
}

/// Turns the descriptions off and loads another file, when it hears of the first plugin.
struct Begleiter : PluginObserver {
    void pluginErzeugt(OrvoPlugin*) override {
        if (weitere.empty())
            return;
        Einstellungen().setze("basis.plugin_beschreibungen", "");
        manager->ladePlugin(std::exchange(weitere, ""));
    }
    void pluginZerstoert(OrvoPlugin*) override {}

    OrvoPluginManager* manager = nullptr;
    std::string weitere;
};

TEST_F(BeschriebenesTest, TheSettingHoldsForAWholeRunAlsoWhenAnObserverLoadsAnotherFile) {
    Begleiter begleiter;
    OrvoPluginManager manager(nullptr);
    begleiter.manager = &manager;
    begleiter.weitere = heimat_.verzeichnis.kopiere(lege("liba.dylib", "produktversion 1.0\n"), "libc.dylib");
    lege("libb.dylib", "produktversion 2.0\n");
    manager.addObserver(&begleiter);
    schalte(true);
    manager.reload();
    EXPECT_EQ(manager.getRegistriertePlugins().size(), 3u);
    for (const OrvoPlugin* const plugin : manager.getRegistriertePlugins())
        EXPECT_TRUE(plugin->istBeschrieben()) << plugin->getSharedLib()->getName();
}

} // namespace
