#include <orvoplugin/domain/Unterfallart.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;

constexpr int kOhne = Unterfallart::OHNE_NUMMER;

TEST(Unterfallart, OfANumberIsNamedByItsDecimalText) {
    for (const auto& [nummer, name] :
         {std::pair(10, "10"), std::pair(0, "0"), std::pair(-5, "-5"), std::pair(2147483647, "2147483647")}) {
        const Unterfallart ua(nummer);
        EXPECT_EQ(ua.getNummer(), nummer);
        EXPECT_EQ(ua.getName(), name);
    }
}

struct Text {
    const char* text;
    int nummer;

    friend void PrintTo(const Text& fall, std::ostream* out) { *out << testing::PrintToString(fall.text); }
};

class UnterfallartAusText : public testing::TestWithParam<Text> {};

TEST_P(UnterfallartAusText, KeepsTheNameAndHasANumberOnlyForDigits) {
    const Unterfallart ua(GetParam().text);
    EXPECT_EQ(ua.getName(), GetParam().text);
    EXPECT_EQ(ua.getNummer(), GetParam().nummer);
}

INSTANTIATE_TEST_SUITE_P(Texte, UnterfallartAusText,
                         testing::Values(Text{"10", 10}, Text{"010", 10}, Text{"0012", 12}, Text{"0", 0},
                                         Text{"2147483647", 2147483647}, Text{"2147483648", kOhne},
                                         Text{"99999999999999999999", kOhne}, Text{"LSTB", kOhne},
                                         Text{"Bilanz_5_0", kOhne}, Text{"5_0", kOhne}, Text{"-5", kOhne},
                                         Text{"+5", kOhne}, Text{" 5", kOhne}, Text{"5 ", kOhne},
                                         Text{"5.0", kOhne}, Text{"", kOhne}, Text{"\xDC", kOhne},
                                         Text{"00000000010", 10}),
                         [](const auto& fall) { return "Nr" + std::to_string(fall.index); });

TEST(Unterfallart, OfANullTextIsThatOfTheEmptyText) {
    const Unterfallart ua(static_cast<const char*>(nullptr));
    EXPECT_EQ(ua.getName(), "");
    EXPECT_EQ(ua.getNummer(), kOhne);
}

TEST(Unterfallart, OfTheNumberThatMeansNoneIsKnownByItsName) {
    const Unterfallart ua(-99);
    EXPECT_EQ(ua.getNummer(), kOhne);
    EXPECT_EQ(ua.getName(), "-99");
    EXPECT_EQ(ua.compare(Unterfallart("-99")), 0);
    // Compared by name, so "-99" does not sort like the number.
    EXPECT_EQ(ua.compare(Unterfallart(-100)), 1);
    EXPECT_EQ(ua.compare(Unterfallart(10)), -1);
}

TEST(Unterfallart, ComparesTwoNumbersByNumberOnly) {
    EXPECT_EQ(Unterfallart(10).compare(Unterfallart("10")), 0);
    EXPECT_EQ(Unterfallart(10).compare(Unterfallart("010")), 0);
    EXPECT_EQ(Unterfallart("0012").compare(Unterfallart(12)), 0);
    EXPECT_EQ(Unterfallart(9).compare(Unterfallart(10)), -1);
    EXPECT_EQ(Unterfallart(10).compare(Unterfallart(9)), 1);
    EXPECT_EQ(Unterfallart(-5).compare(Unterfallart(3)), -1);
    EXPECT_EQ(Unterfallart(2147483647).compare(Unterfallart(-2147483647 - 1)), 1);
}

TEST(Unterfallart, ComparesByNameAsSoonAsOneSideHasNoNumber) {
    EXPECT_EQ(Unterfallart(10).compare(Unterfallart("LSTB")), -1);
    EXPECT_EQ(Unterfallart("LSTB").compare(Unterfallart(10)), 1);
    EXPECT_EQ(Unterfallart("010").compare(Unterfallart("0x")), -1);
    EXPECT_EQ(Unterfallart(9).compare(Unterfallart("10a")), 1); // '9' sorts after '1'
}

