#include <orvoplugin/registry/ErweiterungsSchluessel.h>

#include "support/Mitschnitt.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <type_traits>

namespace {

constexpr tag_erweiterung_typ kCheck = ORVO_CHECK_SERVICE_ERWEITERUNG;

Veranlagungszeitraum jahr(int zahl) { return Veranlagungszeitraum(zahl, "YYYY"); }

std::size_t streuwert(const ErweiterungsSchluessel& schluessel) {
    return ErweiterungsSchluessel()(schluessel);
}

ErweiterungsSchluessel check(const Unterfallart& ua, const Veranlagungszeitraum& vz) {
    return {kCheck, ua, vz};
}

} // namespace

TEST(ErweiterungsSchluessel, HasAVirtualDestructorAndCopies) {
    EXPECT_TRUE(std::has_virtual_destructor_v<ErweiterungsSchluessel>);
    const ErweiterungsSchluessel original(kCheck, "Lstb", Veranlagungszeitraum::parse("2009-05", "YYYY-MM"));
    ErweiterungsSchluessel zugewiesener;
    zugewiesener = original;
    for (const ErweiterungsSchluessel& kopie : {ErweiterungsSchluessel(original), zugewiesener}) {
        EXPECT_EQ(kopie.getTyp(), kCheck);
        EXPECT_EQ(kopie.getUnterfallart().getName(), "Lstb");
        EXPECT_EQ(kopie.getUnterfallart().getNummer(), -99);
        EXPECT_EQ(kopie.getVeranlagungszeitraum().getZeitraum(), 5);
        EXPECT_EQ(kopie.getVeranlagungszeitraum().getText(), "2009-05");
        EXPECT_EQ(kopie, original);
        EXPECT_EQ(streuwert(kopie), streuwert(original));
    }
}

TEST(ErweiterungsSchluessel, IsTheKeyOfNothingByDefault) {
    const ErweiterungsSchluessel leer;
    EXPECT_EQ(leer.getTyp(), NONE);
    EXPECT_EQ(leer.getUnterfallart().getNummer(), -99);
    EXPECT_EQ(leer.getUnterfallart().getName(), "notset");
    const Veranlagungszeitraum& vz = leer.getVeranlagungszeitraum();
    EXPECT_EQ(vz.getTyp(), 5);
    EXPECT_EQ(vz.getJahr(), 0);
    EXPECT_EQ(vz.getZeitraum(), 0);
    EXPECT_EQ(vz.getTag(), 0);
    EXPECT_EQ(vz.getQuartal(), -1);
    EXPECT_EQ(vz.getText(), "");
}

TEST(ErweiterungsSchluessel, LogsNothing) {
    const Mitschnitt mitschnitt;
    const ErweiterungsSchluessel schluessel = check(10, jahr(2009));
    const ErweiterungsSchluessel kopie(schluessel);
    EXPECT_EQ(streuwert(kopie), streuwert(schluessel));
    EXPECT_TRUE(mitschnitt.zeilen().empty());
}

TEST(ErweiterungsSchluessel, HashesTheTextOfKindNumberAndYear) {
    const struct {
        tag_erweiterung_typ typ;
        Unterfallart ua;
        Veranlagungszeitraum vz;
        std::size_t streuwert;
    } faelle[] = {
        {kCheck, 10, jahr(2009), 0x03b20ee6},                 // ..._CHECK_...#10#2009
        {NONE, "notset", Veranlagungszeitraum(), 0x85ec8221}, // NONE#-99#0
        {ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG, "LSTB", jahr(98), 0xe3851b61},
        {ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG, std::numeric_limits<std::int32_t>::min(), jahr(2009),
         0x48b0f0bd},
        {ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG, 0, jahr(0), 0xf3dcc795}, // ...#0#2000
        {ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG, 10, jahr(2009), 0xa0dc4617},
        {ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG, std::numeric_limits<std::int32_t>::max(), jahr(9999),
         0x101256b8},
        {static_cast<tag_erweiterung_typ>(7), 10, jahr(2009), 0x72681e38}, // UNBEKANNT#10#2009
    };
    for (const auto& fall : faelle)
        EXPECT_EQ(streuwert({fall.typ, fall.ua, fall.vz}), fall.streuwert)
            << fall.typ << "#" << fall.ua.getNummer() << "#" << fall.vz.getJahr();
}

TEST(ErweiterungsSchluessel, HashesKindsWithoutANameAlikeButKeepsThemApart) {
    const ErweiterungsSchluessel sieben(static_cast<tag_erweiterung_typ>(7), 10, jahr(2009));
    const ErweiterungsSchluessel minusEins(static_cast<tag_erweiterung_typ>(-1), 10, jahr(2009));
    EXPECT_EQ(streuwert(sieben), streuwert(minusEins));
    EXPECT_FALSE(sieben == minusEins);
}

TEST(ErweiterungsSchluessel, HashesWithTheValuesOfItsArgumentOnly) {
    const ErweiterungsSchluessel schluessel = check(10, jahr(2009));
    EXPECT_EQ(check("LSTB", jahr(1998))(schluessel), ErweiterungsSchluessel()(schluessel));
}

