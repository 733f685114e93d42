// The plugin manager's life: start, reload, change of the home directory, end.

#include <orvoplugin/plugin/OrvoPluginManager.h>

#include "orvoplugin/plugin/Werkstatt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <new>
#include <optional>

using orvo::orvoutil::AenderungsNachricht;
using orvo::orvoutil::Einstellungen;
using orvo::orvoutil::LogLevel;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A home with the plugins liba.dylib and libb.dylib.
struct OrvoPluginManagerTest : testing::Test {
    Heimat heimat;
    Zeilen ereignisse;
    Zeuge zeuge{ereignisse};

    void SetUp() override {
        heimat.beschreibe("liba.dylib", "produktversion 1.0\n");
        heimat.beschreibe("libb.dylib");
    }
};

std::string gefunden(const std::string& version) {
    return "[Kompatibles Plugin gefunden : Type=1,Version=" + version + " Fileversion=|99||99]";
}

} // namespace

TEST(OrvoPluginManager, StartsSuccessfullyWithAnEmptyPluginDirectory) {
    const Heimat heimat;
    const Mitschnitt log(LogLevel::Error);
    OrvoPluginManager manager(nullptr);
    EXPECT_TRUE(manager.getRegistriertePlugins().empty());
    EXPECT_EQ(manager.getPluginSuchPfad(), heimat.ort());
    EXPECT_THAT(log.zeilen(), ElementsAre(markiert("Starte OrvoPluginManager"),
                                          markiert("Suche Plugins im Verzeichnis: " + heimat.ort()),
                                          markiert("erfolgreich gestartet")));
    EXPECT_TRUE(manager.initialisiere());
}

TEST(OrvoPluginManager, StartsSuccessfullyWithoutAPluginDirectory) {
    const Heimat heimat;
    heimat.verzeichnis.entferne("plugins");
    OrvoPluginManager manager(nullptr);
    EXPECT_TRUE(manager.initialisiere());
}

TEST_F(OrvoPluginManagerTest, LoadsEverythingBeforeItIsMadeAndTellsTheObserverOfEach) {
    const Mitschnitt log(LogLevel::Error);
    OrvoPluginManager manager(&zeuge);
    EXPECT_THAT(plugins(manager), ElementsAre("liba.dylib", "libb.dylib"));
    EXPECT_THAT(ereignisse, ElementsAre("+liba.dylib", "+libb.dylib"));
    EXPECT_EQ(manager.getStatus(), 1);
    EXPECT_THAT(log.zeilen(),
                ElementsAre(markiert("Starte OrvoPluginManager"),
                            markiert("Suche Plugins im Verzeichnis: " + heimat.ort()),
                            markiert("Lese Bibliothek: " + heimat.ort("liba.dylib")), gefunden("1.0"),
                            markiert("Plugin erfolgreich geladen"),
                            markiert("Lese Bibliothek: " + heimat.ort("libb.dylib")), gefunden(""),
                            markiert("Plugin erfolgreich geladen"), markiert("erfolgreich gestartet")));
}

TEST_F(OrvoPluginManagerTest, IsInStatusZeroWhileItIsBeingMade) {
    alignas(OrvoPluginManager) unsigned char speicher[sizeof(OrvoPluginManager)];
    std::int32_t status = -1;
    zeuge.beimErzeugen = [&](OrvoPlugin&) {
        status = reinterpret_cast<OrvoPluginManager*>(speicher)->getStatus();
    };
    auto* const manager = new (speicher) OrvoPluginManager(&zeuge);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(manager->getStatus(), 1);
    manager->~OrvoPluginManager();
}

TEST_F(OrvoPluginManagerTest, KeepsWhatLoadedWhenSomethingDidNot) {
    heimat.lege(test_plugins::WithoutEntryPoints, "libaa.dylib");
    const Mitschnitt log(LogLevel::Error);
    OrvoPluginManager manager(&zeuge);
    EXPECT_THAT(plugins(manager), ElementsAre("liba.dylib", "libb.dylib"));
    EXPECT_EQ(manager.getStatus(), 1);
    EXPECT_EQ(log.zeilen().back(), markiert("nicht erfolgreich gestartet"));
    EXPECT_EQ(
        log.anzahl(markiert("Plugin nicht geladen: STRUKTUR_FEHLER: Einsprungpunkt(orvo_plugin_get_types) in "
                            "Bibliothek nicht gefunden.")),
        1);
    EXPECT_FALSE(manager.ladePlugins());
    EXPECT_FALSE(manager.initialisiere());
}

TEST_F(OrvoPluginManagerTest, TellsTheObserversOfEveryPluginInLoadOrderWhenItIsDestroyed) {
    std::optional<OrvoPluginManager> manager(std::in_place, &zeuge);
    std::int32_t status = -1;
    zeuge.beimZerstoeren = [&](OrvoPlugin&) { status = manager->getStatus(); };
    ereignisse.clear();
    manager.reset();
    EXPECT_THAT(ereignisse, ElementsAre("-liba.dylib", "-libb.dylib"));
    EXPECT_EQ(status, 1);
}

