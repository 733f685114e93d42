// Faults in the settings: home directories of all kinds, and lists of resident plugins.
//
// The list of residents is read once for the process, so each test about it runs in a child process.

#include "faults/Stoerfall.h"

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>

#include "TestPlugins.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <utility>

using orvo::orvoutil::Einstellungen;

namespace {

/// The directory of the utility library; empty if the memory map does not show it.
std::string verzeichnisDerBibliothek() {
    std::ifstream karte("/proc/self/maps");
    for (std::string zeile; std::getline(karte, zeile);)
        if (const auto ende = zeile.find("/liborvoutil."); ende != std::string::npos)
            return zeile.substr(zeile.find('/'), ende - zeile.find('/'));
    return {};
}

/// One line for each entry that ends in a comma, each time the list is read. A list without such an entry is read for
/// each plugin and prints nothing.
std::string erwartetesEcho(const std::string& liste) {
    std::string echo, eintrag;
    for (const char zeichen : liste) {
        if (zeichen == ',')
            echo += "Resident Plugin: " + std::exchange(eintrag, "") + "\n";
        else
            eintrag += zeichen;
    }
    return echo;
}

class EinstellungStoerfall : public Stoerfall {
protected:
    /// Starts with that home directory, below which there are no plugins. The system's reason, if it has one, is told.
    void erwarteNichtsIn(const std::string& heimat, const std::string& suchpfad,
                         const std::string& grund = "") {
        Einstellungen().setze("basis.home_dir", heimat);
        EXPECT_TRUE(starte());
        EXPECT_EQ(manager->getPluginSuchPfad(), suchpfad);
        EXPECT_EQ(log.anzahl("[OrvoPluginManager|99|Suche Plugins im Verzeichnis: " + suchpfad + "|99]"), 1);
        EXPECT_EQ(geladene(), Zeilen{});
        EXPECT_EQ(warnungen(), grund.empty()
                                   ? Zeilen{}
                                   : Zeilen{"W Verzeichnis nicht lesbar: " + suchpfad + ": " + grund});
        EXPECT_EQ(finde(kVorher), nullptr);
        erwarteSpurlos();

        log.leere();
        Einstellungen().setze("basis.home_dir", home.pfad()); // the next change works again
        erwarteHeilesHeim(home.pfad());
    }

    void erwarteHeilesHeim(const std::string& heimat) {
        EXPECT_EQ(manager->getPluginSuchPfad(), heimat + "/plugins");
        EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libzzz.dylib"}));
        EXPECT_EQ(ablehnungen(), Zeilen{});
        EXPECT_EQ(warnungen(), Zeilen{});
        erwarteSpurlos();
        erwarteHeileBrauchbar();
    }

    /// Starts, in a child process, with that list; only these plugins are resident then.
    void erwarteResident(const std::string& liste, const Zeilen& residente) {
        imKindprozess([&] {
            std::ostringstream echo;
            std::streambuf* const ausgabe = std::cout.rdbuf(echo.rdbuf());
            Einstellungen().setze("basis.resident_plugins", liste);
            legeSchlechtes(test_plugins::DescribedByFile, "produktversion 1.0\nloeschen\ncheck 50 2009\n");
            EXPECT_TRUE(starte());
            std::cout.rdbuf(ausgabe);
            EXPECT_EQ(echo.str(), erwartetesEcho(liste));
            EXPECT_EQ(warnungen(), Zeilen{});
            Zeilen gefundene;
            for (const std::string& name : geladene())
                if (geladenes(plugin(name))->isResident())
                    gefundene.push_back(name);
            EXPECT_EQ(gefundene, residente);
            erwarteHeileBrauchbar();
            erwarteBrauchbar(kDazwischen, schlechtes);
            EXPECT_TRUE(manager->entladePlugins());
            erwarteSpurlos();
        });
    }
};

} // namespace

TEST_F(EinstellungStoerfall, AnUnsetHomeDirectoryIsTheLibrarysOwnAndNeverTheCurrentOne) {
    const std::string verzeichnis = verzeichnisDerBibliothek();
    ASSERT_NE(verzeichnis, "");
    const std::filesystem::path hier = std::filesystem::current_path();
    std::filesystem::current_path(home.pfad());
    erwarteNichtsIn("", verzeichnis + "/plugins");
    std::filesystem::current_path(hier);
}

TEST_F(EinstellungStoerfall, ARelativeHomeDirectoryIsTakenFromTheCurrentOne) {
    const std::filesystem::path hier = std::filesystem::current_path();
    std::filesystem::current_path(home.pfad() + "/..");
    Einstellungen().setze("basis.home_dir", "./" + std::filesystem::path(home.pfad()).filename().string());
    EXPECT_TRUE(starte());
    std::filesystem::current_path(hier); // the path is already absolute
    erwarteHeilesHeim(home.pfad());
    EXPECT_TRUE(ladeNeu());
    erwarteHeilesHeim(home.pfad());
}

TEST_F(EinstellungStoerfall, AHomeDirectoryWithTrailingSlashesIsThatDirectory) {
    Einstellungen().setze("basis.home_dir", home.pfad() + "///");
    EXPECT_TRUE(starte());
    erwarteHeilesHeim(home.pfad());
}

