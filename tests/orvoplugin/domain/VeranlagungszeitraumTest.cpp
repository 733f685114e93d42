#include <orvoplugin/domain/Veranlagungszeitraum.h>

#include <orvoplugin/domain/InvalidFormatException.h>

#include "orvoplugin/plugin/erweiterung/Zeitraumart.h"

#include <gmock/gmock.h>

#include <ostream>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace {

using orvo::exception::InvalidFormatException;
using testing::ElementsAre;
using Vz = Veranlagungszeitraum;

/// All fields of a period: kind, year, month code, day, quarter.
using Felder = std::tuple<int, int, int, int, int>;

Felder felder(const Vz& vz) {
    return {vz.getTyp(), vz.getJahr(), vz.getZeitraum(), vz.getTag(), vz.getQuartal()};
}

/// The error of that text under that pattern; "" if there is none.
std::string meldung(const std::string& text, const char* format) {
    try {
        Vz::parse(text, format);
    } catch (const InvalidFormatException& e) {
        EXPECT_EQ(e.getErrorCode(), 610001002);
        return e.what();
    }
    return "";
}

const std::string kLaenge = "Ung\xFCltige String L\xE4nge";
const std::string kNichtNumerisch = "Zeitraum nicht numerisch.";

std::string trennzeichen(const std::string& position, const std::string& zeichen) {
    return "Angegebener Zeitraumstring entspricht nicht dem erwarteten Format. An Position " + position +
           " wird das Trennzeichen " + zeichen + " erwartet.";
}

std::string formatangabe(const std::string& format, const std::string& zeichen) {
    return "Ung\xFCltige Formatangabe: " + format + " Zeichen " + zeichen + " nicht erlaubt in Formatangabe!";
}

TEST(Veranlagungszeitraum, WithoutArgumentsIsThePeriodIndependentOne) {
    const Vz vz;
    EXPECT_EQ(felder(vz), Felder(Vz::UNABHAENGIG, 0, 0, 0, -1));
    EXPECT_EQ(vz.getTyp(), 5);
    EXPECT_EQ(vz.getText(), "");
}

TEST(Veranlagungszeitraum, OfANumberAndAYearPatternIsAYear) {
    const Vz vz(2009, "YYYY");
    EXPECT_EQ(felder(vz), Felder(0, 2009, 0, 0, -1));
    EXPECT_EQ(vz.getText(), "2009");
}

struct Lesart {
    const char* text;
    const char* format;
    Felder erwartet;

    friend void PrintTo(const Lesart& lesart, std::ostream* out) {
        *out << '"' << lesart.text << "\" as " << lesart.format;
    }
};

class VeranlagungszeitraumLesart : public testing::TestWithParam<Lesart> {};

TEST_P(VeranlagungszeitraumLesart, IsReadFromATextUnderAPattern) {
    const auto& [text, format, erwartet] = GetParam();
    const Vz vz = Vz::parse(text, format);
    EXPECT_EQ(felder(vz), erwartet) << text << " as " << format;
    EXPECT_EQ(vz.getText(), text);
}

std::string nummer(const testing::TestParamInfo<Lesart>& fall) { return "Nr" + std::to_string(fall.index); }

INSTANTIATE_TEST_SUITE_P(
    Jahre, VeranlagungszeitraumLesart,
    testing::Values(Lesart{"2009", "YYYY", {0, 2009, 0, 0, -1}}, Lesart{"09", "YY", {0, 2009, 0, 0, -1}},
                    Lesart{"97", "YY", {0, 2097, 0, 0, -1}}, Lesart{"98", "YY", {0, 1998, 0, 0, -1}},
                    Lesart{"99", "YY", {0, 1999, 0, 0, -1}}, Lesart{"00", "YY", {0, 2000, 0, 0, -1}},
                    Lesart{"100", "YYY", {0, 2100, 0, 0, -1}}, Lesart{"999", "YYY", {0, 2999, 0, 0, -1}},
                    Lesart{"1000", "YYYY", {0, 1000, 0, 0, -1}}, Lesart{"0098", "YYYY", {0, 1998, 0, 0, -1}},
                    Lesart{"12345", "YYYYY", {0, 12345, 0, 0, -1}},
                    Lesart{"200900", "YYYYMM", {0, 2009, 0, 0, -1}},
                    Lesart{"200919", "YYYYMM", {0, 2009, 19, 0, -1}},
                    Lesart{"200919", "YYYYZZ", {0, 2009, 19, 0, -1}}),
    nummer);

