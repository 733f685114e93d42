// Which pairs of sub-case type and period an extension serves.

#include "orvoplugin/plugin/erweiterung/UaVzProbe.h"
#include "orvoplugin/plugin/erweiterung/Zeitraumart.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

using Vz = Veranlagungszeitraum;
using VzMap = UaVzProbe::VzMap;

const Unterfallart kZehn(10);
const Unterfallart kBeliebig("notset");

Vz jahr(int wert) { return Vz(wert, "YYYY"); }
Vz code(const char* text) { return Vz::parse(text, "YYYYMM"); }
Vz tag(const char* text) { return Vz::parse(text, "YYYYMMTT"); }

bool bietet(const Vz& angeboten, const Vz& gefragt) {
    return UaVzProbe(kZehn, angeboten).unterstuetzt(kZehn, gefragt);
}

/// Which periods an offered period contains; written as YYYY, YYYYMM or YYYYMMTT.
struct Angebot {
    const char* angeboten;
    std::vector<const char*> enthalten;
    std::vector<const char*> nichtEnthalten;

    friend void PrintTo(const Angebot& angebot, std::ostream* out) { *out << angebot.angeboten; }
};

Vz zeitraum(const std::string& text) {
    return Vz::parse(text, std::string("YYYYMMTT").substr(0, text.size()).c_str());
}

class Zeitraumangebot : public testing::TestWithParam<Angebot> {};

TEST_P(Zeitraumangebot, HoldsWhatLiesInIt) {
    const Vz angeboten = zeitraum(GetParam().angeboten);
    for (const char* const gefragt : GetParam().enthalten)
        EXPECT_TRUE(bietet(angeboten, zeitraum(gefragt))) << gefragt;
    for (const char* const gefragt : GetParam().nichtEnthalten)
        EXPECT_FALSE(bietet(angeboten, zeitraum(gefragt))) << gefragt;
}

INSTANTIATE_TEST_SUITE_P(
    Arten, Zeitraumangebot,
    testing::Values(
        Angebot{"2009",
                {"2009", "200919", "200901", "200912", "200913", "200941", "200954", "20090531", "20091231"},
                {"2008", "2010", "200805", "201041", "20100101"}},
        Angebot{"200919", {"2009", "200905", "20090531"}, {"2010"}},
        Angebot{"200942",
                {"200942", "200952", "200904", "200905", "200906", "20090401", "20090630"},
                {"2009", "200919", "200903", "200907", "200941", "200953", "201042", "20090331", "201005"}},
        Angebot{"200952", {"200942", "200952", "200905", "20090531"}, {"2009", "200943", "200901", "201052"}},
        Angebot{"200905",
                {"200905", "20090501", "20090531"},
                {"2009", "200904", "200906", "200942", "200952", "201005", "20090430"}},
        Angebot{"20090531", {"20090531"}, {"2009", "200905", "200942", "20090530", "20090431", "20100531"}}),
    [](const auto& fall) { return std::string("Z") + fall.param.angeboten; });

TEST(Unterstuetzung, IsGivenForTheSubcaseTypesNamedOnly) {
    UaVzProbe probe(kZehn, jahr(2009));
    EXPECT_TRUE(probe.unterstuetzt(kZehn, jahr(2009)));
    EXPECT_TRUE(probe.unterstuetzt(Unterfallart("010"), tag("20090531")));
    EXPECT_TRUE(probe.unterstuetzt(kZehn, code("200942")));
    EXPECT_FALSE(probe.unterstuetzt(kZehn, jahr(2010)));
    EXPECT_FALSE(probe.unterstuetzt(Unterfallart(12), jahr(2009)));
    EXPECT_FALSE(probe.unterstuetzt(Unterfallart("LSTB"), jahr(2009)));
}

TEST(Unterstuetzung, KeepsThePeriodsOfSubcaseTypesApart) {
    UaVzProbe probe(VzMap{{10, {jahr(2009)}}, {12, {jahr(2010), code("200941")}}});
    EXPECT_TRUE(probe.unterstuetzt(kZehn, jahr(2009)));
    EXPECT_FALSE(probe.unterstuetzt(kZehn, jahr(2010)));
    EXPECT_TRUE(probe.unterstuetzt(Unterfallart(12), jahr(2010)));
    EXPECT_TRUE(probe.unterstuetzt(Unterfallart(12), code("200902")));
    EXPECT_FALSE(probe.unterstuetzt(Unterfallart(12), jahr(2009)));
}

TEST(Unterstuetzung, OfAnySubcaseTypeIsGivenWhereOneOfThemServesThePeriod) {
    UaVzProbe probe(VzMap{{10, {jahr(2009)}}, {12, {jahr(2010)}}, {64, {}}});
    for (const Unterfallart& beliebig : {kBeliebig, Unterfallart("NOTSET"), Unterfallart("NotSet")}) {
        EXPECT_TRUE(probe.unterstuetzt(beliebig, jahr(2009)));
        EXPECT_TRUE(probe.unterstuetzt(beliebig, code("201004")));
        EXPECT_FALSE(probe.unterstuetzt(beliebig, jahr(2011)));
    }
}

