// Faults in the two entry points of a plugin: missing ones, wrong type records, exceptions, refusals.
//
// A library in the same process cannot prevent two faults: a plugin that ends or damages the process (exit, abort, a
// wild pointer, an endless loop), and an exception that leaves the constructor of a static object in the plugin. No
// exception passes through the system's loader, so the process ends in std::terminate.

#include "faults/Stoerfall.h"

#include "TestPlugins.h"

namespace {

class EinsprungpunktStoerfall : public Stoerfall {
protected:
    /// The plugin requests an object that is being made during the first run, and exists from then on.
    void erwarteErstAbgelehntDannGeladen(const std::string& grund) {
        EXPECT_FALSE(starte());
        EXPECT_EQ(ablehnungen(), Zeilen{ablehnung(grund)});
        erwarteHeileBrauchbar();
        EXPECT_TRUE(ladeNeu());
        EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libmmm.dylib", "libzzz.dylib"}));
        erwarteHeileBrauchbar();
        erwarteSpurlos();
    }
};

constexpr char kUngueltigeVersion[] = "UNGUELTIGE_PLUGIN_VERSION: Ung\xFCltige Pluginversion";
constexpr char kOhneTypen[] =
    "STRUKTUR_FEHLER: Einsprungpunkt(orvo_plugin_get_types) in Bibliothek nicht gefunden.";

} // namespace

TEST_F(EinsprungpunktStoerfall, ALibraryThatIsNoPluginIsRefused) {
    legeSchlechtes(test_plugins::WithoutEntryPoints);
    erwarteAbgelehnt(kOhneTypen);
}

TEST_F(EinsprungpunktStoerfall, AMissingTypesEntryPointIsRefused) {
    legeSchlechtes(test_plugins::WithoutTypes);
    erwarteAbgelehnt(kOhneTypen);
}

TEST_F(EinsprungpunktStoerfall, AMissingInitializeEntryPointIsRefused) {
    legeSchlechtes(test_plugins::WithoutInitialize);
    erwarteAbgelehnt(
        "UNGUELTIGER_AUFBAU: Initialisierungsfunktion \"orvo_plugin_initialize\" nicht gefunden.");
}

TEST_F(EinsprungpunktStoerfall, AnEmptyTypesListIsRefused) {
    legeSchlechtes(test_plugins::DeclaresNoType);
    erwarteAbgelehnt("STRUKTUR_FEHLER: Einsprungpunkt(orvo_plugin_get_types) nennt keine Pluginversion.");
}

TEST_F(EinsprungpunktStoerfall, TypeTwoIsRefused) {
    legeSchlechtes(test_plugins::Misbehaves, "typ 2");
    erwarteAbgelehnt(kUngueltigeVersion);
}

TEST_F(EinsprungpunktStoerfall, TypeZeroIsRefused) {
    legeSchlechtes(test_plugins::Misbehaves, "typ 0");
    erwarteAbgelehnt(kUngueltigeVersion);
}

TEST_F(EinsprungpunktStoerfall, ANegativeTypeIsRefused) {
    legeSchlechtes(test_plugins::Misbehaves, "typ -1");
    erwarteAbgelehnt(kUngueltigeVersion);
}

TEST_F(EinsprungpunktStoerfall, AForeignTypeBehindAGoodOneRefusesTheWholeLibrary) {
    legeSchlechtes(test_plugins::Misbehaves, "typ 1\ntyp 2\ncheck 50");
    erwarteAbgelehnt(kUngueltigeVersion);
    EXPECT_EQ(finde(kDazwischen), nullptr);
}

TEST_F(EinsprungpunktStoerfall, AForeignTypeBeforeAGoodOneRefusesTheWholeLibrary) {
    legeSchlechtes(test_plugins::Misbehaves, "typ 2\ntyp 1\ncheck 50");
    erwarteAbgelehnt(kUngueltigeVersion);
}

TEST_F(EinsprungpunktStoerfall, TwoGoodTypesMakeOnePlugin) {
    legeSchlechtes(test_plugins::Misbehaves, "typ 1 2\ncheck 50");
    erwarteGeladen();
    erwarteBrauchbar(kDazwischen, schlechtes);
}

TEST_F(EinsprungpunktStoerfall, TenThousandGoodTypesMakeOnePlugin) {
    legeSchlechtes(test_plugins::Misbehaves, "typ 1 10000\ncheck 50");
    EXPECT_TRUE(starte());
    EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libmmm.dylib", "libzzz.dylib"}));
    erwarteSpurlos();
    erwarteHeileBrauchbar();
    erwarteBrauchbar(kDazwischen, schlechtes);
}

TEST_F(EinsprungpunktStoerfall, TenThousandForeignTypesAreRefused) {
    legeSchlechtes(test_plugins::Misbehaves, "typ 7 10000");
    erwarteAbgelehnt(kUngueltigeVersion);
}

