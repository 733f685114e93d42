// Which files below the plugin directory the manager takes for plugins, and in which order.

#include <orvoplugin/plugin/OrvoPluginManager.h>

#include "orvoplugin/plugin/Werkstatt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using orvo::orvoutil::Einstellungen;
using orvo::orvoutil::LogLevel;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

namespace fs = std::filesystem;

struct OrvoPluginManagerDiscovery : testing::Test {
    Heimat heimat;

    static std::string suche(const std::string& verzeichnis) {
        return markiert("Suche Plugins im Verzeichnis: " + verzeichnis);
    }
    static std::string lese(const std::string& pfad) { return markiert("Lese Bibliothek: " + pfad); }
};

} // namespace

TEST_F(OrvoPluginManagerDiscovery, LoadsTheFilesOfADirectoryBeforeThoseBelowItDepthFirst) {
    const Mitschnitt log(LogLevel::Error);
    heimat.lege(test_plugins::DescribedByFile, "z.dylib");
    heimat.lege(test_plugins::DescribedByFile, "s/b.dylib");
    heimat.lege(test_plugins::DescribedByFile, "s/t/a.dylib");
    heimat.lege(test_plugins::DescribedByFile, "u/c.dylib");
    heimat.verzeichnis.legeAn("plugins/leer");
    OrvoPluginManager manager(nullptr);
    EXPECT_THAT(plugins(manager), ElementsAre("z.dylib", "b.dylib", "a.dylib", "c.dylib"));

    Zeilen suchen;
    for (const std::string& zeile : log.zeilen())
        if (zeile.find("Suche") != std::string::npos)
            suchen.push_back(zeile);
    EXPECT_THAT(suchen, ElementsAre(suche(heimat.ort()), suche(heimat.ort("leer")), suche(heimat.ort("s")),
                                    suche(heimat.ort("s/t")), suche(heimat.ort("u"))));
}

TEST_F(OrvoPluginManagerDiscovery, LoadsTheFilesOfADirectoryInBytewiseOrder) {
    for (const char* const name : {"libb.dylib", "liba.dylib", "libB.dylib", "lib10.dylib", "lib9.dylib"})
        heimat.lege(test_plugins::DescribedByFile, name);
    OrvoPluginManager manager(nullptr);
    EXPECT_THAT(plugins(manager),
                ElementsAre("lib10.dylib", "lib9.dylib", "libB.dylib", "liba.dylib", "libb.dylib"));
}

TEST_F(OrvoPluginManagerDiscovery, SkipsTheBlockedNamesAsTheyAreListed) {
    const char* const gesperrte[] = {"LIBZELMAK98.DYLIB",      "libBrosmat.dylib",     "libfrendolin.DyLib",
                                     "libquarvelin2009.dylib", "libquorbis2009.dylib", "libwendrup.dylib"};
    Zeilen erwartet{markiert("Starte OrvoPluginManager"), suche(heimat.ort())};
    for (const char* const name : gesperrte) {
        heimat.lege(test_plugins::DescribedByFile, name);
        erwartet.push_back(markiert(std::string("Plugin ") + name + " in Sperrliste. Wird ignoriert"));
    }
    erwartet.push_back(markiert("erfolgreich gestartet")); // a blocked file does not change this
    const Mitschnitt log(LogLevel::Error);
    OrvoPluginManager manager(nullptr);
    EXPECT_THAT(plugins(manager), IsEmpty());
    EXPECT_EQ(log.zeilen(), erwartet);
}

TEST_F(OrvoPluginManagerDiscovery, BlocksWholeNamesOnlyInAnyLetterCase) {
    const OrvoPluginManager manager(nullptr);
    for (const char* const name :
         {"libquarvelin2009.dylib", "libquorbis2009.dylib", "libzelmak98.dylib", "libfrendolin.dylib",
          "libbrosmat.dylib", "libwendrup.dylib", "LIBZELMAK98.DYLIB", "LibWendrup.DyLib"})
        EXPECT_TRUE(manager.isPluginGesperrt(name)) << name;
    for (const char* const name :
         {"zelmak98.dylib", "libzelmak98.so", "libzelmak98", "libzelmak98.dylib.bak", "xlibzelmak98.dylib",
          "libzelmak.dylib", "/plugins/libzelmak98.dylib", " libzelmak98.dylib", "", "libx.dylib"})
        EXPECT_FALSE(manager.isPluginGesperrt(name)) << name;
}

TEST_F(OrvoPluginManagerDiscovery, LoadsABlockedNameWhenAskedForItDirectly) {
    heimat.lege(test_plugins::DescribedByFile, "libfrendolin.dylib");
    OrvoPluginManager manager(nullptr);
    EXPECT_TRUE(manager.ladePlugin(heimat.ort("libfrendolin.dylib")));
}

TEST_F(OrvoPluginManagerDiscovery, PassesOverOtherFilesWithoutAWord) {
    for (const char* const name : {"x.dylib.bak", "readme.txt", "libx.so", "dylib", "x.dylib~", ".libx.dylib",
                                   "xdylib", "x.dylib.", "libx.dyl"})
        heimat.lege(test_plugins::DescribedByFile, name);
    const Mitschnitt log(LogLevel::Error);
    OrvoPluginManager manager(nullptr);
    EXPECT_THAT(log.zeilen(), ElementsAre(markiert("Starte OrvoPluginManager"), suche(heimat.ort()),
                                          markiert("erfolgreich gestartet")));
}

