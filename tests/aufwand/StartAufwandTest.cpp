// The cost of finding, checking and describing plugins.

#include "Zaehler.h"

#include <orvoplugin/plugin/LadeBeobachter.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/ObjectLifetimeManager.h>
#include <orvoutil/SharedLib.h>

#include "Systemaufrufe.h"
#include "TestPlugins.h"
#include "support/Beschriftung.h"
#include "support/Prozess.h"
#include "support/Verzeichnis.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>

namespace {

namespace fs = std::filesystem;
using orvo::orvoutil::SharedLib;

constexpr int kPlugins = 5;

class StartAufwand : public testing::Test {
protected:
    void SetUp() override {
        if (!Zaehler::zaehltLader())
            GTEST_SKIP() << "the system's calls are not counted here";
        home_.legeAn("plugins");
    }
    ~StartAufwand() override {
        orvo::orvoutil::ObjectLifetimeManager::instance().destroyAll();
        orvo::orvoutil::Einstellungen().setze("basis.plugin_beschreibungen", "");
    }

    void legePluginsAn(const std::string& verzeichnis) const {
        for (int i = 0; i < kPlugins; ++i)
            home_.kopiere(test_plugins::StrippedOfDebugInformation,
                          verzeichnis + "/libstart" + std::to_string(i) + ".dylib");
    }

    Zaehler starte() const {
        orvo::orvoutil::Einstellungen().setze("basis.home_dir", home_.pfad());
        return Zaehler::waehrend([] { OrvoErweiterungsManager::getInstanz(); });
    }

    static std::size_t geladene() {
        return OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins().size();
    }

    const Verzeichnis home_;
};

/// Whether one read covers the whole file, as with delivered plugins.
bool istKlein(const char* datei) { return fs::file_size(datei) < 32768; }

TEST_F(StartAufwand, ListsEachDirectoryOnce) {
    home_.legeAn("plugins/a/b");
    home_.legeAn("plugins/c");
    legePluginsAn("plugins");
    legePluginsAn("plugins/a/b");
    EXPECT_EQ(starte().verzeichnisse, 4);
    EXPECT_EQ(geladene(), 2u * kPlugins);
}

TEST_F(StartAufwand, OpensAndClosesEachPluginOnceAndLooksTwoSymbolsUp) {
    legePluginsAn("plugins");
    const Zaehler zaehler = starte();
    EXPECT_EQ(geladene(), std::size_t{kPlugins});
    EXPECT_EQ(zaehler.oeffnungen, kPlugins);
    EXPECT_EQ(zaehler.schliessungen, kPlugins);
    EXPECT_EQ(zaehler.symbolsuchen, 2 * kPlugins);
}

TEST_F(StartAufwand, ReadsEachPluginOnceAndAsksNothingElseAboutIt) {
    if (!istKlein(test_plugins::StrippedOfDebugInformation))
        GTEST_SKIP() << "the plugins of this build are large";
    legePluginsAn("plugins");
    const Zaehler zaehler = starte();
    EXPECT_EQ(geladene(), std::size_t{kPlugins});
    EXPECT_EQ(zaehler.dateien, kPlugins + 1); // the first one also to learn whether it is in memory
    EXPECT_EQ(zaehler.lesungen, kPlugins);
    EXPECT_EQ(zaehler.zustaende, 0);
}

TEST_F(StartAufwand, AFileOfAnotherKindIsNotTouched) {
    legePluginsAn("plugins");
    home_.schreibe("plugins/readme.txt", "Text");
    home_.schreibe("plugins/libalt.dylib.bak", "Text");
    const Zaehler zaehler = starte();
    EXPECT_EQ(zaehler.dateien, kPlugins + 1);
    EXPECT_EQ(zaehler.oeffnungen, kPlugins);
}

TEST_F(StartAufwand, TakesMemoryForWhatItKeepsAndForFewOtherThings) {
    const auto zuteilungen = [&] {
        const int anzahl = starte().zuteilungen;
        orvo::orvoutil::ObjectLifetimeManager::instance().destroyAll();
        return anzahl;
    };
    home_.legeAn("plugins/weitere");
    legePluginsAn("plugins");
    zuteilungen(); // fills what is kept for all starts
    const int wenige = zuteilungen();
    legePluginsAn("plugins/weitere");
    const int viele = zuteilungen();
    // Kept: the plugin and the manager's note of it, its library and that one's name and owner. Passing: an entry of the
    // directory's list, its name, its path, and the type record.
    EXPECT_LE((viele - wenige) / kPlugins, 5 + 4);
}

TEST_F(StartAufwand, ADescribedPluginIsReadOnceAndNotOpened) {
    legePluginsAn("plugins");
    for (const auto& datei : fs::directory_iterator(home_.pfad("plugins")))
        beschrifte(datei.path());
    orvo::orvoutil::Einstellungen().setze("basis.plugin_beschreibungen", "eingebettet");
    const Zaehler zaehler = starte();
    EXPECT_EQ(geladene(), std::size_t{kPlugins});
    EXPECT_EQ(zaehler.dateien, kPlugins + 1); // with the closing, three calls of the system for a plugin
    EXPECT_EQ(zaehler.lesungen, kPlugins);
    EXPECT_EQ(zaehler.zustaende, 0);
    EXPECT_EQ(zaehler.oeffnungen, 0);
    EXPECT_EQ(zaehler.symbolsuchen, 0);
}

/// Files that are not in memory are announced before they are loaded.
class Vorlauf : public StartAufwand {
protected:
    using enum Zaehler::Speicherort;
    static constexpr int kFenster = 8;

