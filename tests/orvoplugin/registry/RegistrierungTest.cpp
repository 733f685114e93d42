// What the registry files and removes, and which extension stays where two offer the same.

#include "Registratur.h"

#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

#include "support/Mitschnitt.h"

#include <list>
#include <map>

using orvo::orvoutil::LogLevel;

namespace {

using Check = OrvoValidierungsServiceErweiterung;

constexpr char kKategorie[] = "orvo.plugin.OrvoErweiterungsManager";

} // namespace

/// A registry without plugins; the tests announce theirs themselves.
class RegistrierungTest : public Registratur {
protected:
    OrvoErweiterung* filed(const Unterfallart& ua, int zahl) const {
        return registry_.findeValidierungsServiceErweiterung(ua, jahr(zahl));
    }

    OrvoErweiterungsManager registry_;
};

TEST_F(RegistrierungTest, KeepsTheHigherVersionWhicheverComesFirst) {
    LosesPlugin niedrig("1.0.0"), hoch("1.2.0");
    OrvoErweiterung* const niedrige = niedrig.biete(Check(10, jahr(2009)));
    OrvoErweiterung* const hohe = hoch.biete(Check(10, jahr(2009)));

    registry_.pluginErzeugt(&niedrig);
    EXPECT_EQ(filed(10, 2009), niedrige);
    registry_.pluginErzeugt(&hoch);
    EXPECT_EQ(filed(10, 2009), hohe);
    EXPECT_EQ(registry_.getRegistrierteErweiterungen().size(), 1u);

    registry_.pluginZerstoert(&niedrig);
    registry_.pluginZerstoert(&hoch);
    registry_.pluginErzeugt(&hoch);
    registry_.pluginErzeugt(&niedrig);
    EXPECT_EQ(filed(10, 2009), hohe);
}

TEST_F(RegistrierungTest, ComparesVersionsByNumberNotByText) {
    const struct {
        const char* bestehend;
        const char* neu;
        bool neueGewinnt;
    } faelle[] = {{"1.9", "1.10", true}, {"1.10", "1.9", false}, {"1.0", "1", false},
                  {"1", "1.0.1", true},  {"", "0.1", true},      {"0.1", "", false},
                  {"2", "1.99", false},  {"", "", false},        {"17, 4, 6, 0", "17.4.6.1", true},
                  {"1.x", "1.0", false}, {"x", "0.0.1", true},   {"010", "9", false}};
    for (const auto& fall : faelle) {
        LosesPlugin erstes(fall.bestehend), zweites(fall.neu);
        OrvoErweiterung* const erste = erstes.biete(Check(10, jahr(2009)));
        OrvoErweiterung* const zweite = zweites.biete(Check(10, jahr(2009)));
        registry_.pluginErzeugt(&erstes);
        registry_.pluginErzeugt(&zweites);
        EXPECT_EQ(filed(10, 2009), fall.neueGewinnt ? zweite : erste) << fall.bestehend << " " << fall.neu;
        registry_.pluginZerstoert(&erstes);
    }
}

TEST_F(RegistrierungTest, KeepsTheEarlierOneOfEqualVersions) {
    LosesPlugin erstes("1.0"), zweites("1.0.0");
    OrvoErweiterung* const erste = erstes.biete(Check(10, jahr(2009)));
    zweites.biete(Check("010", jahr(2009)));
    registry_.pluginErzeugt(&erstes);
    registry_.pluginErzeugt(&zweites);
    EXPECT_EQ(filed(10, 2009), erste);
}

TEST_F(RegistrierungTest, LetsAnExtensionWinSomeKeysAndLoseOthers) {
    LosesPlugin alt("1.0"), mittel("2.0"), neu("3.0");
    OrvoErweiterung* const alte = alt.biete(Check(10, {jahr(2008), jahr(2009)}));
    OrvoErweiterung* const mittlere = mittel.biete(Check(10, {jahr(2009), jahr(2010), jahr(2011)}));
    OrvoErweiterung* const neue = neu.biete(Check(10, jahr(2010)));
    for (LosesPlugin* plugin : {&neu, &alt, &mittel})
        registry_.pluginErzeugt(plugin);
    EXPECT_EQ(filed(10, 2008), alte);
    EXPECT_EQ(filed(10, 2009), mittlere);
    EXPECT_EQ(filed(10, 2010), neue);
    EXPECT_EQ(filed(10, 2011), mittlere);
    EXPECT_EQ(registry_.getRegistrierteErweiterungen().size(), 4u);
}

