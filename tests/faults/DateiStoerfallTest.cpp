// Faults in the plugin directory: other files in place of a plugin, and odd names.

#include "faults/Stoerfall.h"

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>

#include "TestPlugins.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

class DateiStoerfall : public Stoerfall {
protected:
    /// A healthy plugin under a name of its own.
    void erwarteGeladenAls(const std::string& name) {
        schlechtes = plugin(name);
        legeSchlechtes(test_plugins::DescribedByFile, kEinCheck);
        erwarteGeladen();
        erwarteBrauchbar(kDazwischen, schlechtes);
    }
};

} // namespace

TEST_F(DateiStoerfall, ADirectoryNamedLikeAPluginIsWalkedThrough) {
    home.legeAn("plugins/libmmm.dylib");
    EXPECT_TRUE(starte());
    EXPECT_EQ(log.anzahl("[OrvoPluginManager|99|Suche Plugins im Verzeichnis: " + schlechtes + "|99]"), 1);
    EXPECT_EQ(log.anzahl("[OrvoPluginManager|99|Lese Bibliothek: " + schlechtes + "|99]"), 0);
    EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libzzz.dylib"}));
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

TEST_F(DateiStoerfall, AFifoIsPassedOver) {
    ASSERT_EQ(mkfifo(schlechtes.c_str(), 0666), 0);
    erwarteUebergangen();
}

TEST_F(DateiStoerfall, ASocketIsPassedOver) {
    ASSERT_EQ(mknod(schlechtes.c_str(), S_IFSOCK | 0666, 0), 0); // `bind` takes no long path
    erwarteUebergangen();
}

TEST_F(DateiStoerfall, ADeviceIsPassedOver) {
    if (mknod(schlechtes.c_str(), S_IFCHR | 0666, makedev(1, 5)) != 0) { // /dev/zero
        ASSERT_EQ(errno, EPERM);
        GTEST_SKIP() << "devices can be made by root only; a link to one has a test of its own";
    }
    erwarteUebergangen();
}

TEST_F(DateiStoerfall, ALinkToADeviceIsPassedOver) {
    fs::create_symlink("/dev/zero", schlechtes);
    erwarteUebergangen();
}

TEST_F(DateiStoerfall, ALinkToAFifoIsPassedOver) {
    ASSERT_EQ(mkfifo(home.pfad("fifo").c_str(), 0666), 0);
    fs::create_symlink(home.pfad("fifo"), schlechtes);
    erwarteUebergangen();
}

TEST_F(DateiStoerfall, ADanglingLinkIsPassedOver) {
    fs::create_symlink(home.pfad("nirgends"), schlechtes);
    erwarteUebergangen();
}

TEST_F(DateiStoerfall, ALinkToItselfIsPassedOver) {
    fs::create_symlink("libmmm.dylib", schlechtes);
    erwarteUebergangen();
}

TEST_F(DateiStoerfall, ALinkToItsOwnDirectoryIsPassedOver) {
    fs::create_directory_symlink(".", schlechtes);
    erwarteUebergangen();
}

TEST_F(DateiStoerfall, ALoopOfDirectoryLinksIsPassedOver) {
    home.legeAn("plugins/eins");
    home.legeAn("plugins/zwei");
    fs::create_directory_symlink("../zwei", plugin("eins/libmmm.dylib"));
    fs::create_directory_symlink("../eins", plugin("zwei/libmmm.dylib"));
    schlechtes = "libmmm.dylib";
    erwarteUebergangen();
}

TEST_F(DateiStoerfall, AHiddenFileIsPassedOver) {
    schlechtes = plugin(".libmmm.dylib");
    legeSchlechtes(test_plugins::DescribedByFile, kEinCheck);
    erwarteUebergangen();
}

TEST_F(DateiStoerfall, AHiddenDirectoryIsPassedOver) {
    lege(test_plugins::DescribedByFile, ".alt/libmmm.dylib", kEinCheck);
    schlechtes = "libmmm.dylib";
    erwarteUebergangen();
}

TEST_F(DateiStoerfall, AFileOfAnotherSuffixIsPassedOver) {
    schlechtes = plugin("libmmm.dylib.bak");
    legeSchlechtes(test_plugins::DescribedByFile, kEinCheck);
    erwarteUebergangen();
}

TEST_F(DateiStoerfall, ALinkToAPluginElsewhereIsLoaded) {
    fs::create_symlink(home.kopiere(test_plugins::DescribedByFile, "anderswo/ziel"), schlechtes);
    home.schreibe("plugins/libmmm.dylib.txt", kEinCheck);
    erwarteGeladen();
}

TEST_F(DateiStoerfall, ANameThatIsNotUtf8IsLoaded) { erwarteGeladenAls("libm\xFF\xFE\xC3.dylib"); }

TEST_F(DateiStoerfall, ANameWithBlanksAndUmlautsIsLoaded) {
    erwarteGeladenAls("libm mit Bl\xE4nken und \xC3\xBC.dylib");
}

TEST_F(DateiStoerfall, ANameWithALineEndIsLoaded) {
    // The memory map writes such a name with an escape, so only the log and the registry are asked.
    schlechtes = plugin("libm\nm.dylib");
    legeSchlechtes(test_plugins::DescribedByFile, kEinCheck);
    erwarteGeladen();
}

TEST_F(DateiStoerfall, ANameOf255BytesIsLoaded) {
    // The name is too long for a text file beside it, so this plugin offers nothing.
    schlechtes = plugin("lib" + std::string(246, 'm') + ".dylib");
    legeSchlechtes(test_plugins::DescribedByFile);
    erwarteGeladen();
}

TEST_F(DateiStoerfall, ANameOfTheSuffixAloneIsPassedOver) {
    schlechtes = plugin(".dylib");
    legeSchlechtes(test_plugins::DescribedByFile, kEinCheck);
    erwarteUebergangen();
}

TEST_F(DateiStoerfall, ABlockedNameIsPassedOverWithALine) {
    schlechtes = plugin("libZELMAK98.dylib");
    legeSchlechtes(test_plugins::DescribedByFile, kEinCheck);
    erwarteUebergangen();
    EXPECT_EQ(log.anzahl("[OrvoPluginManager|99|Plugin libZELMAK98.dylib in Sperrliste. Wird ignoriert|99]"),
              1);
}

TEST_F(DateiStoerfall, ThreeHundredDirectoryLevelsAreWalked) {
    std::string tief;
    for (int i = 0; i < 300; ++i)
        tief += "d/";
    schlechtes = lege(test_plugins::DescribedByFile, tief + "libmmm.dylib", kEinCheck);
    EXPECT_TRUE(starte());
    EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libzzz.dylib", tief + "libmmm.dylib"}));
    EXPECT_EQ(warnungen(), Zeilen{});
    erwarteSpurlos();
    erwarteHeileBrauchbar();
    erwarteBrauchbar(kDazwischen, schlechtes);
}

TEST_F(DateiStoerfall, OfTwoThousandFilesEachIsTried) {
    legeSchlechtes(test_plugins::DescribedByFile);
    for (int i = 0; i < 1000; ++i) {
        const std::string nummer = std::to_string(1000 + i);
        home.schreibe("plugins/libn" + nummer + ".dylib", "kein Plugin");
        fs::create_hard_link(schlechtes, plugin("libo" + nummer + ".dylib"));
    }
    EXPECT_FALSE(starte());
    EXPECT_EQ(geladene().size(), 1003u);
    EXPECT_EQ(ablehnungen().size(), 1000u);
    EXPECT_EQ(warnungen(), Zeilen{});
    erwarteSpurlos();
    erwarteHeileBrauchbar();
}

TEST_F(DateiStoerfall, AnUnreadablePluginDirectoryHasNoPlugins) {
    fs::permissions(home.pfad("plugins"), fs::perms::none);
    imKindprozess(
        [&] {
            EXPECT_TRUE(starte());
            EXPECT_EQ(geladene(), Zeilen{});
            EXPECT_EQ(warnungen(),
                      Zeilen{"W Verzeichnis nicht lesbar: " + home.pfad("plugins") + ": Permission denied"});
        },
        Benutzer::NIEMAND);
    fs::permissions(home.pfad("plugins"), fs::perms::all);
    EXPECT_TRUE(starte());
    erwarteHeileBrauchbar();
}

TEST_F(DateiStoerfall, AnUnreadableSubdirectoryIsReportedAndCostsNothingElse) {
    lege(test_plugins::DescribedByFile, "geheim/libmmm.dylib", kEinCheck);
    fs::permissions(plugin("geheim"), fs::perms::none);
    imKindprozess(
        [&] {
            erwarteAusgang(true, {"libaaa.dylib", "libzzz.dylib"}, {},
                           {"W Verzeichnis nicht lesbar: " + plugin("geheim") + ": Permission denied"});
        },
        Benutzer::NIEMAND);
    fs::permissions(plugin("geheim"), fs::perms::all);
}

TEST_F(DateiStoerfall, AFileThatMayNotBeReadIsRefused) {
    legeSchlechtes(test_plugins::DescribedByFile, kEinCheck);
    fs::permissions(schlechtes, fs::perms::none);
    imKindprozess(
        [&] {
            erwarteNichtGeoeffnet("kann nicht ge\xF6"
                                  "ffnet werden: Permission denied");
        },
        Benutzer::NIEMAND);
}

TEST_F(DateiStoerfall, ASuffixInCapitalsIsLookedForInSmallLettersAndRefused) {
    schlechtes = plugin("libmmm.DYLIB");
    legeSchlechtes(test_plugins::DescribedByFile, kEinCheck);
    schlechtes = plugin("libmmm.dylib");
    erwarteNichtGeoeffnet(kFehlt);
}

TEST_F(DateiStoerfall, ASuffixInBothSpellingsLoadsTheSmallOneTwice) {
    lege(test_plugins::DescribedByFile, "libmmm.DYLIB", kEinCheck);
    lege(test_plugins::DescribedByFile, "libmmm.dylib", kEinCheck);
    EXPECT_TRUE(starte());
    EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libmmm.dylib", "libmmm.dylib", "libzzz.dylib"}));
    erwarteSpurlos();
    erwarteHeileBrauchbar();
    erwarteBrauchbar(kDazwischen, schlechtes);
}

TEST_F(DateiStoerfall, ANameWithAPlaceholderOfTheLoaderIsRefused) {
    schlechtes = plugin("lib$ORIGIN.dylib");
    legeSchlechtes(test_plugins::DescribedByFile, kEinCheck);
    erwarteNichtGeoeffnet("Platzhalter im Namen: $ORIGIN");
}
