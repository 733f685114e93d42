// Faults in a plugin's description: extensions, versions, status, residency, settings.

#include "faults/Stoerfall.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>

#include "TestPlugins.h"

#include <stdexcept>

using orvo::orvoutil::Einstellungen;

namespace {

class ErweiterungStoerfall : public Stoerfall {};

/// An extension class of the host, for the order "host" of the misbehaving plugin.
class HostErweiterung : public OrvoValidierungsServiceErweiterung {
public:
    explicit HostErweiterung(const std::string& wie)
        : OrvoValidierungsServiceErweiterung(Unterfallart(50), Veranlagungszeitraum(2009, "YYYY")),
          wie_(wie) {
        setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    }
    OrvoErweiterung* clone() const override {
        if (wie_ == "wirft")
            throw std::runtime_error("Kopie misslungen");
        return wie_ == "keine" ? nullptr : new HostErweiterung(*this);
    }

private:
    std::string wie_;
};

} // namespace

extern "C" __attribute__((visibility("default"))) OrvoErweiterung* hostErweiterung(const char* wie) {
    return new HostErweiterung(wie);
}

TEST_F(ErweiterungStoerfall, APluginWithoutExtensionsIsLoaded) {
    legeSchlechtes(test_plugins::DescribedByFile);
    erwarteGeladen();
}

TEST_F(ErweiterungStoerfall, TheSameExtensionTwiceIsKeptTwiceAndServesOnce) {
    legeSchlechtes(test_plugins::DescribedByFile, std::string(kEinCheck) + "check 50 2009\n");
    erwarteGeladen();
    erwarteBrauchbar(kDazwischen, schlechtes);
    auto* const plugin = dynamic_cast<OrvoPluginV1*>(geladenes(schlechtes));
    ASSERT_NE(plugin, nullptr);
    ASSERT_EQ(plugin->listeErweiterungen().size(), 2u);
    EXPECT_EQ(finde(kDazwischen), plugin->listeErweiterungen().front());
}

TEST_F(ErweiterungStoerfall, FiveThousandExtensionsAreLoaded) {
    legeSchlechtes(test_plugins::Misbehaves, "checks 5000");
    erwarteGeladen();
    erwarteBrauchbar(1000, schlechtes);
    erwarteBrauchbar(5999, schlechtes);
    EXPECT_EQ(registry->getRegistrierteErweiterungen().size(), 5002u);
}

TEST_F(ErweiterungStoerfall, AnExtensionForNoPeriodIsLoadedAndNeverFound) {
    legeSchlechtes(test_plugins::Misbehaves, "ohnezeitraum 50");
    erwarteGeladen();
    EXPECT_EQ(finde(kDazwischen), nullptr);
}

TEST_F(ErweiterungStoerfall, AnExtensionOfAClassOfThePluginIsRefusedByName) {
    legeSchlechtes(test_plugins::Misbehaves, "check 50\neigene eigene");
    erwarteAbgelehnt("INITIALISIERUNGS_FEHLER: Klasse der Erweiterung liegt in der Plugin-Bibliothek: "
                     "17EigeneErweiterung");
    EXPECT_EQ(finde(kDazwischen), nullptr);
}

TEST_F(ErweiterungStoerfall, AnExtensionOfThePluginWhoseCloneIsOfAKnownClassIsRefusedByBothNames) {
    legeSchlechtes(test_plugins::Misbehaves, "eigene geerbt");
    erwarteAbgelehnt("INITIALISIERUNGS_FEHLER: Kopie der Erweiterung hat eine andere Klasse: "
                     "34OrvoValidierungsServiceErweiterung statt 17EigeneErweiterung");
}

TEST_F(ErweiterungStoerfall, AnExtensionOfThePluginThatHasNoCloneIsRefusedByName) {
    legeSchlechtes(test_plugins::Misbehaves, "eigene keine");
    erwarteAbgelehnt("INITIALISIERUNGS_FEHLER: Kopie der Erweiterung fehlt. Klasse: 17EigeneErweiterung");
}

TEST_F(ErweiterungStoerfall, AnExtensionOfThePluginWhoseCloneThrowsIsRefused) {
    legeSchlechtes(test_plugins::Misbehaves, "eigene wirft");
    erwarteAbgelehnt("Ausnahme einer Klasse des Plugins, mit einem Text von einiger L\xE4nge");
}

TEST_F(ErweiterungStoerfall, AnExtensionOfAClassOfTheHostIsLoaded) {
    legeSchlechtes(test_plugins::Misbehaves, "host gut");
    erwarteGeladen();
    erwarteBrauchbar(kDazwischen, schlechtes);
    EXPECT_NE(dynamic_cast<HostErweiterung*>(finde(kDazwischen)), nullptr);
}

TEST_F(ErweiterungStoerfall, AnExtensionOfTheHostThatHasNoCloneIsRefused) {
    legeSchlechtes(test_plugins::Misbehaves, "host keine");
    erwarteAbgelehnt("INITIALISIERUNGS_FEHLER: Kopie der Erweiterung fehlt. Klasse: "
                     "N12_GLOBAL__N_115HostErweiterungE");
}