INSTANTIATE_TEST_SUITE_P(Monate, VeranlagungszeitraumLesart,
                         testing::Values(Lesart{"200901", "YYYYMM", {2, 2009, 1, 0, 41}},
                                         Lesart{"200903", "YYYYMM", {2, 2009, 3, 0, 41}},
                                         Lesart{"200904", "YYYYMM", {2, 2009, 4, 0, 42}},
                                         Lesart{"200906", "YYYYZZ", {2, 2009, 6, 0, 42}},
                                         Lesart{"200907", "YYYYMM", {2, 2009, 7, 0, 43}},
                                         Lesart{"200909", "YYYYMM", {2, 2009, 9, 0, 43}},
                                         Lesart{"200910", "YYYYMM", {2, 2009, 10, 0, 44}},
                                         Lesart{"200912", "YYYYMM", {2, 2009, 12, 0, 44}},
                                         Lesart{"2009-05", "YYYY-MM", {2, 2009, 5, 0, 42}},
                                         Lesart{"05/2009", "MM/YYYY", {2, 2009, 5, 0, 42}}),
                         nummer);

INSTANTIATE_TEST_SUITE_P(Quartale, VeranlagungszeitraumLesart,
                         testing::Values(Lesart{"200941", "YYYYMM", {3, 2009, 41, 0, 41}},
                                         Lesart{"200944", "YYYYZZ", {3, 2009, 44, 0, 44}},
                                         Lesart{"200951", "YYYYMM", {6, 2009, 51, 0, 41}},
                                         Lesart{"200952", "YYYYMM", {6, 2009, 52, 0, 42}},
                                         Lesart{"200954", "YYYYZZ", {6, 2009, 54, 0, 44}}),
                         nummer);

INSTANTIATE_TEST_SUITE_P(Tage, VeranlagungszeitraumLesart,
                         testing::Values(Lesart{"2009-05-31", "YYYY-MM-TT", {1, 2009, 5, 31, 42}},
                                         Lesart{"31/05/98", "TT/MM/YY", {1, 1998, 5, 31, 42}},
                                         Lesart{"20091231", "YYYYMMTT", {1, 2009, 12, 31, 44}},
                                         Lesart{"200907", "YYYYTT", {1, 2009, 0, 7, 41}},
                                         Lesart{"20094107", "YYYYZZTT", {1, 2009, 41, 7, 54}},
                                         Lesart{"20095207", "YYYYZZTT", {1, 2009, 52, 7, 58}},
                                         Lesart{"20091907", "YYYYZZTT", {1, 2009, 19, 7, 47}},
                                         Lesart{"20090500", "YYYYMMTT", {2, 2009, 5, 0, 42}}),
                         nummer);

INSTANTIATE_TEST_SUITE_P(Sonderbares, VeranlagungszeitraumLesart,
                         testing::Values(Lesart{"200913", "YYYYMM", {2, 2009, 13, 0, 45}},
                                         Lesart{"200940", "YYYYMM", {2, 2009, 40, 0, 54}},
                                         Lesart{"200945", "YYYYMM", {2, 2009, 45, 0, 55}},
                                         Lesart{"200950", "YYYYMM", {2, 2009, 50, 0, 57}},
                                         Lesart{"200955", "YYYYMM", {2, 2009, 55, 0, 59}},
                                         Lesart{"200999", "YYYYTT", {1, 2009, 0, 99, 41}},
                                         Lesart{"", "", {0, 2000, 0, 0, -1}},
                                         Lesart{"20510902", "YYZYYYZZ", {2, 20109, 502, 0, 208}},
                                         Lesart{"05", "MZ", {2, 2000, 5, 0, 42}}),
                         nummer);

TEST(Veranlagungszeitraum, TakesHyphenSlashAndBackslashAsSeparators) {
    const Felder mai2009(2, 2009, 5, 0, 42);
    EXPECT_EQ(felder(Vz::parse("09-5", "YY-M")), mai2009);
    EXPECT_EQ(felder(Vz::parse("09/5", "YY/M")), mai2009);
    EXPECT_EQ(felder(Vz::parse("09\\5", "YY\\M")), mai2009);
    EXPECT_EQ(felder(Vz::parse("-/\\", "-/\\")), Felder(0, 2000, 0, 0, -1));
}

