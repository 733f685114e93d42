#include <steuer/Betrag.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace steuer {

void PrintTo(BetragFehler fehler, std::ostream* out) {
    static const char* const namen[] = {"KEINER", "FORM", "NEGATIV", "ZU_GROSS"};
    *out << namen[static_cast<int>(fehler)];
}

namespace {

using enum BetragFehler;

/// Without a terminating zero, so that a read past the end is detected.
GelesenerBetrag lies(const std::string& text) {
    const std::vector<char> zeichen(text.begin(), text.end());
    return liesBetrag({zeichen.data(), zeichen.size()});
}

TEST(Betrag, IsReadInCents) {
    const std::pair<const char*, std::int64_t> faelle[] = {
        {"0", 0},
        {"0,00", 0},
        {"0,01", 1},
        {"0,10", 10},
        {"1", 100},
        {"10", 1000},
        {"1,00", 100},
        {"1234", 123'400},
        {"1234,56", 123'456},
        {"5946,09", 594'609},
        {"999999999999", 99'999'999'999'900},
        {"999999999999,99", kHoechsterBetrag},
    };
    for (const auto& [text, cent] : faelle) {
        const GelesenerBetrag betrag = lies(text);
        EXPECT_EQ(betrag.fehler, KEINER) << text;
        EXPECT_EQ(betrag.cent, cent) << text;
    }
}

TEST(Betrag, OfAnotherFormIsNone) {
    for (const std::string text : {"",
                                   " ",
                                   "-",
                                   ",",
                                   ",5",
                                   ",50",
                                   "1,",
                                   "1,5",
                                   "1,567",
                                   "1,5,6",
                                   "1,,5",
                                   "1,56,",
                                   "1,56,78",
                                   "01",
                                   "00",
                                   "00,10",
                                   "007,00",
                                   "-01",
                                   "1.234,56",
                                   "12.50",
                                   "12.5",
                                   "1 000",
                                   "+5",
                                   "--5",
                                   "-,50",
                                   "- 5",
                                   "5-",
                                   "1,-5",
                                   "1,+5",
                                   "1e5",
                                   "0x1F",
                                   "abc",
                                   "1a",
                                   "1,5a",
                                   "a1,50",
                                   " 5",
                                   "5 ",
                                   "5\t",
                                   "5,00 ",
                                   "5,00 EUR",
                                   "\xB2",
                                   "1\xA0"
                                   "000",
                                   "\xFF\xFF",
                                   "1'000",
                                   "1;50",
                                   "1/2",
                                   ":",
                                   "/"})
        EXPECT_EQ(lies(text).fehler, FORM) << testing::PrintToString(text);
    EXPECT_EQ(lies(std::string("5\0", 2)).fehler, FORM);
    EXPECT_EQ(lies(std::string("5,0\0", 4)).fehler, FORM);
}

TEST(Betrag, BelowZeroIsNegativeHoweverLarge) {
    for (const std::string text : {"-5", "-0,01", "-0,10", "-5946,00", "-999999999999,99", "-1000000000000",
                                   "-9223372036854775808", "-99999999999999999999,99"})
        EXPECT_EQ(lies(text).fehler, NEGATIV) << text;
}

TEST(Betrag, OfZeroHasNoSign) {
    EXPECT_EQ(lies("-0").fehler, FORM);
    EXPECT_EQ(lies("-0,00").fehler, FORM);
}

TEST(Betrag, BeyondTheLargestIsTooLargeAndNeverOverflows) {
    for (const std::string& text :
         {std::string("1000000000000"), std::string("1000000000000,00"), std::string("9999999999999,99"),
          std::string("92233720368547758,07"), std::string("92233720368547758,08"),
          std::string("9223372036854775807"), std::string("18446744073709551616"),
          std::string("18446744073709551617,01"), std::string(10'000, '9'), std::string(10'000, '9') + ",99"})
        EXPECT_EQ(lies(text).fehler, ZU_GROSS) << text.substr(0, 40);
}

TEST(Betrag, OfAnotherFormIsNoneHoweverLarge) {
    EXPECT_EQ(lies(std::string(100, '9') + ",9").fehler, FORM);
    EXPECT_EQ(lies(std::string(100, '9') + "x").fehler, FORM);
    EXPECT_EQ(lies("0" + std::string(100, '9')).fehler, FORM);
}

TEST(Betrag, OfTheLargestCanBeTakenAThousandTimes) {
    EXPECT_LE(kHoechsterBetrag, std::numeric_limits<std::int64_t>::max() / 1000);
}

TEST(Betrag, ReadsBackWhatWasWritten) {
    std::mt19937_64 zufall(1906);
    for (int i = 0; i < 5000; ++i) {
        // Amounts of every length, from one digit on.
        const auto cent = static_cast<std::int64_t>(zufall() % (kHoechsterBetrag + 1) >> zufall() % 47);
        const std::string rest = std::to_string(100 + cent % 100).substr(1);
        const std::string text = std::to_string(cent / 100) + ',' + rest;
        ASSERT_EQ(lies(text).fehler, KEINER) << text;
        ASSERT_EQ(lies(text).cent, cent) << text;
        ASSERT_EQ(lies('-' + text).fehler, cent == 0 ? FORM : NEGATIV) << text;
        ASSERT_EQ(lies(std::to_string(cent / 100)).cent, cent - cent % 100) << text;
    }
}

} // namespace
} // namespace steuer