TEST_F(EinsprungpunktStoerfall, InitializeThatReturnsFalseIsRefused) {
    legeSchlechtes(test_plugins::Misbehaves, "abgelehnt");
    erwarteAbgelehnt("INITIALISIERUNGS_FEHLER: Fehler im Aufruf von orvo_plugin_initalize.");
}

TEST_F(EinsprungpunktStoerfall, ExtensionsAddedBeforeInitializeReturnsFalseAreNeverRegistered) {
    legeSchlechtes(test_plugins::Misbehaves, "checks 10\ncheck 50\nabgelehnt");
    erwarteAbgelehnt("INITIALISIERUNGS_FEHLER: Fehler im Aufruf von orvo_plugin_initalize.");
    EXPECT_EQ(finde(kDazwischen), nullptr);
    EXPECT_EQ(finde(1000), nullptr);
}

TEST_F(EinsprungpunktStoerfall, ExtensionsAddedBeforeInitializeThrowsAreNeverRegistered) {
    legeSchlechtes(test_plugins::Misbehaves, "check 50\nwirft initialize eigene");
    erwarteAbgelehnt("unbekannte Ausnahme");
    EXPECT_EQ(finde(kDazwischen), nullptr);
}

TEST_F(EinsprungpunktStoerfall, AskingForTheRegistryInInitializeIsRefusedWhileItIsBeingMade) {
    legeSchlechtes(test_plugins::Misbehaves, "fragt registry");
    erwarteErstAbgelehntDannGeladen(
        "orvo.plugin.OrvoErweiterungsManager: wird gerade gestartet und ist noch nicht verfuegbar.");
}

TEST_F(EinsprungpunktStoerfall, AskingForTheManagerInInitializeIsRefusedWhileItIsBeingMade) {
    legeSchlechtes(test_plugins::Misbehaves, "fragt manager");
    erwarteErstAbgelehntDannGeladen(
        "orvo.plugin.OrvoPluginManager: wird gerade gestartet und ist noch nicht verfuegbar.");
}

TEST_F(EinsprungpunktStoerfall, AskingForTheRegistryInTypesIsRefusedWhileItIsBeingMade) {
    legeSchlechtes(test_plugins::Misbehaves, "fragtfrueh registry");
    erwarteErstAbgelehntDannGeladen(
        "orvo.plugin.OrvoErweiterungsManager: wird gerade gestartet und ist noch nicht verfuegbar.");
}

TEST_F(EinsprungpunktStoerfall, AskingForTheManagerInTypesIsRefusedWhileItIsBeingMade) {
    legeSchlechtes(test_plugins::Misbehaves, "fragtfrueh manager");
    erwarteErstAbgelehntDannGeladen(
        "orvo.plugin.OrvoPluginManager: wird gerade gestartet und ist noch nicht verfuegbar.");
}

namespace {

struct Ausnahme {
    const char* art;
    const char* grund;
};

void PrintTo(const Ausnahme& ausnahme, std::ostream* out) { *out << ausnahme.art; }

class EinsprungpunktAusnahme : public EinsprungpunktStoerfall,
                               public testing::WithParamInterface<Ausnahme> {};

const Ausnahme kAusnahmen[] = {
    {"standard", "Standardausnahme aus dem Plugin"},
    {"eigeneStandard", "Ausnahme einer Klasse des Plugins, mit einem Text von einiger L\xE4nge"},
    {"eigene", "unbekannte Ausnahme"},
    {"int", "unbekannte Ausnahme"},
    {"ohneText", ""},
    {"init", "GENERELL: vom Plugin selbst"},
    {"eigeneInit", "GENERELL: von einer abgeleiteten Klasse"},
};

} // namespace

TEST_P(EinsprungpunktAusnahme, FromTypesIsRefused) {
    legeSchlechtes(test_plugins::Misbehaves, std::string("wirft types ") + GetParam().art);
    erwarteAbgelehnt(GetParam().grund);
}

TEST_P(EinsprungpunktAusnahme, FromInitializeIsRefused) {
    legeSchlechtes(test_plugins::Misbehaves, std::string("wirft initialize ") + GetParam().art);
    erwarteAbgelehnt(GetParam().grund);
}

TEST_P(EinsprungpunktAusnahme, FromInitializeOfASecondRecordIsRefused) {
    legeSchlechtes(test_plugins::Misbehaves, std::string("typ 1 2\nwirft initialize ") + GetParam().art);
    erwarteAbgelehnt(GetParam().grund);
}

INSTANTIATE_TEST_SUITE_P(AnException, EinsprungpunktAusnahme, testing::ValuesIn(kAusnahmen),
                         [](const auto& fall) { return std::string(fall.param.art); });
