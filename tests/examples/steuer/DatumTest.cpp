#include <steuer/Datum.h>

#include <gmock/gmock.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace steuer {
namespace {

using namespace std::chrono_literals;

/// Without a terminating zero, so that a read past the end is detected.
std::optional<Datum> lies(const std::string& text) {
    const std::vector<char> zeichen(text.begin(), text.end());
    return liesDatum({zeichen.data(), zeichen.size()});
}

TEST(Datum, IsReadAsDayMonthYear) {
    EXPECT_EQ(lies("31.12.2009"), Datum(2009y / 12 / 31));
    EXPECT_EQ(lies("01.02.2009"), Datum(2009y / 2 / 1));
    EXPECT_EQ(lies("01.01.1970"), Datum());
    EXPECT_EQ(lies("31.12.1969"), Datum() - std::chrono::days(1));
    EXPECT_EQ(lies("01.01.0001"), Datum(1y / 1 / 1));
    EXPECT_EQ(lies("31.12.9999"), Datum(9999y / 12 / 31));
}

TEST(Datum, OfAnotherFormIsNone) {
    for (const std::string text :
         {"",           " ",           "1.1.2009",    "01.1.2009",   "1.01.2009",       "01.01.09",
          "01.01.209",  "01.01.20091", "01.01.2009 ", " 01.01.2009", "01.01.2009\n",    "01-01-2009",
          "01/01/2009", "2009-01-01",  "2009.01.01",  "01.012.009",  "0101.2009.",      "..........",
          "          ", "+1.01.2009",  "-1.01.2009",  "01.-1.2009",  "01.01.-009",      "01.01.+009",
          "01.01. 209", " 1.01.2009",  "aa.bb.cccc",  "0a.01.2009",  "01.0a.2009",      "01.01.200a",
          "01,01,2009", "01:01:2009",  "0/.01.2009",  "0:.01.2009",  "\xB9\xB2.01.2009"})
        EXPECT_EQ(lies(text), std::nullopt) << testing::PrintToString(text);
    EXPECT_EQ(lies(std::string("01.01.200\0", 10)), std::nullopt);
    EXPECT_EQ(lies(std::string(10, '\0')), std::nullopt);
    EXPECT_EQ(lies("31.12.2009" + std::string(100'000, '0')), std::nullopt);
}

TEST(Datum, HasDigitsAndPointsInTheirPlaces) {
    const std::string muster = "11.11.1111";
    for (std::size_t i = 0; i < muster.size(); ++i)
        for (int c = 0; c <= 0xFF; ++c) {
            std::string text = muster;
            text[i] = static_cast<char>(c);
            const bool istZiffer = c >= '0' && c <= '9';
            if (muster[i] == '.' || !istZiffer) {
                EXPECT_EQ(lies(text).has_value(), text == muster) << testing::PrintToString(text);
            }
        }
}

TEST(Datum, ThatTheCalendarDoesNotHaveIsNone) {
    for (const std::string text :
         {"00.01.2009", "32.01.2009", "01.00.2009", "01.13.2009", "31.04.2009", "31.06.2009", "31.09.2009",
          "31.11.2009", "30.02.2008", "99.99.9999", "00.00.0000", "40.01.2009", "01.20.2009"})
        EXPECT_EQ(lies(text), std::nullopt) << text;
}

TEST(Datum, HasNoYearZero) {
    EXPECT_EQ(lies("01.01.0000"), std::nullopt);
    EXPECT_EQ(lies("29.02.0000"), std::nullopt);
    EXPECT_EQ(lies("31.12.0000"), std::nullopt);
}

TEST(Datum, KnowsLeapYearsByTheCenturyRule) {
    for (const std::string jahr : {"2008", "2012", "1996", "2000", "1600", "2400", "0004"}) {
        EXPECT_NE(lies("29.02." + jahr), std::nullopt) << jahr;
        EXPECT_EQ(lies("30.02." + jahr), std::nullopt) << jahr;
    }
    for (const std::string jahr : {"2009", "2010", "2011", "1900", "1700", "2100", "2200", "0001"}) {
        EXPECT_NE(lies("28.02." + jahr), std::nullopt) << jahr;
        EXPECT_EQ(lies("29.02." + jahr), std::nullopt) << jahr;
    }
}

std::string geschrieben(int zahl, std::size_t stellen) {
    const std::string text = std::to_string(zahl);
    return std::string(stellen - text.size(), '0') + text;
}

TEST(Datum, FollowsTheDayBeforeThroughTheWholeCalendar) {
    const int laengen[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (const int erstes : {1, 1580, 1890, 2096, 9990}) {
        std::optional<Datum> gestern;
        for (int jahr = erstes; jahr < erstes + 10; ++jahr)
            for (int monat = 0; monat <= 13; ++monat)
                for (int tag = 0; tag <= 32; ++tag) {
                    const bool istMonat = monat >= 1 && monat <= 12;
                    const bool istSchaltjahr = (jahr % 4 == 0 && jahr % 100 != 0) || jahr % 400 == 0;
                    const int laenge = istMonat ? laengen[monat - 1] + (monat == 2 && istSchaltjahr) : 0;
                    const std::string text =
                        geschrieben(tag, 2) + '.' + geschrieben(monat, 2) + '.' + geschrieben(jahr, 4);
                    const std::optional<Datum> heute = lies(text);
                    ASSERT_EQ(heute.has_value(), tag >= 1 && tag <= laenge) << text;
                    if (!heute)
                        continue;
                    if (gestern) {
                        ASSERT_EQ(*heute, *gestern + std::chrono::days(1)) << text;
                    }
                    gestern = heute;
                }
    }
}

TEST(Zeitspanne, HoldsItsFirstAndItsLastDay) {
    const Zeitspanne mai{2009y / 5 / 1, 2009y / 5 / 31};
    EXPECT_FALSE(mai.enthaelt(2009y / 4 / 30));
    EXPECT_TRUE(mai.enthaelt(2009y / 5 / 1));
    EXPECT_TRUE(mai.enthaelt(2009y / 5 / 15));
    EXPECT_TRUE(mai.enthaelt(2009y / 5 / 31));
    EXPECT_FALSE(mai.enthaelt(2009y / 6 / 1));
    EXPECT_FALSE(mai.enthaelt(2008y / 5 / 15));
}

TEST(Zeitspanne, OfOneDayHoldsThatDay) {
    const Zeitspanne tag{2008y / 2 / 29, 2008y / 2 / 29};
    EXPECT_TRUE(tag.enthaelt(2008y / 2 / 29));
    EXPECT_FALSE(tag.enthaelt(2008y / 2 / 28));
    EXPECT_FALSE(tag.enthaelt(2008y / 3 / 1));
}

TEST(Zeitspanne, ThatStandsTheWrongWayRoundHoldsNone) {
    const Zeitspanne keine{2009y / 5 / 2, 2009y / 5 / 1};
    for (const int tag : {1, 2, 3})
        EXPECT_FALSE(keine.enthaelt(2009y / 5 / tag)) << tag;
}

} // namespace
} // namespace steuer