TEST(Veranlagungszeitraum, OfANumberGetsLeadingZerosUpToThePatternsWidth) {
    EXPECT_EQ(felder(Vz(0, "YYYY")), Felder(0, 2000, 0, 0, -1));
    EXPECT_EQ(felder(Vz(9, "YYYY")), Felder(0, 2009, 0, 0, -1));
    EXPECT_EQ(felder(Vz(98, "YYYY")), Felder(0, 1998, 0, 0, -1));
    EXPECT_EQ(felder(Vz(52009, "MMYYYY")), Felder(2, 2009, 5, 0, 42));
}

TEST(Veranlagungszeitraum, OfANumberKeepsTheNumbersOwnText) {
    EXPECT_EQ(Vz(9, "YYYY").getText(), "9");
    EXPECT_EQ(Vz(0, "YY").getText(), "0");
}

TEST(Veranlagungszeitraum, OfANumberWiderThanThePatternIsRefused) {
    EXPECT_THROW(Vz(2009, "YY"), InvalidFormatException);
    EXPECT_THROW(Vz(2009, ""), InvalidFormatException);
    for (const int zahl : {2, 2009})
        EXPECT_THAT([=] { Vz(zahl, nullptr); }, testing::ThrowsMessage<InvalidFormatException>(kLaenge));
}

TEST(Veranlagungszeitraum, OfANegativeNumberIsRefusedForItsSign) {
    try {
        Vz(-9, "YYYY");
        FAIL();
    } catch (const InvalidFormatException& e) {
        EXPECT_EQ(e.what(), kNichtNumerisch);
    }
    EXPECT_THAT([] { Vz(-2009, "YYYY"); }, testing::ThrowsMessage<InvalidFormatException>(kLaenge))
        << "the length is looked at first";
    EXPECT_EQ(felder(Vz(-2009, "-YYYY")), Felder(0, 2009, 0, 0, -1)) << "the sign is a separator";
}

TEST(Veranlagungszeitraum, OfAnotherLengthThanItsPatternIsRefused) {
    EXPECT_EQ(meldung("200", "YYYY"), kLaenge);
    EXPECT_EQ(meldung("20090", "YYYY"), kLaenge);
    EXPECT_EQ(meldung("", "YYYY"), kLaenge);
    EXPECT_EQ(meldung("2009", ""), kLaenge);
    EXPECT_EQ(meldung("2009", nullptr), kLaenge);
    EXPECT_EQ(meldung("2", nullptr), kLaenge);
    EXPECT_EQ(meldung("xx", "????"), kLaenge) << "the length is looked at before anything else";
}

TEST(Veranlagungszeitraum, WithAnotherCharacterInPlaceOfASeparatorIsRefused) {
    EXPECT_EQ(meldung("2009-05", "YYYY/MM"), trennzeichen("4", "/"));
    EXPECT_EQ(meldung("2009/05", "YYYY-MM"), trennzeichen("4", "-"));
    EXPECT_EQ(meldung("2009 05", "YYYY\\MM"), trennzeichen("4", "\\"));
    EXPECT_EQ(meldung("12009", "-YYYY"), trennzeichen("0", "-"));
    EXPECT_EQ(meldung("x0091", "YYYY-"), kNichtNumerisch) << "an earlier position comes first";
    EXPECT_EQ(meldung("00000000001", "YYYYYYYYYY-"), trennzeichen("10", "-"));
}

TEST(Veranlagungszeitraum, WithACharacterThatIsNoDigitIsRefused) {
    for (const char* const text : {"2 09", " 009", "+009", "-009", "200x", "200\xB2", "2009-"})
        EXPECT_EQ(meldung(text, text[4] ? "YYYYM" : "YYYY"), kNichtNumerisch) << text;
    EXPECT_EQ(meldung(std::string("200\0", 4), "YYYY"), kNichtNumerisch);
    EXPECT_EQ(meldung("200:", "YYYY"), kNichtNumerisch);
    EXPECT_EQ(meldung("200/", "YYYY"), kNichtNumerisch);
}