TEST(Unterfallart, ComparesNamesWithoutRegardToCase) {
    EXPECT_EQ(Unterfallart("Lstb").compare(Unterfallart("LSTB")), 0);
    EXPECT_EQ(Unterfallart("notset").compare(Unterfallart("NOTSET")), 0);
    EXPECT_EQ(Unterfallart("ZD").compare(Unterfallart("vv")), 1);
    EXPECT_EQ(Unterfallart("A_").compare(Unterfallart("ab")), -1) << "'_' stands before the small letters";
}

TEST(Unterfallart, ComparesNamesAsUnsignedBytes) {
    EXPECT_EQ(Unterfallart("\xE4").compare(Unterfallart("z")), 1);
    EXPECT_EQ(Unterfallart("z").compare(Unterfallart("\xE4")), -1);
    EXPECT_EQ(Unterfallart("\xC4").compare(Unterfallart("\xE4")), -1) << "letter case is that of ASCII";
}

TEST(Unterfallart, PutsTheShorterNameFirstWhenItBeginsTheOther) {
    EXPECT_EQ(Unterfallart("Bilanz_5").compare(Unterfallart("bilanz_5_0")), -1);
    EXPECT_EQ(Unterfallart("Bilanz_5_0").compare(Unterfallart("bilanz_5")), 1);
}

TEST(Unterfallart, WithoutANameStandsBeforeEveryName) {
    const Unterfallart leer("");
    EXPECT_EQ(leer.compare(Unterfallart("")), 0);
    for (const Unterfallart& andere :
         {Unterfallart("a"), Unterfallart(" "), Unterfallart(0), Unterfallart(-1)})
        EXPECT_EQ(leer.compare(andere), -1) << andere.getName();
}

TEST(Unterfallart, ComparesToMinusOneZeroOrOneOnly) {
    EXPECT_EQ(Unterfallart(1).compare(Unterfallart(1000)), -1);
    EXPECT_EQ(Unterfallart("z").compare(Unterfallart("a")), 1);
    EXPECT_EQ(Unterfallart("abcdef").compare(Unterfallart("a")), 1);
}

TEST(Unterfallart, HasOperatorsThatFollowCompare) {
    EXPECT_TRUE(Unterfallart(10) == Unterfallart("010"));
    EXPECT_TRUE(Unterfallart(10) != Unterfallart("lstb"));
    EXPECT_TRUE(Unterfallart(9) < Unterfallart(10));
    EXPECT_FALSE(Unterfallart("LSTB") < Unterfallart("lstb"));
}

TEST(Unterfallart, IsOneKeyOfAMapHoweverItIsWritten) {
    std::map<Unterfallart, int> karte;
    karte[Unterfallart(10)] = 1;
    karte[Unterfallart("10")] = 2;
    karte[Unterfallart("010")] = 3;
    karte[Unterfallart("LSTB")] = 4;
    karte[Unterfallart("lstb")] = 5;
    ASSERT_EQ(karte.size(), 2u);
    EXPECT_EQ(karte.begin()->first.getName(), "10");
    EXPECT_EQ(karte.at(Unterfallart(10)), 3);
    EXPECT_EQ(karte.at(Unterfallart("Lstb")), 5);
}

TEST(Unterfallart, SortsNumbersByValueAndNamesBehindThem) {
    std::vector<Unterfallart> alle{"ZD", 64, "lstb", 9, "Kontoabfrage", 10};
    std::sort(alle.begin(), alle.end());
    std::vector<std::string> namen;
    for (const Unterfallart& ua : alle)
        namen.push_back(ua.getName());
    EXPECT_THAT(namen, ElementsAre("9", "10", "64", "Kontoabfrage", "lstb", "ZD"));
}

TEST(Unterfallart, IsCopiedWithNumberAndName) {
    const Unterfallart eine("0010");
    Unterfallart andere("LSTB");
    const Unterfallart kopie(eine);
    andere = eine;
    for (const Unterfallart& ua : {kopie, andere}) {
        EXPECT_EQ(ua.getNummer(), 10);
        EXPECT_EQ(ua.getName(), "0010");
    }
}

} // namespace