TEST_F(OrvoPluginManagerDiscovery, LooksForAFileWithCapitalsInItsSuffixUnderTheLowerCaseName) {
    heimat.lege(test_plugins::DescribedByFile, "libX.DyLib");
    const Mitschnitt log(LogLevel::Error);
    OrvoPluginManager manager(nullptr);
    EXPECT_EQ(log.anzahl(lese(heimat.ort("libX.dylib"))), 1) << "the name itself keeps its letters";
    EXPECT_THAT(plugins(manager), IsEmpty()) << "a file system that tells letters apart has no such file";
    EXPECT_EQ(log.anzahlMit("Plugin nicht geladen: BIBLIOTHEK_FEHLER: " + heimat.ort("libX.dylib")), 1);
    EXPECT_EQ(log.zeilen().back(), markiert("nicht erfolgreich gestartet"));

    heimat.lege(test_plugins::DescribedByFile, "libX.dylib");
    EXPECT_TRUE(manager.ladePlugins());
    EXPECT_THAT(plugins(manager), ElementsAre("libX.dylib", "libX.dylib"))
        << "once for each of the two files";
}

TEST_F(OrvoPluginManagerDiscovery, TakesOnlyWhatFollowsTheLastDotForTheSuffix) {
    heimat.lege(test_plugins::DescribedByFile, "libA.B.dylib");
    heimat.lege(test_plugins::DescribedByFile, "v1.X/libc.dylib");
    OrvoPluginManager manager(nullptr);
    EXPECT_THAT(plugins(manager), ElementsAre("libA.B.dylib", "libc.dylib"));
}

TEST_F(OrvoPluginManagerDiscovery, TakesADirectoryForADirectoryWhateverItsName) {
    heimat.lege(test_plugins::DescribedByFile, "libd.dylib/libx.dylib");
    heimat.lege(test_plugins::DescribedByFile,
                "libfrendolin.dylib/liby.dylib"); // directories are not blocked
    OrvoPluginManager manager(nullptr);
    EXPECT_THAT(plugins(manager), ElementsAre("libx.dylib", "liby.dylib"));
}

TEST_F(OrvoPluginManagerDiscovery, FollowsLinksToFilesButNotToDirectories) {
    const Verzeichnis anderswo;
    anderswo.kopiere(test_plugins::DescribedByFile, "echt.dylib");
    fs::create_symlink(anderswo.pfad("echt.dylib"), heimat.ort("link.dylib"));
    fs::create_symlink("fehlt.dylib", heimat.ort("tot.dylib"));
    fs::create_directory_symlink(anderswo.pfad(), heimat.ort("anderswo"));
    fs::create_directory_symlink(heimat.ort(), heimat.ort("kreis"));
    OrvoPluginManager manager(nullptr);
    EXPECT_THAT(plugins(manager), ElementsAre("link.dylib"));
    EXPECT_TRUE(manager.ladePlugins());
}

TEST_F(OrvoPluginManagerDiscovery, TriesEveryFileAndDirectoryWhateverFails) {
    heimat.lege(test_plugins::WithoutEntryPoints, "liba.dylib");
    heimat.lege(test_plugins::DescribedByFile, "libb.dylib");
    heimat.verzeichnis.schreibe("plugins/libc.dylib", "");
    heimat.lege(test_plugins::ThrowsIntFromTypes, "s/libd.dylib");
    heimat.lege(test_plugins::DescribedByFile, "s/libe.dylib");
    heimat.lege(test_plugins::DescribedByFile, "t/libf.dylib");
    const Mitschnitt log(LogLevel::Error);
    OrvoPluginManager manager(nullptr);
    EXPECT_THAT(plugins(manager), ElementsAre("libb.dylib", "libe.dylib", "libf.dylib"));
    EXPECT_EQ(log.anzahlMit("Plugin nicht geladen: "), 3);
    EXPECT_EQ(log.anzahl(markiert("Plugin erfolgreich geladen")), 3);
    EXPECT_FALSE(manager.ladePlugins());
}

TEST_F(OrvoPluginManagerDiscovery, ReportsAFailureFarBelow) {
    heimat.lege(test_plugins::DescribedByFile, "liba.dylib");
    heimat.lege(test_plugins::WithoutEntryPoints, "r/s/t/libb.dylib");
    heimat.lege(test_plugins::DescribedByFile, "v/libc.dylib");
    OrvoPluginManager manager(nullptr);
    EXPECT_FALSE(manager.ladePluginsRekursiv(heimat.ort()));
    EXPECT_FALSE(manager.ladePluginsRekursiv(heimat.ort("r")));
    EXPECT_TRUE(manager.ladePluginsRekursiv(heimat.ort("v")));
}

TEST_F(OrvoPluginManagerDiscovery, SearchesBesideTheUtilityLibraryWhenNoHomeIsSet) {
    OrvoPluginManager manager(nullptr);
    Einstellungen().setze("basis.home_dir", "");
    EXPECT_EQ(manager.getPluginSuchPfad(), Einstellungen().basisHomeDir() + "/plugins");
    EXPECT_TRUE(fs::path(manager.getPluginSuchPfad()).is_absolute());
}

TEST_F(OrvoPluginManagerDiscovery, MakesARelativeHomeAbsolute) {
    OrvoPluginManager manager(nullptr);
    Einstellungen().setze("basis.home_dir", "./kein/../solches/");
    EXPECT_EQ(manager.getPluginSuchPfad(), (fs::current_path() / "solches/plugins").string());
}

TEST_F(OrvoPluginManagerDiscovery, AddsToWhatIsThereWhenItLoadsAgain) {
    heimat.lege(test_plugins::DescribedByFile, "liba.dylib");
    OrvoPluginManager manager(nullptr);
    EXPECT_TRUE(manager.ladePlugins()); // does not unload first
    EXPECT_THAT(plugins(manager), ElementsAre("liba.dylib", "liba.dylib"));
}
