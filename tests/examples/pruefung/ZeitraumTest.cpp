#include <pruefung/Zeitraum.h>

#include <gmock/gmock.h>

#include <chrono>
#include <string>
#include <utility>

namespace pruefung {
namespace {

using namespace std::chrono_literals;
using std::chrono::year_month_day;

struct Fall {
    const char* text;
    const char* muster;
    year_month_day von;
    year_month_day bis;
};

TEST(Zeitraum, HasTheDaysOfItsYearQuarterMonthOrDay) {
    const Fall faelle[] = {
        {"2009", "YYYY", 2009y / 1 / 1, 2009y / 12 / 31},
        {"2008", "YYYY", 2008y / 1 / 1, 2008y / 12 / 31},
        {"1", "Y", 2001y / 1 / 1, 2001y / 12 / 31},
        {"98", "YY", 1998y / 1 / 1, 1998y / 12 / 31},
        {"9999", "YYYY", 9999y / 1 / 1, 9999y / 12 / 31},
        {"2009-00", "YYYY-ZZ", 2009y / 1 / 1, 2009y / 12 / 31},
        {"2009-19", "YYYY-ZZ", 2009y / 1 / 1, 2009y / 12 / 31}, // the code of the whole year
        {"2009-41", "YYYY-ZZ", 2009y / 1 / 1, 2009y / 3 / 31},
        {"2009-42", "YYYY-ZZ", 2009y / 4 / 1, 2009y / 6 / 30},
        {"2009-43", "YYYY-ZZ", 2009y / 7 / 1, 2009y / 9 / 30},
        {"2009-44", "YYYY-ZZ", 2009y / 10 / 1, 2009y / 12 / 31},
        {"2009-51", "YYYY-ZZ", 2009y / 1 / 1, 2009y / 3 / 31},
        {"2009-52", "YYYY-ZZ", 2009y / 4 / 1, 2009y / 6 / 30},
        {"2009-53", "YYYY-ZZ", 2009y / 7 / 1, 2009y / 9 / 30},
        {"2009-54", "YYYY-ZZ", 2009y / 10 / 1, 2009y / 12 / 31},
        {"2009-01", "YYYY-MM", 2009y / 1 / 1, 2009y / 1 / 31},
        {"2009-02", "YYYY-MM", 2009y / 2 / 1, 2009y / 2 / 28},
        {"2008-02", "YYYY-MM", 2008y / 2 / 1, 2008y / 2 / 29},
        {"1900-02", "YYYY-MM", 1900y / 2 / 1, 1900y / 2 / 28},
        {"2000-02", "YYYY-MM", 2000y / 2 / 1, 2000y / 2 / 29},
        {"2009-04", "YYYY-MM", 2009y / 4 / 1, 2009y / 4 / 30},
        {"2009-12", "YYYY-MM", 2009y / 12 / 1, 2009y / 12 / 31},
        {"2009-05-17", "YYYY-MM-TT", 2009y / 5 / 17, 2009y / 5 / 17},
        {"2008-02-29", "YYYY-MM-TT", 2008y / 2 / 29, 2008y / 2 / 29},
    };
    for (const auto& [text, muster, von, bis] : faelle) {
        const auto spanne = zeitspanneVon(Veranlagungszeitraum::parse(text, muster));
        ASSERT_TRUE(spanne) << text;
        EXPECT_TRUE(spanne->von == von) << text;
        EXPECT_TRUE(spanne->bis == bis) << text;
    }
}

TEST(Zeitraum, ThatTheCalendarDoesNotHaveHasNoDays) {
    const std::pair<const char*, const char*> faelle[] = {
        {"2009-13", "YYYY-MM"},
        {"2009-18", "YYYY-MM"},
        {"2009-20", "YYYY-ZZ"},
        {"2009-40", "YYYY-ZZ"},
        {"2009-45", "YYYY-ZZ"},
        {"2009-50", "YYYY-ZZ"},
        {"2009-55", "YYYY-ZZ"},
        {"2009-99", "YYYY-ZZ"},
        {"2009-257", "YYYY-ZZZ"},
        {"2009-04-31", "YYYY-MM-TT"},
        {"2009-02-29", "YYYY-MM-TT"},
        {"1900-02-29", "YYYY-MM-TT"},
        {"2009-00-01", "YYYY-MM-TT"},
        {"2009-13-01", "YYYY-MM-TT"},
        {"2009-42-01", "YYYY-ZZ-TT"},
        {"2009-05-32", "YYYY-MM-TT"},
        {"2009-05-257", "YYYY-MM-TTT"},
        {"2009-261-01", "YYYY-MMM-TT"},
        {"10000", "YYYYY"},
        {"10000-05", "YYYYY-MM"},
        {"67545", "YYYYY"},
        {"2147483647", "YYYYYYYYYY"},
        {"2009-2147483647", "YYYY-MMMMMMMMMM"},
        {"2009-05-2147483647", "YYYY-MM-TTTTTTTTTT"},
    };
    for (const auto& [text, muster] : faelle) {
        const auto spanne = zeitspanneVon(Veranlagungszeitraum::parse(text, muster));
        ASSERT_TRUE(spanne) << text;
        EXPECT_GT(spanne->von, spanne->bis) << text;
        EXPECT_FALSE(spanne->enthaelt(spanne->von)) << text;
        EXPECT_FALSE(spanne->enthaelt(spanne->bis)) << text;
    }
}

TEST(Zeitraum, ThatIsIndependentBoundsNoDates) { EXPECT_FALSE(zeitspanneVon(Veranlagungszeitraum())); }

TEST(Zeitraum, HasTheDaysOfEveryMonth) {
    for (int jahr = 1995; jahr <= 2105; ++jahr)
        for (int monat = 1; monat <= 12; ++monat) {
            const auto spanne = zeitspanneVon(Veranlagungszeitraum(jahr * 100 + monat, "YYYYMM"));
            ASSERT_TRUE(spanne);
            const year_month_day von{spanne->von};
            const year_month_day danach{spanne->bis + std::chrono::days(1)};
            ASSERT_TRUE(von == std::chrono::year(jahr) / monat / 1);
            ASSERT_TRUE(danach == std::chrono::year(jahr + monat / 12) / (monat % 12 + 1) / 1);
        }
}

TEST(Jahre, AreListedFromTheFirstToTheLast) {
    using testing::ElementsAre;
    EXPECT_THAT(jahre(2009, 2011),
                ElementsAre(Veranlagungszeitraum(2009, "YYYY"), Veranlagungszeitraum(2010, "YYYY"),
                            Veranlagungszeitraum(2011, "YYYY")));
    EXPECT_THAT(jahre(2010, 2010), ElementsAre(Veranlagungszeitraum(2010, "YYYY")));
    EXPECT_TRUE(jahre(2011, 2010).empty());
    EXPECT_EQ(jahre(2009, 2009).front().getTyp(), Veranlagungszeitraum::JAHR);
}

} // namespace
} // namespace pruefung