TEST_F(EinstellungStoerfall, AHomeDirectoryWithDotsIsThatDirectory) {
    Einstellungen().setze("basis.home_dir", home.pfad() + "/./plugins/../../" +
                                                std::filesystem::path(home.pfad()).filename().string());
    EXPECT_TRUE(starte());
    erwarteHeilesHeim(home.pfad());
}

TEST_F(EinstellungStoerfall, AHomeDirectoryWithBlanksAndUmlautsIsThatDirectory) {
    const std::string anderes = home.legeAn(" mein \xFC"
                                            "bliches \xC3\xBC Heim ");
    std::filesystem::copy(home.pfad("plugins"), anderes + "/plugins",
                          std::filesystem::copy_options::recursive);
    Einstellungen().setze("basis.home_dir", anderes);
    EXPECT_TRUE(starte());
    EXPECT_EQ(manager->getPluginSuchPfad(), anderes + "/plugins");
    EXPECT_EQ(manager->getRegistriertePlugins().size(), 2u);
    erwarteSpurlos();
    erwarteBrauchbar(kVorher, anderes + "/plugins/libaaa.dylib");
    erwarteBrauchbar(kNachher, anderes + "/plugins/libzzz.dylib");
}

TEST_F(EinstellungStoerfall, AHomeDirectoryThatDoesNotExistHasNoPlugins) {
    erwarteNichtsIn(home.pfad("nirgends"), home.pfad("nirgends/plugins"));
}

TEST_F(EinstellungStoerfall, AHomeDirectoryThatIsAFileHasNoPlugins) {
    erwarteNichtsIn(home.schreibe("eine Datei", "kein Verzeichnis"), home.pfad("eine Datei/plugins"),
                    "Not a directory");
}

TEST_F(EinstellungStoerfall, AHomeDirectoryWithANullByteHasNoPlugins) {
    const std::string heimat = home.pfad() + std::string("\0/anderswo", 10);
    erwarteNichtsIn(heimat, heimat + "/plugins");
}

TEST_F(EinstellungStoerfall, AHomeDirectoryOfEndlessLengthHasNoPlugins) {
    const std::string heimat = "/" + std::string(100000, 'x');
    erwarteNichtsIn(heimat, heimat + "/plugins", "File name too long");
}

TEST_F(EinstellungStoerfall, AHomeDirectoryWithoutAPluginDirectoryHasNoPlugins) {
    const std::string leeres = home.legeAn("leeres");
    erwarteNichtsIn(leeres, leeres + "/plugins");
}

TEST_F(EinstellungStoerfall, AHomeDirectoryChangedToItselfLoadsNothingAnew) {
    EXPECT_TRUE(starte());
    OrvoPlugin* const dasselbe = geladenes(vorher);
    log.leere();
    Einstellungen().setze("basis.home_dir", home.pfad());
    EXPECT_EQ(log.zeilen(), Zeilen{});
    EXPECT_EQ(geladenes(vorher), dasselbe);
    erwarteHeilesHeim(home.pfad());
}

TEST_F(EinstellungStoerfall, AHomeDirectoryChangedWhileAServiceIsOutUnloadsItsLibrary) {
    legeSchlechtes(test_plugins::DescribedByFile, "factory gleicherService\ncheck 50 2009\n");
    EXPECT_TRUE(starte());
    ASSERT_NE(finde(kDazwischen), nullptr);
    ASSERT_NE(finde(kDazwischen)->holeService(), nullptr); // not to be touched from now on
    Einstellungen().setze("basis.home_dir", home.pfad("nirgends"));
    EXPECT_EQ(geladene(), Zeilen{});
    EXPECT_EQ(warnungen(), Zeilen{"W Services beim Entladen nicht zur\xFC"
                                  "ckgegeben: 1. Erweiterung: ORVO_CHECK_SERVICE_ERWEITERUNG, "
                                  "Factory: gleicherService"});
    erwarteSpurlos();

    Einstellungen().setze("basis.home_dir", home.pfad());
    EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libmmm.dylib", "libzzz.dylib"}));
    erwarteHeileBrauchbar();
}

TEST_F(EinstellungStoerfall, ResidentsOfCommasOnlyAreNone) { erwarteResident(",,,,", {}); }

TEST_F(EinstellungStoerfall, AResidentWithoutACommaIsNone) { erwarteResident("mmm", {}); }

TEST_F(EinstellungStoerfall, TheLastResidentWithoutACommaIsNone) {
    erwarteResident("aaa,mmm", {"libaaa.dylib"});
}

TEST_F(EinstellungStoerfall, AllAsTheLastResidentWithoutACommaIsNone) { erwarteResident("alle", {}); }

TEST_F(EinstellungStoerfall, AllWithACommaAreResident) {
    erwarteResident("alle,", {"libaaa.dylib", "libmmm.dylib", "libzzz.dylib"});
}

TEST_F(EinstellungStoerfall, ResidentsThatAreNoPluginsAreNone) {
    erwarteResident("libmmm.dylib,MMM, mmm,mmm ,lib,.dylib,\xFC,", {});
}

TEST_F(EinstellungStoerfall, AHundredThousandResidentsAreRead) {
    std::string liste;
    for (int i = 0; i < 100000; ++i)
        liste += "plugin" + std::to_string(i) + ",";
    erwarteResident(liste + "mmm,", {"libmmm.dylib"});
}