TEST_F(RegistrierungTest, RemovesTheWinnersEntryWhenTheLoserGoes) {
    LosesPlugin verlierer("1.0"), gewinner("2.0");
    verlierer.biete(Check(10, jahr(2009)));
    OrvoErweiterung* const gewinnerin = gewinner.biete(Check(10, {jahr(2009), jahr(2010)}));
    registry_.pluginErzeugt(&verlierer);
    registry_.pluginErzeugt(&gewinner);
    registry_.pluginZerstoert(&verlierer);
    EXPECT_EQ(filed(10, 2009), nullptr);
    EXPECT_EQ(filed(10, 2010), gewinnerin);
}

TEST_F(RegistrierungTest, DoesNotRestoreTheLosersEntryWhenTheWinnerGoes) {
    LosesPlugin verlierer("1.0"), gewinner("2.0");
    OrvoErweiterung* const verliererin = verlierer.biete(Check(10, {jahr(2008), jahr(2009)}));
    gewinner.biete(Check(10, jahr(2009)));
    registry_.pluginErzeugt(&verlierer);
    registry_.pluginErzeugt(&gewinner);
    registry_.pluginZerstoert(&gewinner);
    EXPECT_EQ(filed(10, 2009), nullptr);
    EXPECT_EQ(filed(10, 2008), verliererin);
}

TEST_F(RegistrierungTest, RemovesByKeySoThatAnotherPeriodOfTheYearGoesToo) {
    LosesPlugin monatlich("1.0"), jaehrlich("2.0");
    monatlich.biete(Check("LSTB", Veranlagungszeitraum::parse("200905", "YYYYMM")));
    jaehrlich.biete(Check("lstb", jahr(2009)));
    registry_.pluginErzeugt(&jaehrlich);
    registry_.pluginErzeugt(&monatlich);
    registry_.pluginZerstoert(&monatlich);
    EXPECT_TRUE(registry_.getRegistrierteErweiterungen().empty());
}

TEST_F(RegistrierungTest, RemovesTheKeysOfAPluginThatWasNeverAnnouncedWhoeverHoldsThem) {
    LosesPlugin gemeldetes("1.0"), anderes("1.0");
    OrvoErweiterung* const gemeldete = gemeldetes.biete(Check(10, {jahr(2008), jahr(2009)}));
    anderes.biete(Check(10, jahr(2009)));
    registry_.pluginErzeugt(&gemeldetes);
    registry_.pluginZerstoert(&anderes);
    EXPECT_EQ(filed(10, 2009), nullptr);
    EXPECT_EQ(filed(10, 2008), gemeldete);
}

TEST_F(RegistrierungTest, CollidesOnlyWithinAKind) {
    LosesPlugin eins("1.0"), zwei("2.0");
    OrvoErweiterung* const check = eins.biete(Check(10, jahr(2009)));
    OrvoErweiterung* const feldinfo = zwei.biete(OrvoFeldInfoDatenServiceErweiterung(10, jahr(2009)));
    registry_.pluginErzeugt(&eins);
    registry_.pluginErzeugt(&zwei);
    EXPECT_EQ(filed(10, 2009), check);
    EXPECT_EQ(registry_.findeFeldInfoDatenServiceErweiterung(10, jahr(2009)), feldinfo);
}

// Keys hold only the year of a period, so two months of a year collide, also within one extension.
TEST_F(RegistrierungTest, FilesTheFirstOfTwoPeriodsOfAYear) {
    LosesPlugin plugin("1.0");
    OrvoErweiterung* const erweiterung =
        plugin.biete(Check(10, {Veranlagungszeitraum::parse("200905", "YYYYMM"),
                                Veranlagungszeitraum::parse("200906", "YYYYMM")}));
    registry_.pluginErzeugt(&plugin);
    EXPECT_EQ(registry_.getRegistrierteErweiterungen(), std::list<OrvoErweiterung*>{erweiterung});
}

TEST_F(RegistrierungTest, KeepsTheFirstTaxOfficeDataExtensionWhateverTheVersions) {
    LosesPlugin erstes("1.0"), zweites("2.0");
    OrvoErweiterung* const erste = erstes.biete(OrvoFADatenServiceErweiterung());
    zweites.biete(OrvoFADatenServiceErweiterung());
    registry_.pluginErzeugt(&erstes);
    registry_.pluginErzeugt(&zweites);
    EXPECT_EQ(registry_.findeFADatenServiceErweiterung(), erste);
    registry_.pluginZerstoert(&zweites); // removes by key, also another plugin's entry
    EXPECT_EQ(registry_.findeFADatenServiceErweiterung(), nullptr);
}