TEST_F(OrvoPluginManagerTest, TakesAPluginOutOfItsListBeforeItTellsTheObserversAndDestroysItAfterwards) {
    OrvoPluginManager manager(&zeuge);
    std::vector<Zeilen> uebrig;
    std::string versionen;
    zeuge.beimZerstoeren = [&](OrvoPlugin& plugin) {
        uebrig.push_back(plugins(manager));
        versionen += plugin.getProduktVersion() + ";";
    };
    EXPECT_TRUE(manager.entladePlugins());
    EXPECT_THAT(uebrig, ElementsAre(Zeilen{"libb.dylib"}, Zeilen{}));
    EXPECT_EQ(versionen, "1.0;;");
    EXPECT_TRUE(manager.entladePlugins()) << "also without plugins";
}

TEST_F(OrvoPluginManagerTest, UnloadsAPluginInUseWhateverItsCount) {
    const Mitschnitt log(LogLevel::Error);
    OrvoPluginManager manager(nullptr);
    OrvoPlugin& b = *manager.getRegistriertePlugins().back();
    b.notifyUse();
    b.notifyUse();
    EXPECT_TRUE(istEingeblendet(heimat.ort("libb.dylib")));
    manager.entladePlugins();
    EXPECT_FALSE(istEingeblendet(heimat.ort("libb.dylib")));
    EXPECT_EQ(log.zeilen().back(), markiert("entlade Plugin " + heimat.ort("libb.dylib")));
}

TEST_F(OrvoPluginManagerTest, GoesByTheStatusWhenItSaysWhatItUnloads) {
    heimat.beschreibe("liba.dylib", "status 2\n");
    const Mitschnitt log(LogLevel::Error);
    OrvoPluginManager manager(nullptr);
    OrvoPlugin& b = *manager.getRegistriertePlugins().back();
    b.notifyUse();
    b.release(); // unloaded now
    manager.entladePlugins();
    EXPECT_EQ(log.anzahl(markiert("entlade Plugin " + heimat.ort("liba.dylib"))), 1);
    EXPECT_EQ(log.anzahlMit("entlade Plugin "), 1);
}

TEST_F(OrvoPluginManagerTest, UnloadsResidentPluginsLikeAllOthers) {
    const Mitschnitt log(LogLevel::Error);
    OrvoPluginManager manager(nullptr);
    OrvoPlugin& a = *manager.getRegistriertePlugins().front();
    a.setResident(true);
    a.notifyUse();
    a.release();
    EXPECT_EQ(a.getStatus(), ORVO_PLUGIN_GELADEN);
    EXPECT_TRUE(istEingeblendet(heimat.ort("liba.dylib")));

    manager.entladePlugins();
    EXPECT_TRUE(manager.getRegistriertePlugins().empty());
    EXPECT_FALSE(istEingeblendet(heimat.ort("liba.dylib")));
    EXPECT_EQ(log.zeilen().back(), markiert("entlade Plugin " + heimat.ort("liba.dylib")));
}

TEST_F(OrvoPluginManagerTest, UnloadsAPluginWithoutALibrary) {
    struct OhneBibliothek : OrvoPlugin {
        OhneBibliothek() : OrvoPlugin(orvo_plugin_version_t{1}, nullptr) { setzeStatus(ORVO_PLUGIN_GELADEN); }
        void notifyUse() override {}
        void release() override {}
        void initialize() override {}
    };
    const Mitschnitt log(LogLevel::Error);
    OrvoPluginManager manager(nullptr);
    manager.entladePlugins();
    manager.getRegistriertePlugins().push_back(new OhneBibliothek);
    EXPECT_TRUE(manager.entladePlugins());
    EXPECT_EQ(log.anzahlMit("entlade Plugin"), 0);
}

TEST_F(OrvoPluginManagerTest, ReloadsFromTheSearchPathAsItStands) {
    OrvoPluginManager manager(&zeuge);
    const Heimat andere(false);
    andere.beschreibe("libz.dylib");
    manager.setPluginSuchPfad(andere.ort());
    ereignisse.clear();
    manager.reload();
    EXPECT_THAT(ereignisse, ElementsAre("-liba.dylib", "-libb.dylib", "+libz.dylib"));
    EXPECT_THAT(plugins(manager), ElementsAre("libz.dylib"));
    EXPECT_EQ(manager.getStatus(), 1);
}

