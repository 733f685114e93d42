#include <orvoutil/OrvoVersion.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using orvo::orvoutil::OrvoVersion;

namespace {

/// Compares both ways, with every operator.
void erwarteGleich(const std::string& a, const std::string& b) {
    const OrvoVersion links(a);
    const OrvoVersion rechts(b);
    EXPECT_TRUE(links == rechts && rechts == links) << a << " / " << b;
    EXPECT_FALSE(links != rechts || links < rechts || links > rechts) << a << " / " << b;
    EXPECT_TRUE(links <= rechts && links >= rechts) << a << " / " << b;
}

void erwarteKleiner(const std::string& a, const std::string& b) {
    const OrvoVersion links(a);
    const OrvoVersion rechts(b);
    EXPECT_TRUE(links < rechts && rechts > links && links <= rechts && links != rechts) << a << " / " << b;
    EXPECT_FALSE(links > rechts || rechts < links || links >= rechts || links == rechts) << a << " / " << b;
}

} // namespace

TEST(OrvoVersion, ComparesNumberByNumber) {
    erwarteKleiner("1.9", "1.10");
    erwarteKleiner("1.2.3", "1.3");
    erwarteKleiner("9", "10");
    erwarteKleiner("17.4.5.99", "17.4.6");
    erwarteGleich("17.4.6", "17.4.6");
}

TEST(OrvoVersion, TreatsMissingNumbersAsZero) {
    erwarteGleich("1", "1.0.0");
    erwarteGleich("", "0.0");
    erwarteKleiner("1", "1.0.1");
    erwarteKleiner("", "0.0.1");
}

TEST(OrvoVersion, TakesCommasAndBlanks) {
    erwarteGleich("17, 4, 6, 0", "17.4.6");
    erwarteGleich(" 1 .\t2 ", "1.2");
    erwarteKleiner("1,9", "1.10");
}

TEST(OrvoVersion, TreatsPartsThatAreNoNumbersAsZero) {
    erwarteGleich("1.x.3", "1.0.3");
    erwarteGleich("1.2b", "1.0");
    erwarteGleich("1 2", "0");
    erwarteGleich("-1", "0");
    erwarteGleich("+1", "0");
    erwarteGleich("1..2", "1.0.2");
    erwarteGleich("...", "");
    erwarteGleich("   ", "");
    erwarteGleich(std::string("1\0", 2), "0");
    erwarteGleich("\xB2.5", "0.5");
    erwarteKleiner("1.x", "1.0.1");
}

TEST(OrvoVersion, IgnoresLeadingZeros) {
    erwarteGleich("01.002", "1.2");
    erwarteGleich("000", "0");
    erwarteKleiner("0009", "10");
}

TEST(OrvoVersion, IsExactForNumbersOfAnyLength) {
    erwarteKleiner("4294967295", "4294967296");
    erwarteKleiner("18446744073709551615", "18446744073709551616");
    const std::string lang(10000, '9');
    erwarteKleiner(lang + "8", lang + "9");
    erwarteKleiner(lang, "1" + std::string(10000, '0'));
    erwarteGleich(std::string(10000, '0') + "1", "1");
}

TEST(OrvoVersion, OrdersWholly) {
    const std::vector<std::string> aufsteigend{"",    "0.0.1", "0.1",    "0.1.1", "1",
                                               "1.9", "1.10",  "1.10.1", "2",     "10.0.0.1"};
    for (std::size_t i = 0; i < aufsteigend.size(); ++i) {
        erwarteGleich(aufsteigend[i], aufsteigend[i] + ".0");
        for (std::size_t j = i + 1; j < aufsteigend.size(); ++j)
            erwarteKleiner(aufsteigend[i], aufsteigend[j]);
    }
}

TEST(OrvoVersion, ComparesWithoutThrowing) {
    static_assert(noexcept(std::declval<const OrvoVersion&>() > std::declval<const OrvoVersion&>()));
    static_assert(noexcept(std::declval<const OrvoVersion&>() == std::declval<const OrvoVersion&>()));
}

TEST(OrvoVersion, KnowsWhetherEveryPartOfTheTextIsANumber) {
    for (const char* const text :
         {"1", "17.4.6", "17, 4, 6, 64001", " 1 . 2 ", "007", "99999999999999999999"})
        EXPECT_TRUE(OrvoVersion(text).hatNurZahlen()) << text;
    for (const char* const text :
         {"", " ", ".", "1.", ".1", "1..2", "1.x", "1.2b", "-1", "1 2", "1.2.", "v1", "1,", "1;5", "1:5"})
        EXPECT_FALSE(OrvoVersion(text).hatNurZahlen()) << text;
}