TEST(ErweiterungsSchluessel, EqualsAnyPeriodOfTheSameYear) {
    const ErweiterungsSchluessel schluessel = check(10, jahr(2009));
    const Veranlagungszeitraum gleiche[] = {
        Veranlagungszeitraum::parse("2009-05", "YYYY-MM"), Veranlagungszeitraum::parse("200941", "YYYYMM"),
        Veranlagungszeitraum::parse("200952", "YYYYZZ"), Veranlagungszeitraum::parse("20091231", "YYYYMMTT"),
        Veranlagungszeitraum(9, "YY")};
    for (const Veranlagungszeitraum& vz : gleiche) {
        EXPECT_EQ(check("010", vz), schluessel) << vz.getText();
        EXPECT_EQ(streuwert(check("010", vz)), streuwert(schluessel)) << vz.getText();
    }
    EXPECT_FALSE(check(10, jahr(2010)) == schluessel);
}

TEST(ErweiterungsSchluessel, MeetsUnderBothPatternsOfTheYearZero) {
    const ErweiterungsSchluessel kurz = check(0, Veranlagungszeitraum(0, "Y"));
    const ErweiterungsSchluessel lang = check(0, Veranlagungszeitraum(0, "YYYY"));
    EXPECT_EQ(kurz.getVeranlagungszeitraum().getJahr(), 2000);
    EXPECT_EQ(kurz, lang);
    EXPECT_EQ(streuwert(kurz), streuwert(lang));
}

TEST(ErweiterungsSchluessel, KeepsThePeriodIndependentPeriodApartFromEveryYear) {
    const ErweiterungsSchluessel unabhaengig = check(10, Veranlagungszeitraum());
    for (int zahl = 0; zahl <= 9999; ++zahl)
        ASSERT_FALSE(unabhaengig == check(10, jahr(zahl))) << zahl;
    EXPECT_EQ(unabhaengig, check(10, Veranlagungszeitraum()));
}

TEST(ErweiterungsSchluessel, ComparesSubCaseTypesByNumberElseByNameIgnoringCase) {
    EXPECT_EQ(check(10, jahr(2009)), check("0010", jahr(2009)));
    EXPECT_EQ(check("LSTB", jahr(2009)), check("lStB", jahr(2009)));
    EXPECT_EQ(streuwert(check("LSTB", jahr(2009))), streuwert(check("lStB", jahr(2009))));
    EXPECT_FALSE(check(10, jahr(2009)) == check(11, jahr(2009)));
    EXPECT_FALSE(check("LSTB", jahr(2009)) == check("LST", jahr(2009)));
    EXPECT_FALSE(check(10, jahr(2009)) == check("LSTB", jahr(2009)));
}

TEST(ErweiterungsSchluessel, HashesAllNamesOfAYearAlike) {
    EXPECT_EQ(streuwert(check("LSTB", jahr(2009))), streuwert(check("ZMDO", jahr(2009))));
    EXPECT_FALSE(check("LSTB", jahr(2009)) == check("ZMDO", jahr(2009)));
}

// Both rules are fixed: a negative number and a name of the same text are equal by name, but their key texts differ.
TEST(ErweiterungsSchluessel, HashesANegativeNumberAndTheEqualNameApart) {
    EXPECT_EQ(check(-5, jahr(2009)), check("-5", jahr(2009)));
    EXPECT_NE(streuwert(check(-5, jahr(2009))), streuwert(check("-5", jahr(2009))));
    EXPECT_EQ(streuwert(check(-99, jahr(2009))), streuwert(check("-99", jahr(2009))));
}

TEST(ErweiterungsSchluessel, DiffersInKindAlone) {
    const ErweiterungsSchluessel anderer(ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG, 10, jahr(2009));
    EXPECT_FALSE(anderer == check(10, jahr(2009)));
    EXPECT_NE(streuwert(anderer), streuwert(check(10, jahr(2009))));
}

TEST(ErweiterungsSchluessel, IsOrderedByKindThenSubCaseTypeThenYear) {
    const ErweiterungsSchluessel aufsteigend[] = {
        {NONE, 99, jahr(2020)},
        check(9, jahr(2020)),
        check(10, Veranlagungszeitraum()),
        check(10, jahr(2008)),
        check(10, jahr(2009)),
        check("LSTB", jahr(2000)),
        {ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG, 1, jahr(2000)},
    };
    for (std::size_t a = 0; a < std::size(aufsteigend); ++a)
        for (std::size_t b = 0; b < std::size(aufsteigend); ++b)
            EXPECT_EQ(aufsteigend[a] < aufsteigend[b], a < b) << a << " " << b;
    EXPECT_FALSE(check("lstb", jahr(2009)) < check("LSTB", jahr(2009)));
    const ErweiterungsSchluessel mai = check(10, Veranlagungszeitraum::parse("2009-05", "YYYY-MM"));
    EXPECT_FALSE(mai < check(10, jahr(2009)) || check(10, jahr(2009)) < mai) << "they are equal";
}