TEST_F(OrvoPluginManagerTest, SaysWhenItReloads) {
    const Mitschnitt log(LogLevel::Error);
    OrvoPluginManager manager(nullptr);
    heimat.verzeichnis.entferne("plugins");
    const auto vorher = static_cast<long>(log.zeilen().size());
    manager.reload();
    Zeilen zeilen = log.zeilen();
    zeilen.erase(zeilen.begin(), zeilen.begin() + vorher);
    EXPECT_THAT(zeilen, ElementsAre(markiert("Reload OrvoPluginManager"),
                                    markiert("Suche Plugins im Verzeichnis: " + heimat.ort()),
                                    markiert("Reload OrvoPluginManager erfolgt.")));
}

TEST_F(OrvoPluginManagerTest, FollowsTheHomeDirectory) {
    OrvoPluginManager manager(&zeuge);
    const Verzeichnis andere;
    andere.kopiere(test_plugins::DescribedByFile, "plugins/libz.dylib");
    ereignisse.clear();
    Einstellungen().setze("basis.home_dir", andere.pfad());
    EXPECT_THAT(ereignisse, ElementsAre("-liba.dylib", "-libb.dylib", "+libz.dylib"));
    EXPECT_EQ(manager.getPluginSuchPfad(), andere.pfad("plugins"));
    manager.entladePlugins();
}

TEST_F(OrvoPluginManagerTest, LeavesItsPluginsAloneOnAnyOtherMessage) {
    OrvoPluginManager manager(&zeuge);
    manager.setPluginSuchPfad("/nirgends");
    ereignisse.clear();
    for (const int art : {0, 1, 2, 4, -3})
        manager.empfangeAenderungsNachricht(AenderungsNachricht(art, "basis.home_dir"));
    for (const char* const schluessel :
         {"Basis.home_dir", "BASIS.HOME_DIR", "basis.home_dir ", "basis.home", ""})
        manager.empfangeAenderungsNachricht(AenderungsNachricht(3, schluessel));
    Einstellungen().setze("test.anderes", "1");
    Einstellungen().setze("test.anderes", "");
    EXPECT_THAT(ereignisse, IsEmpty());
    EXPECT_EQ(manager.getPluginSuchPfad(), "/nirgends");

    manager.empfangeAenderungsNachricht(AenderungsNachricht(3, "basis.home_dir"));
    EXPECT_THAT(ereignisse, ElementsAre("-liba.dylib", "-libb.dylib", "+liba.dylib", "+libb.dylib"));
    EXPECT_EQ(manager.getPluginSuchPfad(), heimat.ort());
}

TEST_F(OrvoPluginManagerTest, HearsOfNoSettingsAnyMoreOnceItEnds) {
    zeuge.beimZerstoeren = [&](OrvoPlugin&) { Einstellungen().setze("basis.home_dir", "/nirgends"); };
    const Mitschnitt log(LogLevel::Info);
    { const OrvoPluginManager manager(&zeuge); }
    EXPECT_EQ(log.anzahlMit("basis.home_dir"), 0) << "there is no run to which a change could be postponed";
    ereignisse.clear();
    Einstellungen().setze("basis.home_dir", heimat.ort());
    EXPECT_THAT(ereignisse, IsEmpty());
}

TEST_F(OrvoPluginManagerTest, MakesSearchPathsAbsolute) {
    OrvoPluginManager manager(nullptr);
    manager.setPluginSuchPfad("/a/./b/../c//d/");
    EXPECT_EQ(manager.getPluginSuchPfad(), "/a/c/d");
    manager.setPluginSuchPfad("irgendwo");
    EXPECT_EQ(manager.getPluginSuchPfad(), (std::filesystem::current_path() / "irgendwo").string());
    manager.initPluginSuchPfad();
    EXPECT_EQ(manager.getPluginSuchPfad(), heimat.ort());
}

TEST_F(OrvoPluginManagerTest, LoadsOneLibraryOnRequest) {
    OrvoPluginManager manager(&zeuge);
    EXPECT_TRUE(manager.ladePlugin(heimat.ort("liba.dylib")));
    EXPECT_THAT(plugins(manager), ElementsAre("liba.dylib", "libb.dylib", "liba.dylib"));
    EXPECT_FALSE(manager.ladePlugin(heimat.ort("libfehlt.dylib")));
    EXPECT_FALSE(manager.ladePlugin(""));
    EXPECT_EQ(manager.getRegistriertePlugins().size(), 3U);
}

TEST_F(OrvoPluginManagerTest, DoesTheSameWithoutALog) {
    heimat.lege(test_plugins::ThrowsIntFromInitialize, "libaa.dylib");
    OrvoPluginManager manager(&zeuge);
    manager.reload();
    EXPECT_THAT(ereignisse, ElementsAre("+liba.dylib", "+libb.dylib", "-liba.dylib", "-libb.dylib",
                                        "+liba.dylib", "+libb.dylib"));
    EXPECT_EQ(manager.getStatus(), 1);
}