TEST_F(ErweiterungStoerfall, AnExtensionOfTheHostWhoseCloneThrowsIsRefused) {
    legeSchlechtes(test_plugins::Misbehaves, "host wirft");
    erwarteAbgelehnt("Kopie misslungen");
}

namespace {

struct Version {
    const char* name;
    const char* text;
};

void PrintTo(const Version& version, std::ostream* out) { *out << version.name; }

class VersionStoerfall : public Stoerfall, public testing::WithParamInterface<Version> {};

const Version kVersionen[] = {
    {"Empty", ""},
    {"OneDot", "."},
    {"DotsOnly", "..1.."},
    {"Negative", "-1"},
    {"WithALetter", "1.x"},
    {"AWord", "keine"},
    {"Hexadecimal", "0x7F"},
    {"OtherSeparators", "1,2;3"},
    {"NotText", "\xFC\xFF\x80"},
    {"APrintFormat", "%s%n"},
    {"ThirtyNumbers", "1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1.1"},
};

} // namespace

TEST_P(VersionStoerfall, AnyTextForAVersionIsLoaded) {
    const std::string version = GetParam().text;
    legeSchlechtes(test_plugins::DescribedByFile, "produktversion " + version + "\nfileversion " + version +
                                                      "\nloeschen\ncheck 50 2009\ncheck 11 2009\n");
    home.schreibe("plugins/libaaa.dylib.txt", "produktversion 99999999999\nloeschen\ncheck 11 2009\n");
    erwarteGeladen();
    erwarteBrauchbar(kDazwischen, schlechtes);
    EXPECT_EQ(geladenes(schlechtes)->getProduktVersion(), version);
    EXPECT_EQ(log.anzahl("[Kompatibles Plugin gefunden : Type=1,Version=" + version +
                         " Fileversion=" + version + "|99||99]"),
              1);
}

INSTANTIATE_TEST_SUITE_P(AVersion, VersionStoerfall, testing::ValuesIn(kVersionen),
                         [](const auto& fall) { return std::string(fall.param.name); });

TEST_F(ErweiterungStoerfall, AVersionOfAHugeNumberIsTheHigherOne) {
    legeSchlechtes(test_plugins::DescribedByFile,
                   "produktversion 99999999999999999999999999999999.1\nloeschen\ncheck 50 2009\n");
    lege(test_plugins::DescribedByFile, "libnnn.dylib",
         "produktversion 2147483647\nloeschen\ncheck 50 2009\n");
    EXPECT_TRUE(starte());
    erwarteHeileBrauchbar();
    erwarteBrauchbar(kDazwischen, schlechtes);
}

TEST_F(ErweiterungStoerfall, AStatusThatThePluginSetIsKeptUntilItsFirstUse) {
    legeSchlechtes(test_plugins::DescribedByFile, "status 7\n" + std::string(kEinCheck));
    erwarteGeladen();
    EXPECT_EQ(geladenes(schlechtes)->getStatus(), 7);
    erwarteBrauchbar(kDazwischen, schlechtes);
    EXPECT_EQ(geladenes(schlechtes)->getStatus(), ORVO_PLUGIN_ENTLADEN);
}

TEST_F(ErweiterungStoerfall, APluginThatSaysItIsInUseIsNot) {
    legeSchlechtes(test_plugins::DescribedByFile, "status 2\n" + std::string(kEinCheck));
    erwarteGeladen();
    EXPECT_EQ(geladenes(schlechtes)->getUseCount(), 0);
    erwarteBrauchbar(kDazwischen, schlechtes);
}

TEST_F(ErweiterungStoerfall, APluginThatMakesItselfResidentStaysOpenFromItsFirstUseOn) {
    legeSchlechtes(test_plugins::DescribedByFile, "resident\n" + std::string(kEinCheck));
    erwarteGeladen();
    erwarteBrauchbar(kDazwischen, schlechtes);
    EXPECT_TRUE(istEingeblendet(schlechtes));
    EXPECT_TRUE(manager->entladePlugins());
    erwarteSpurlos();
}

TEST_F(ErweiterungStoerfall, AHomeDirectoryThatAPluginSetsIsFollowedAfterTheRun) {
    const std::string anderes = home.legeAn("ein anderes");
    legeSchlechtes(test_plugins::Misbehaves, "home " + anderes + "\ncheck 50");
    EXPECT_TRUE(starte());
    EXPECT_EQ(warnungen(), Zeilen{});
    EXPECT_EQ(geladene(), Zeilen{});
    EXPECT_EQ(manager->getPluginSuchPfad(), anderes + "/plugins");

    Einstellungen().setze("basis.home_dir", home.pfad()); // loads the plugin once more
    EXPECT_EQ(warnungen(),
              Zeilen{"W Plugins werden gerade geladen, entladen oder gerufen. Aufgeschoben: basis.home_dir"});
    EXPECT_EQ(geladene(), Zeilen{});
    EXPECT_EQ(Einstellungen().wert("basis.home_dir"), anderes);
    erwarteSpurlos();
}