TEST(Unterstuetzung, OfAnySubcaseTypeAndAnyPeriodIsGivenEvenByAnExtensionThatServesNothing) {
    UaVzProbe leer(VzMap{});
    for (const Unterfallart& beliebig : {kBeliebig, Unterfallart("NOTSET")})
        for (const Vz& vz : {Vz(), mitArt(jahr(2009), -1), mitArt(jahr(2009), 5)})
            EXPECT_TRUE(leer.unterstuetzt(beliebig, vz)) << vz.getTyp();
    EXPECT_FALSE(leer.unterstuetzt(kBeliebig, jahr(2009)));
    EXPECT_FALSE(leer.unterstuetzt(kZehn, Vz()));
}

TEST(Unterstuetzung, OfAnyPeriodIsGivenForASubcaseTypeThatHasOne) {
    UaVzProbe probe(VzMap{{10, {jahr(2009)}}, {12, {}}});
    const Vz ungelesen = mitArt(jahr(1999), Vz::UNGELESEN);
    ASSERT_EQ(ungelesen.getTyp(), -1);
    for (const Vz& vz : {Vz(), ungelesen}) {
        EXPECT_TRUE(probe.unterstuetzt(kZehn, vz));
        EXPECT_FALSE(probe.unterstuetzt(Unterfallart(12), vz)) << "named, but without a period";
        EXPECT_FALSE(probe.unterstuetzt(Unterfallart(13), vz));
    }
}

TEST(Unterstuetzung, OfAPeriodOfKindFourIsAskedLikeThatOfAnyOtherKind) {
    const Vz immer = mitArt(jahr(2009), Vz::IMMER);
    ASSERT_EQ(immer.getTyp(), 4);
    EXPECT_TRUE(bietet(jahr(2009), immer)) << "the kind of the period asked for is not looked at";
    EXPECT_FALSE(bietet(jahr(2010), immer));
}

TEST(Unterstuetzung, OfEveryPeriodIsGivenByAnOfferWithoutAPeriod) {
    for (const Vz& angeboten : {Vz(), mitArt(jahr(2009), Vz::UNGELESEN), mitArt(jahr(2009), Vz::IMMER),
                                mitArt(jahr(2009), Vz::UNABHAENGIG)}) {
        UaVzProbe probe(VzMap{{10, {angeboten}}, {12, {jahr(2009)}}});
        for (const Vz& gefragt : {Vz(), jahr(1999), code("200942"), code("200954"), tag("20300531")})
            EXPECT_TRUE(probe.unterstuetzt(kZehn, gefragt)) << angeboten.getTyp();
        EXPECT_FALSE(probe.unterstuetzt(Unterfallart(12), jahr(1999))) << "of its own sub-case type only";
        EXPECT_TRUE(probe.unterstuetzt(kBeliebig, jahr(1999)));
    }
}

TEST(Unterstuetzung, IsNeverGivenByAnOfferOfAnUnknownKind) {
    for (const int art : {7, 99, -2}) {
        const Vz fremd = mitArt(jahr(2009), art);
        ASSERT_EQ(fremd.getTyp(), art);
        EXPECT_FALSE(bietet(fremd, jahr(2009)));
        EXPECT_FALSE(bietet(fremd, fremd));
        EXPECT_TRUE(bietet(fremd, Vz())) << "any period will do, and there is one";
    }
}

TEST(Unterstuetzung, FindsThePeriodAmongSeveralInAnyOrder) {
    UaVzProbe probe(kZehn,
                    std::list<Vz>{tag("20110131"), jahr(2009), code("201003"), code("201044"), jahr(2007)});
    for (const Vz& gefragt : {jahr(2009), jahr(2007), code("201003"), code("201012"), tag("20110131")})
        EXPECT_TRUE(probe.unterstuetzt(kZehn, gefragt)) << gefragt.getText();
    for (const Vz& gefragt : {jahr(2008), jahr(2010), code("201002"), code("201009"), tag("20110130")})
        EXPECT_FALSE(probe.unterstuetzt(kZehn, gefragt)) << gefragt.getText();
}

TEST(Unterstuetzung, TakesOfEqualPeriodsTheFirstWhateverItsKind) {
    const Vz immer = mitArt(jahr(2009), Vz::IMMER); // equal to the year 2009, because kinds are not compared
    UaVzProbe jahrZuerst(kZehn, std::list<Vz>{jahr(2009), immer});
    EXPECT_TRUE(jahrZuerst.unterstuetzt(kZehn, jahr(2009)));
    EXPECT_FALSE(jahrZuerst.unterstuetzt(kZehn, jahr(2010)));
    UaVzProbe immerZuerst(kZehn, std::list<Vz>{immer, jahr(2009)});
    EXPECT_TRUE(immerZuerst.unterstuetzt(kZehn, jahr(2010)));

    // Sub-case types order the pairs first.
    UaVzProbe mehrere(VzMap{{12, {immer}}, {10, {jahr(2009)}}});
    EXPECT_FALSE(mehrere.unterstuetzt(kBeliebig, jahr(2010)));
    EXPECT_TRUE(mehrere.unterstuetzt(Unterfallart(12), jahr(2010)));
}

TEST(Unterstuetzung, ServesNotsetItselfWhenItWasNamed) {
    // A plugin may declare the word as a sub-case type; in a query it still stands for all of them.
    UaVzProbe probe(VzMap{{"notset", {jahr(2008)}}, {10, {jahr(2009)}}});
    EXPECT_TRUE(probe.unterstuetzt(kBeliebig, jahr(2008)));
    EXPECT_TRUE(probe.unterstuetzt(kBeliebig, jahr(2009)));
    EXPECT_FALSE(probe.unterstuetzt(kZehn, jahr(2008)));
}

} // namespace