TEST_F(RegistrierungTest, FilesNothingForAPluginWithoutExtensions) {
    LosesPlugin leer("1.0"), anderes("1.0");
    OrvoErweiterung* const erweiterung = anderes.biete(Check(10, jahr(2009)));
    registry_.pluginErzeugt(&anderes);
    registry_.pluginErzeugt(&leer);
    registry_.pluginZerstoert(&leer);
    EXPECT_EQ(registry_.getRegistrierteErweiterungen(), std::list<OrvoErweiterung*>{erweiterung});
}

TEST_F(RegistrierungTest, FilesNothingForASubCaseTypeWithoutPeriods) {
    LosesPlugin plugin("1.0");
    plugin.biete(Check(10, std::list<Veranlagungszeitraum>()));
    registry_.pluginErzeugt(&plugin);
    EXPECT_TRUE(registry_.getRegistrierteErweiterungen().empty());
}

namespace {

/// A plugin of another interface.
class VonAndererSchnittstelle : public OrvoPlugin {
public:
    VonAndererSchnittstelle() : OrvoPlugin(orvo_plugin_version_t{2}, nullptr) {}
    void notifyUse() override {}
    void release() override {}
    void initialize() override {}
};

/// Claims interface 1 but is of another class.
class Hochstapler : public OrvoPlugin {
public:
    Hochstapler() : OrvoPlugin(orvo_plugin_version_t{1}, nullptr) {}
    void notifyUse() override {}
    void release() override {}
    void initialize() override {}
};

/// An extension of a kind that should serve pairs, but of a class that does not.
class OhnePaare : public OrvoServiceErweiterung {
public:
    explicit OhnePaare(tag_erweiterung_typ typ) : OrvoServiceErweiterung(typ, "factory") {}
    OrvoErweiterung* clone() const override { return new OhnePaare(*this); }
};

/// An extension that serves pairs, of any kind.
class MitPaaren : public OrvoUaVzServiceErweiterung {
public:
    MitPaaren(tag_erweiterung_typ typ, const Unterfallart& ua, const Veranlagungszeitraum& vz)
        : OrvoUaVzServiceErweiterung(typ, ua, vz, "factory") {}
    OrvoErweiterung* clone() const override { return new MitPaaren(*this); }
};

} // namespace

TEST_F(RegistrierungTest, NeitherFilesNorRemovesForAPluginOfAnotherInterface) {
    const Mitschnitt mitschnitt(LogLevel::Info);
    VonAndererSchnittstelle fremd;
    registry_.pluginErzeugt(&fremd);
    registry_.pluginZerstoert(&fremd);
    Hochstapler hochstapler;
    registry_.pluginErzeugt(&hochstapler);
    registry_.pluginZerstoert(&hochstapler);
    EXPECT_TRUE(registry_.getRegistrierteErweiterungen().empty());
    EXPECT_TRUE(mitschnitt.zeilen(kKategorie).empty());
}

TEST_F(RegistrierungTest, TakesNoPluginForNone) {
    registry_.pluginErzeugt(nullptr);
    registry_.pluginZerstoert(nullptr);
    EXPECT_TRUE(registry_.getRegistrierteErweiterungen().empty());
}

TEST_F(RegistrierungTest, PassesOverAnExtensionThatServesNoPairs) {
    LosesPlugin plugin("1.0");
    plugin.biete(OhnePaare(ORVO_CHECK_SERVICE_ERWEITERUNG));
    OrvoErweiterung* const naechste = plugin.biete(Check(10, jahr(2009)));
    registry_.pluginErzeugt(&plugin);
    EXPECT_EQ(registry_.getRegistrierteErweiterungen(), std::list<OrvoErweiterung*>{naechste});
    registry_.pluginZerstoert(&plugin);
    EXPECT_TRUE(registry_.getRegistrierteErweiterungen().empty());
}

TEST_F(RegistrierungTest, FilesKindsThatItDoesNotKnow) {
    constexpr auto kUnbekannt = static_cast<tag_erweiterung_typ>(42);
    LosesPlugin plugin("1.0");
    OrvoErweiterung* const erweiterung = plugin.biete(MitPaaren(kUnbekannt, 10, jahr(2009)));
    registry_.pluginErzeugt(&plugin);
    EXPECT_EQ(registry_.getRegistrierteErweiterungen(), std::list<OrvoErweiterung*>{erweiterung});
    EXPECT_TRUE(registry_.istUnterfallartUndJahrUnterstuetzt(kUnbekannt, 10, jahr(2009)));
    registry_.pluginZerstoert(&plugin);
    EXPECT_TRUE(registry_.getRegistrierteErweiterungen().empty());
}