TEST(Veranlagungszeitraum, UnderAnUnknownPatternLetterNamesTheDigitReadAndNotTheLetter) {
    EXPECT_EQ(meldung("20097", "YYYYX"), formatangabe("YYYYX", "7"));
    EXPECT_EQ(meldung("2009", "yyyy"), formatangabe("yyyy", "2"));
    EXPECT_EQ(meldung("2009.05", "YYYY.MM"), kNichtNumerisch)
        << "the point must be a digit, for it is no separator";
    EXPECT_EQ(meldung("2009505", "YYYY.MM"), formatangabe("YYYY.MM", "5"));
    EXPECT_EQ(meldung("2009x", "YYYYX"), kNichtNumerisch)
        << "the digit is read before the letter is looked at";
}

TEST(Veranlagungszeitraum, WithANumberBeyond32BitsIsRefused) {
    EXPECT_EQ(Vz::parse("2147483647", "YYYYYYYYYY").getJahr(), 2147483647);
    EXPECT_EQ(meldung("2147483648", "YYYYYYYYYY"), kNichtNumerisch);
    EXPECT_EQ(meldung("99999999999", "MMMMMMMMMMM"), kNichtNumerisch);
    EXPECT_EQ(meldung("99999999999", "TTTTTTTTTTT"), kNichtNumerisch);
}

TEST(Veranlagungszeitraum, OrdersByYearThenQuarterThenMonthThenDay) {
    const std::vector<Vz> geordnet{Vz(),
                                   Vz::parse("2008", "YYYY"),
                                   Vz::parse("200854", "YYYYZZ"),
                                   Vz::parse("2009", "YYYY"),
                                   Vz::parse("200919", "YYYYZZ"),
                                   Vz::parse("200901", "YYYYMM"),
                                   Vz::parse("20090102", "YYYYMMTT"),
                                   Vz::parse("20090103", "YYYYMMTT"),
                                   Vz::parse("200902", "YYYYMM"),
                                   Vz::parse("200941", "YYYYZZ"),
                                   Vz::parse("200951", "YYYYZZ"),
                                   Vz::parse("200904", "YYYYMM"),
                                   Vz::parse("200942", "YYYYZZ"),
                                   Vz::parse("2010", "YYYY")};
    for (std::size_t i = 0; i < geordnet.size(); ++i)
        for (std::size_t j = 0; j < geordnet.size(); ++j) {
            EXPECT_EQ(geordnet[i] < geordnet[j], i < j) << i << " and " << j;
            EXPECT_EQ(geordnet[i] == geordnet[j], i == j) << i << " and " << j;
        }
}

TEST(Veranlagungszeitraum, IsEqualHoweverItWasWritten) {
    EXPECT_TRUE(Vz(2009, "YYYY") == Vz(9, "YY"));
    EXPECT_TRUE(Vz::parse("2009-05", "YYYY-MM") == Vz::parse("05/09", "ZZ/YY"));
    EXPECT_TRUE(Vz() == Vz());
    EXPECT_TRUE(Vz() != Vz(0, "YYYY")) << "the year written 0 is 2000";
    const Vz immer = mitArt(Vz(2009, "YYYY"), Vz::IMMER);
    ASSERT_EQ(immer.getTyp(), Vz::IMMER);
    EXPECT_TRUE(immer == Vz(2009, "YYYY")) << "the kind is not compared";
}

TEST(Veranlagungszeitraum, LivesInSortedSets) {
    const std::set<Vz> menge{Vz(2010, "YYYY"), Vz(2009, "YYYY"), Vz(9, "YY"), Vz()};
    std::vector<int> jahre;
    for (const Vz& vz : menge)
        jahre.push_back(vz.getJahr());
    EXPECT_THAT(jahre, ElementsAre(0, 2009, 2010));
}

TEST(Veranlagungszeitraum, IsCopiedWithAllItsFields) {
    const Vz vz = Vz::parse("2009-05-31", "YYYY-MM-TT");
    const Vz kopie(vz);
    Vz zugewiesen;
    zugewiesen = vz;
    for (const Vz& andere : {kopie, zugewiesen}) {
        EXPECT_EQ(felder(andere), felder(vz));
        EXPECT_EQ(andere.getText(), "2009-05-31");
    }
}

TEST(Veranlagungszeitraum, MayBeDerivedFromAndDeletedThroughItsBase) {
    static_assert(std::has_virtual_destructor_v<Vz>);
}

} // namespace
