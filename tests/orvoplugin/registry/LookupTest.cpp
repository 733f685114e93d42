// What the look-ups and listings answer.

#include "Registratur.h"

#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>

#include <functional>
#include <list>
#include <map>

namespace {

using Check = OrvoValidierungsServiceErweiterung;
using Finder = std::function<OrvoErweiterung*(const OrvoErweiterungsManager&, const Unterfallart&,
                                              const Veranlagungszeitraum&)>;

/// One look-up by pair: its kind, its functions, and how to make an extension of it.
struct Suche {
    tag_erweiterung_typ typ;
    Finder finde;
    std::function<OrvoErweiterung*(LosesPlugin&, const Unterfallart&, const Veranlagungszeitraum&)> biete;
};

template <class Erweiterung, Erweiterung* (OrvoErweiterungsManager::*Finde)(
                                 const Unterfallart&, const Veranlagungszeitraum&) const>
Suche suche(tag_erweiterung_typ typ) {
    return {typ,
            [](const OrvoErweiterungsManager& registry, const Unterfallart& ua,
               const Veranlagungszeitraum& vz) { return (registry.*Finde)(ua, vz); },
            [](LosesPlugin& plugin, const Unterfallart& ua, const Veranlagungszeitraum& vz) {
                return plugin.biete(Erweiterung(ua, vz));
            }};
}

using Manager = OrvoErweiterungsManager;
const Suche kSuchen[] = {
    suche<Check, &Manager::findeValidierungsServiceErweiterung>(ORVO_CHECK_SERVICE_ERWEITERUNG),
    suche<OrvoFeldInfoDatenServiceErweiterung, &Manager::findeFeldInfoDatenServiceErweiterung>(
        ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG),
    suche<OrvoFTDatenServiceErweiterung, &Manager::findeFehlertextDatenServiceErweiterung>(
        ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG),
    suche<OrvoXPathMappingServiceErweiterung, &Manager::findeXPathMappingServiceErweiterung>(
        ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG),
    suche<OrvoDatensatzReaderErweiterung, &Manager::findeDatensatzReaderServiceErweiterung>(
        ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG),
};

/// An extension that serves pairs, of none of the concrete classes.
class Fremde : public OrvoUaVzServiceErweiterung {
public:
    Fremde(tag_erweiterung_typ typ, const Unterfallart& ua, const Veranlagungszeitraum& vz)
        : OrvoUaVzServiceErweiterung(typ, ua, vz, "factory") {}
    OrvoErweiterung* clone() const override { return new Fremde(*this); }
};

} // namespace

class LookupTest : public Registratur {
protected:
    /// Announces the plugin as it is now.
    void melde(LosesPlugin& plugin) { registry_.pluginErzeugt(&plugin); }

    OrvoErweiterungsManager registry_;
};

TEST_F(LookupTest, FindsEachKindByItsOwnLookUpOnly) {
    for (const Suche& angebotene : kSuchen) {
        LosesPlugin plugin("1.0");
        OrvoErweiterung* const erweiterung = angebotene.biete(plugin, 10, jahr(2009));
        melde(plugin);
        for (const Suche& gefragte : kSuchen) {
            OrvoErweiterung* const erwartet = gefragte.typ == angebotene.typ ? erweiterung : nullptr;
            EXPECT_EQ(gefragte.finde(registry_, 10, jahr(2009)), erwartet) << gefragte.typ;
            EXPECT_EQ(registry_.istUnterfallartUndJahrUnterstuetzt(gefragte.typ, 10, jahr(2009)),
                      erwartet != nullptr);
        }
        registry_.pluginZerstoert(&plugin);
        EXPECT_EQ(angebotene.finde(registry_, 10, jahr(2009)), nullptr) << angebotene.typ;
    }
}

TEST_F(LookupTest, FindsAnyPeriodOfTheYear) {
    for (const Suche& s : kSuchen) {
        LosesPlugin plugin("1.0");
        OrvoErweiterung* const erweiterung = s.biete(plugin, 10, jahr(2009));
        melde(plugin);
        for (const char* text : {"200901", "200919", "200943", "200954"})
            EXPECT_EQ(s.finde(registry_, 10, Veranlagungszeitraum::parse(text, "YYYYMM")), erweiterung)
                << text;
        EXPECT_EQ(s.finde(registry_, 10, Veranlagungszeitraum(20091231, "YYYYMMTT")), erweiterung);
        EXPECT_EQ(s.finde(registry_, 10, Veranlagungszeitraum(9, "YY")), erweiterung);
        EXPECT_EQ(s.finde(registry_, 10, jahr(2010)), nullptr);
        EXPECT_EQ(s.finde(registry_, 12, jahr(2009)), nullptr);
        registry_.pluginZerstoert(&plugin);
    }
}