    Zaehler starteMit(Zaehler::Speicherort ort) const {
        Zaehler::setzeSpeicherort(ort);
        const Zaehler zaehler = starte();
        Zaehler::setzeSpeicherort(IM_SPEICHER);
        return zaehler;
    }
    void legeAn(int anzahl) const {
        for (int i = 0; i < anzahl; ++i)
            home_.kopiere(test_plugins::StrippedOfDebugInformation,
                          "plugins/libkalt" + std::to_string(10 + i) + ".dylib");
    }
};

TEST_F(Vorlauf, AsksOnceForADirectoryInMemoryAndAnnouncesNothing) {
    legePluginsAn("plugins");
    legePluginsAn("plugins/a");
    home_.legeAn("plugins/leer");
    const Zaehler zaehler = starteMit(IM_SPEICHER);
    EXPECT_EQ(geladene(), 2u * kPlugins);
    EXPECT_EQ(zaehler.fragen, 2);
    EXPECT_EQ(zaehler.dateien, 2 * kPlugins + 2);
    EXPECT_EQ(zaehler.ansagen, 0);
}

TEST_F(Vorlauf, AnnouncesEachFileOnceInAWindowAheadOfTheLoading) {
    constexpr int kAnzahl = 3 * kFenster;
    legeAn(kAnzahl);
    const int deskriptoren = offeneDeskriptoren();
    Zaehler::setzeSpeicherort(AUF_DER_PLATTE);
    const Zaehler zaehler = starte();
    EXPECT_EQ(offeneDeskriptoren(), deskriptoren);
    EXPECT_EQ(Zaehler::groessterVorsprung(), kFenster);
    Zaehler::setzeSpeicherort(IM_SPEICHER);
    EXPECT_EQ(geladene(), std::size_t{kAnzahl});
    EXPECT_EQ(zaehler.fragen, 1);
    EXPECT_EQ(zaehler.ansagen, kAnzahl);
}

TEST_F(Vorlauf, AnnouncesFewerFilesThanTheWindowHolds) {
    legeAn(3);
    EXPECT_EQ(starteMit(AUF_DER_PLATTE).ansagen, 3);
    EXPECT_EQ(geladene(), 3u);
}

TEST_F(Vorlauf, AnnouncesOnlyWhatWillBeLoaded) {
    legeAn(2);
    home_.schreibe("plugins/anleitung.txt", "Text");
    home_.schreibe("plugins/libzelmak98.dylib", "gesperrt");
    home_.schreibe("plugins/libalt.dylib.bak", "Text");
    EXPECT_EQ(starteMit(AUF_DER_PLATTE).ansagen, 2);
}

TEST_F(Vorlauf, AnnouncesWholeFilesUnlessTheirDescriptionsAreEnough) {
    legeAn(1);
    starteMit(AUF_DER_PLATTE);
    EXPECT_EQ(Zaehler::zuletztAngesagteBytes(), 0) << "the whole file";
    orvo::orvoutil::ObjectLifetimeManager::instance().destroyAll();
    orvo::orvoutil::Einstellungen().setze("basis.plugin_beschreibungen", "eingebettet");
    starteMit(AUF_DER_PLATTE);
    EXPECT_EQ(Zaehler::zuletztAngesagteBytes(), 16 << 10);
}

TEST_F(Vorlauf, GoesOnAsBeforeWhereTheSystemCannotTell) {
    legePluginsAn("plugins");
    for (const Zaehler::Speicherort ort : {UNBEKANNT, LEER}) {
        const Zaehler zaehler = starteMit(ort);
        EXPECT_EQ(geladene(), std::size_t{kPlugins});
        EXPECT_EQ(zaehler.fragen, 1);
        EXPECT_EQ(zaehler.ansagen, 0);
        orvo::orvoutil::ObjectLifetimeManager::instance().destroyAll();
    }
}

TEST_F(Vorlauf, PassesOverAFileThatIsGoneAgain) {
    struct Entferner : LadeBeobachter {
        void findetDatei(const std::string&, const std::string&, Dateiart,
                         const std::string& pfad) noexcept override {
            if (pfad.ends_with("libkalt10.dylib"))
                fs::remove(pfad);
        }
    } entferner;
    legeAn(3);
    OrvoPluginManager::setLadeBeobachter(&entferner);
    const int ansagen = starteMit(AUF_DER_PLATTE).ansagen;
    OrvoPluginManager::setLadeBeobachter(nullptr);
    EXPECT_EQ(ansagen, 2);
    EXPECT_EQ(geladene(), 2u);
}

TEST_F(Vorlauf, DoesNotWaitForTheWriterOfAFileThatIsAFifoMeanwhile) {
    struct Vertauscher : LadeBeobachter {
        void findetDatei(const std::string&, const std::string&, Dateiart,
                         const std::string& pfad) noexcept override {
            if (pfad.ends_with("libkalt10.dylib") && fs::remove(pfad))
                mkfifo(pfad.c_str(), 0600);
        }
    } vertauscher;
    legeAn(3);
    OrvoPluginManager::setLadeBeobachter(&vertauscher);
    starteMit(AUF_DER_PLATTE);
    OrvoPluginManager::setLadeBeobachter(nullptr);
    EXPECT_EQ(geladene(), 2u);
}

TEST_F(Vorlauf, NeedsNoStandardInput) {
    legeAn(3);
    const int eingabe = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    const int ansagen = starteMit(AUF_DER_PLATTE).ansagen;
    EXPECT_EQ(fcntl(STDIN_FILENO, F_GETFD), -1) << "each file is closed again";
    dup2(eingabe, STDIN_FILENO);
    close(eingabe);
    EXPECT_EQ(ansagen, 3);
}

#ifdef __x86_64__

/// All system calls that each further plugin costs, also the loader's.
class Systemaufrufe : public StartAufwand {
protected:
    std::optional<double> jePlugin(const char* plugin) const {
        const auto mitZwei = beimStartMit(plugin, 2);
        const auto mitZwoelf = beimStartMit(plugin, 12);
        return mitZwei && mitZwoelf ? std::optional((*mitZwoelf - *mitZwei) / 10.0) : std::nullopt;
    }

private:
    std::optional<int> beimStartMit(const char* plugin, int anzahl) const {
        for (int i = 0; i < anzahl; ++i)
            home_.kopiere(plugin, "plugins/libaufruf" + std::to_string(10 + i) + ".dylib");
        orvo::orvoutil::Einstellungen().setze("basis.home_dir", home_.pfad());
        const Zaehler vorher = Zaehler::bisher();
        return zaehleSystemaufrufe([&] {
            OrvoErweiterungsManager::getInstanz();
            return Zaehler::bisher().schliessungen - vorher.schliessungen == anzahl;
        });
    }
};

TEST_F(Systemaufrufe, AreElevenForASmallPlugin) {
    if (!istKlein(test_plugins::StrippedOfDebugInformation))
        GTEST_SKIP() << "the plugins of this build are large";
    EXPECT_LE(jePlugin(test_plugins::StrippedOfDebugInformation).value_or(0), 11);
}

TEST_F(Systemaufrufe, AreThirteenForSixtyKilobytes) {
    ASSERT_GT(fs::file_size(test_plugins::OfSixtyKilobytes), 58'000u);
    EXPECT_LE(jePlugin(test_plugins::OfSixtyKilobytes).value_or(0), 13);
}

TEST_F(Systemaufrufe, AreThirteenForFourMegabytes) {
    ASSERT_GT(fs::file_size(test_plugins::OfFourMegabytes), 3'500'000u);
    EXPECT_LE(jePlugin(test_plugins::OfFourMegabytes).value_or(0), 13);
}

#endif

class Wiederoeffnen : public StartAufwand {
protected:
    static Zaehler oeffneUndSchliesse(SharedLib& bibliothek) {
        const Zaehler zaehler =
            Zaehler::waehrend([&] { EXPECT_TRUE(bibliothek.load()) << bibliothek.getLastError(); });
        bibliothek.unload();
        return zaehler;
    }
    /// The link is new; its target is as old as the build.
    void zeigeAuf(const std::string& ziel) const {
        fs::remove(link_);
        fs::create_symlink(ziel, link_);
    }

    const std::string link_ = home_.pfad("plugins/link.dylib");
};

TEST_F(Wiederoeffnen, TakesTheSameEachTimeAndNoMemory) {
    zeigeAuf(test_plugins::StrippedOfDebugInformation);
    SharedLib bibliothek(link_);
    oeffneUndSchliesse(bibliothek);
    void* griff = nullptr;
    const Zaehler lader = Zaehler::waehrend([&] { griff = dlopen(link_.c_str(), RTLD_NOW | RTLD_LOCAL); });
    dlclose(griff);
    for (int i = 0; i < 3; ++i) {
        const Zaehler zaehler = oeffneUndSchliesse(bibliothek);
        EXPECT_EQ(zaehler.dateien, 1);
        EXPECT_LE(zaehler.lesungen, 3);
        EXPECT_EQ(zaehler.zustaende, 0);
        EXPECT_EQ(zaehler.zuteilungen, lader.zuteilungen) << "what the library's start-up code takes";
    }
}

TEST_F(Wiederoeffnen, AFileThatWasExchangedOrCutSinceIsRefused) {
    zeigeAuf(test_plugins::StrippedOfDebugInformation);
    SharedLib bibliothek(link_);
    oeffneUndSchliesse(bibliothek);
    const std::string datei = home_.kopiere(test_plugins::DescribedByFile, "plugins/libx.dylib");
    fs::resize_file(datei, fs::file_size(datei) / 2);
    zeigeAuf(datei);
    EXPECT_FALSE(bibliothek.load());
    EXPECT_NE(bibliothek.getLastError().find("abgeschnitten"), std::string::npos)
        << bibliothek.getLastError();
    zeigeAuf(test_plugins::DescribedByFile);
    oeffneUndSchliesse(bibliothek);
}

} // namespace