TEST_F(LookupTest, FallsBackToThePeriodIndependentExtension) {
    for (const Suche& s : kSuchen) {
        LosesPlugin plugin("1.0");
        OrvoErweiterung* const immer = s.biete(plugin, 10, Veranlagungszeitraum());
        OrvoErweiterung* const genau = s.biete(plugin, 10, jahr(2009));
        melde(plugin);
        EXPECT_EQ(s.finde(registry_, 10, jahr(2009)), genau); // the exact one first
        EXPECT_EQ(s.finde(registry_, 10, jahr(2010)), immer);
        EXPECT_EQ(s.finde(registry_, 10, Veranlagungszeitraum()), immer);
        EXPECT_EQ(s.finde(registry_, 12, jahr(2010)), nullptr);
        EXPECT_TRUE(registry_.istUnterfallartUndJahrUnterstuetzt(s.typ, 10, jahr(2010)));
        EXPECT_FALSE(registry_.istUnterfallartUndJahrUnterstuetzt(s.typ, 12, jahr(2010)));
        registry_.pluginZerstoert(&plugin);
    }
}

TEST_F(LookupTest, DoesNotTakeAYearForThePeriodIndependentRequest) {
    LosesPlugin plugin("1.0");
    plugin.biete(Check(10, jahr(2009)));
    melde(plugin);
    EXPECT_EQ(registry_.findeValidierungsServiceErweiterung(10, Veranlagungszeitraum()), nullptr);
    EXPECT_EQ(registry_.findeValidierungsServiceErweiterung(10, jahr(2010)), nullptr);
}

TEST_F(LookupTest, FindsSubCaseTypesByNumberOrByNameIgnoringCase) {
    LosesPlugin plugin("1.0");
    OrvoErweiterung* const nummer = plugin.biete(Check("010", jahr(2009)));
    OrvoErweiterung* const name = plugin.biete(Check("lstb", jahr(2009)));
    melde(plugin);
    for (const Unterfallart& ua : {Unterfallart(10), Unterfallart("10"), Unterfallart("0010")})
        EXPECT_EQ(registry_.findeValidierungsServiceErweiterung(ua, jahr(2009)), nummer) << ua.getName();
    for (const Unterfallart& ua : {Unterfallart("LSTB"), Unterfallart("Lstb"), Unterfallart("lstb")})
        EXPECT_EQ(registry_.findeValidierungsServiceErweiterung(ua, jahr(2009)), name) << ua.getName();
}

// "notset" means any sub-case type only in an extension's own support test.
TEST_F(LookupTest, TakesTheNameNotsetForAnOrdinaryOne) {
    LosesPlugin plugin("1.0");
    OrvoErweiterung* const erweiterung = plugin.biete(Check("notset", jahr(2009)));
    melde(plugin);
    EXPECT_EQ(registry_.findeValidierungsServiceErweiterung("NOTSET", jahr(2009)), erweiterung);
    EXPECT_EQ(registry_.findeValidierungsServiceErweiterung(10, jahr(2009)), nullptr);
}

TEST_F(LookupTest, FindsTheTaxOfficeDataUnderTheYearZeroOfEitherPattern) {
    EXPECT_EQ(registry_.findeFADatenServiceErweiterung(), nullptr);
    LosesPlugin plugin("1.0");
    OrvoErweiterung* const erweiterung = plugin.biete(OrvoFADatenServiceErweiterung());
    melde(plugin);
    EXPECT_EQ(registry_.findeFADatenServiceErweiterung(), erweiterung);
    for (const auto& vz : {Veranlagungszeitraum(0, "Y"), Veranlagungszeitraum(0, "YYYY"), jahr(2000)})
        EXPECT_TRUE(
            registry_.istUnterfallartUndJahrUnterstuetzt(ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG, 0, vz));
    EXPECT_FALSE(registry_.istUnterfallartUndJahrUnterstuetzt(ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG, 0,
                                                              jahr(2009)));
    registry_.pluginZerstoert(&plugin);
    EXPECT_EQ(registry_.findeFADatenServiceErweiterung(), nullptr);
}

TEST_F(LookupTest, GivesNullForAnExtensionOfAnotherClass) {
    LosesPlugin plugin("1.0");
    plugin.biete(OrvoFADatenServiceErweiterung());
    for (const Suche& s : kSuchen)
        plugin.biete(Fremde(s.typ, 10, jahr(2009)));
    melde(plugin);
    for (const Suche& s : kSuchen) {
        EXPECT_EQ(s.finde(registry_, 10, jahr(2009)), nullptr) << s.typ;
        EXPECT_TRUE(registry_.istUnterfallartUndJahrUnterstuetzt(s.typ, 10, jahr(2009))) << s.typ;
    }
    EXPECT_TRUE(registry_.getRegistrierteValidierungsServiceErweiterungen().empty());
    EXPECT_TRUE(registry_.getRegistrierteFeldInfoDatenServiceErweiterungen().empty());
    EXPECT_TRUE(registry_.getRegistrierteFehlertextDatenServiceErweiterungen().empty());
    EXPECT_EQ(registry_.getRegistrierteFinanzamtsDatenErweiterungen().size(), 1u);
    EXPECT_EQ(registry_.getRegistrierteErweiterungen().size(), 6u);
}

TEST_F(LookupTest, GivesNoTaxOfficeDataOfAnotherClass) {
    LosesPlugin plugin("1.0");
    OrvoErweiterung* const fremde =
        plugin.biete(Fremde(ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG, 10, jahr(2009)));
    melde(plugin);
    EXPECT_EQ(registry_.findeFADatenServiceErweiterung(), nullptr);
    EXPECT_TRUE(registry_.getRegistrierteFinanzamtsDatenErweiterungen().empty());
    EXPECT_EQ(registry_.getRegistrierteErweiterungen(), std::list<OrvoErweiterung*>{fremde});
    registry_.pluginZerstoert(&plugin);
    EXPECT_TRUE(registry_.getRegistrierteErweiterungen().empty());
}

TEST_F(LookupTest, DoesNotFallBackPastAnExactEntryOfAnotherClass) {
    LosesPlugin plugin("1.0");
    plugin.biete(Fremde(ORVO_CHECK_SERVICE_ERWEITERUNG, 10, jahr(2009)));
    plugin.biete(Check(10, Veranlagungszeitraum()));
    melde(plugin);
    EXPECT_EQ(registry_.findeValidierungsServiceErweiterung(10, jahr(2009)), nullptr);
}

TEST_F(LookupTest, SupportsNoKindOfWhichNothingIsRegistered) {
    LosesPlugin plugin("1.0");
    plugin.biete(Check(10, jahr(2009)));
    melde(plugin);
    for (int typ : {-1, 0, 2, 3, 4, 5, 6, 7})
        EXPECT_FALSE(registry_.istUnterfallartUndJahrUnterstuetzt(static_cast<tag_erweiterung_typ>(typ), 10,
                                                                  jahr(2009)));
}

TEST_F(LookupTest, ListsNothingOfAnEmptyRegistry) {
    EXPECT_TRUE(registry_.getRegistrierteErweiterungen().empty());
    EXPECT_TRUE(registry_.getRegistrierteValidierungsServiceErweiterungen().empty());
    EXPECT_TRUE(registry_.getRegistrierteFeldInfoDatenServiceErweiterungen().empty());
    EXPECT_TRUE(registry_.getRegistrierteFehlertextDatenServiceErweiterungen().empty());
    EXPECT_TRUE(registry_.getRegistrierteFinanzamtsDatenErweiterungen().empty());
}

TEST_F(LookupTest, ListsAnExtensionOnceForEachKeyThatItHolds) {
    LosesPlugin plugin("1.0"), besseres("2.0");
    auto* const check = plugin.biete(Check(std::map<Unterfallart, std::list<Veranlagungszeitraum>>{
        {10, {jahr(2008), jahr(2009)}}, {12, {jahr(2009)}}}));
    melde(plugin);
    EXPECT_EQ(registry_.getRegistrierteValidierungsServiceErweiterungen().size(), 3u);
    auto* const bessere = besseres.biete(Check(12, jahr(2009)));
    melde(besseres);
    std::map<OrvoErweiterung*, int> gelistet;
    for (auto* const erweiterung : registry_.getRegistrierteValidierungsServiceErweiterungen())
        ++gelistet[erweiterung];
    EXPECT_EQ(gelistet, (std::map<OrvoErweiterung*, int>{{check, 2}, {bessere, 1}}));
}

TEST_F(LookupTest, ListsEachKindByItself) {
    LosesPlugin plugin("1.0");
    std::map<tag_erweiterung_typ, OrvoErweiterung*> angebotene;
    for (const Suche& s : kSuchen)
        angebotene[s.typ] = s.biete(plugin, 10, jahr(2009));
    angebotene[ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG] = plugin.biete(OrvoFADatenServiceErweiterung());
    melde(plugin);

    const auto einzige = [](const auto& liste) -> OrvoErweiterung* {
        return liste.size() == 1 ? liste.front() : nullptr;
    };
    EXPECT_EQ(einzige(registry_.getRegistrierteValidierungsServiceErweiterungen()),
              angebotene[ORVO_CHECK_SERVICE_ERWEITERUNG]);
    EXPECT_EQ(einzige(registry_.getRegistrierteFeldInfoDatenServiceErweiterungen()),
              angebotene[ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG]);
    EXPECT_EQ(einzige(registry_.getRegistrierteFehlertextDatenServiceErweiterungen()),
              angebotene[ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG]);
    EXPECT_EQ(einzige(registry_.getRegistrierteFinanzamtsDatenErweiterungen()),
              angebotene[ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG]);
    EXPECT_EQ(registry_.getRegistrierteErweiterungen().size(), 6u);
}

TEST_F(LookupTest, ListsInOneOrderWhicheverTheListing) {
    LosesPlugin plugin("1.0");
    for (int ua = 1; ua <= 100; ++ua)
        plugin.biete(Check(ua, jahr(2009)));
    melde(plugin);
    std::list<OrvoErweiterung*> checks;
    for (auto* const check : registry_.getRegistrierteValidierungsServiceErweiterungen())
        checks.push_back(check);
    EXPECT_EQ(checks.size(), 100u);
    EXPECT_EQ(registry_.getRegistrierteErweiterungen(), checks);
}
