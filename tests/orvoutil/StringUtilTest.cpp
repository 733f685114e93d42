#include <orvoutil/StringUtil.h>

#include <gtest/gtest.h>

#include <limits>
#include <utility>

using namespace orvo::orvoutil;

TEST(Int2String, WritesDecimals) {
    EXPECT_EQ(int2String(0), "0");
    EXPECT_EQ(int2String(-99), "-99");
    EXPECT_EQ(int2String(std::numeric_limits<int>::max()), "2147483647");
    EXPECT_EQ(int2String(std::numeric_limits<int>::min()), "-2147483648");
    EXPECT_EQ(long2String(0), "0");
    EXPECT_EQ(long2String(-1), "-1");
    EXPECT_EQ(long2String(std::numeric_limits<long>::max()),
              sizeof(long) == 8 ? "9223372036854775807" : "2147483647");
}

TEST(String2Int, ReadsDecimalsWithASign) {
    EXPECT_EQ(string2Int("0"), 0);
    EXPECT_EQ(string2Int("2009"), 2009);
    EXPECT_EQ(string2Int("007"), 7);
    EXPECT_EQ(string2Int("+5"), 5);
    EXPECT_EQ(string2Int("-99"), -99);
    EXPECT_EQ(string2Int("2147483647"), 2147483647);
    EXPECT_EQ(string2Int("-2147483648"), std::numeric_limits<int>::min());
    EXPECT_EQ(string2Int("00000000000000000000000000000012"), 12);
}

TEST(String2Int, IsZeroForAnythingElse) {
    for (const char* const text : {"", " ", "x", "1x", "x1", " 1", "1 ", "1.0", "+", "-", "--1", "+-1", "-+1",
                                   "0x10", "2147483648", "-2147483649", "99999999999999999999", "\xB2"})
        EXPECT_EQ(string2Int(text), 0) << text;
    EXPECT_EQ(string2Int(std::string("1\0", 2)), 0);
}

TEST(IsNumeric, TakesDigitsThatFit32Bits) {
    for (const char* const text : {"0", "10", "007", "2147483647", "000000000000002147483647"})
        EXPECT_TRUE(isNumeric(text)) << text;
}

TEST(IsNumeric, RefusesAnythingElse) {
    for (const char* const text : {"", " ", "-1", "+1", "1a", "a", "1.0", " 1", "1 ", "2147483648",
                                   "4294967296", "99999999999999999999", "\xB2"})
        EXPECT_FALSE(isNumeric(text)) << text;
    EXPECT_FALSE(isNumeric(std::string("1\0", 2)));
}

TEST(FormatNumeric, PadsWithZerosOnTheLeft) {
    EXPECT_EQ(formatNumeric("9", 4), "0009");
    EXPECT_EQ(formatNumeric("", 2), "00");
    EXPECT_EQ(formatNumeric("-5", 4), "00-5");
}

TEST(FormatNumeric, NeverCuts) {
    EXPECT_EQ(formatNumeric("2009", 4), "2009");
    EXPECT_EQ(formatNumeric("20091", 4), "20091");
    EXPECT_EQ(formatNumeric("2009", 0), "2009");
}

TEST(Tolower, ChangesAsciiLettersOnly) {
    EXPECT_EQ(orvo::orvoutil::tolower("AZaz@[`{09"), "azaz@[`{09");
    EXPECT_EQ(orvo::orvoutil::tolower("\xC4\xD6\xDC"), "\xC4\xD6\xDC");
    EXPECT_EQ(orvo::orvoutil::tolower(std::string("A\0B", 3)), std::string("a\0b", 3));
    EXPECT_EQ(orvo::orvoutil::tolower(""), "");
    static_assert(orvo::orvoutil::tolower('A') == 'a' && orvo::orvoutil::tolower('a') == 'a');
}

TEST(EndsWith, ComparesTheEnd) {
    EXPECT_TRUE(endsWith("libx.dylib", ".dylib"));
    EXPECT_FALSE(endsWith("libx.DYLIB", ".dylib"));
    EXPECT_FALSE(endsWith("x.dylib.bak", ".dylib"));
    EXPECT_FALSE(endsWith("dylib", ".dylib"));
    EXPECT_TRUE(endsWith(".dylib", ".dylib"));
    EXPECT_TRUE(endsWith("x", ""));
    EXPECT_TRUE(endsWith("", ""));
    EXPECT_FALSE(endsWith("", "x"));
}

// Predefined constants are made with these functions at compile time.
static_assert(isNumeric("010") && !isNumeric("-1") && !isNumeric("+1") && !isNumeric(""));
static_assert(string2Int("-2147483648") == std::numeric_limits<int>::min() && string2Int("2147483648") == 0);
static_assert(Ziffernfolge(std::numeric_limits<int>::min()).text() == "-2147483648");
static_assert(Ziffernfolge(0).text() == "0");
static_assert(compareIgnoreCase("LSTB", "lstb") == 0);

TEST(CompareIgnoreCase, TakesLettersOfBothCasesAsEqual) {
    EXPECT_EQ(compareIgnoreCase("LibZelmak98.DYLIB", "libzelmak98.dylib"), 0);
    EXPECT_EQ(compareIgnoreCase("", ""), 0);
    EXPECT_NE(compareIgnoreCase("\xC4", "\xE4"), 0);
    EXPECT_NE(compareIgnoreCase("[", "{"), 0);
}

TEST(EqualsIgnoreCase, TakesLettersOfBothCasesAsEqualAndNothingElse) {
    EXPECT_TRUE(equalsIgnoreCase("LStB", "lsTb"));
    EXPECT_TRUE(equalsIgnoreCase("", ""));
    EXPECT_TRUE(equalsIgnoreCase("az", "AZ"));
    for (const auto& [a, b] : {std::pair("[", "{"), std::pair("@", "`"), std::pair("\xC4", "\xE4"),
                               std::pair("a", "ab"), std::pair("ba", "ca"), std::pair("ab", "ac")})
        EXPECT_FALSE(equalsIgnoreCase(a, b)) << a << b;
}

TEST(CompareIgnoreCase, OrdersByUnsignedLowerCaseBytes) {
    EXPECT_EQ(compareIgnoreCase("a", "B"), -1);
    EXPECT_EQ(compareIgnoreCase("B", "a"), 1);
    EXPECT_EQ(compareIgnoreCase("Z", "_"), 1);
    EXPECT_EQ(compareIgnoreCase("z", "\xE4"), -1);
    EXPECT_EQ(compareIgnoreCase("\xE4", "z"), 1);
    EXPECT_EQ(compareIgnoreCase("\xE4", "\xE4"), 0);
    EXPECT_EQ(compareIgnoreCase("ab", "abc"), -1);
    EXPECT_EQ(compareIgnoreCase("abc", "AB"), 1);
    EXPECT_EQ(compareIgnoreCase("", "a"), -1);
    EXPECT_EQ(compareIgnoreCase(std::string("a\0b", 3), std::string("A\0C", 3)), -1);
}

TEST(RemoveSpecialPatterns, RemovesTheFirstOccurrence) {
    EXPECT_EQ(removeSpecialPatterns("libxlibtest.dylib", "lib"), "xlibtest.dylib");
    EXPECT_EQ(removeSpecialPatterns("xlibtest", "lib"), "xtest");
    EXPECT_EQ(removeSpecialPatterns("test.dylib", ".dylib"), "test");
    EXPECT_EQ(removeSpecialPatterns("lib", "lib"), "");
}

TEST(RemoveSpecialPatterns, LeavesOtherTextsAlone) {
    EXPECT_EQ(removeSpecialPatterns("test", "lib"), "test");
    EXPECT_EQ(removeSpecialPatterns("LIBtest", "lib"), "LIBtest");
    EXPECT_EQ(removeSpecialPatterns("axb", "a.b"), "axb");
    EXPECT_EQ(removeSpecialPatterns("test", ""), "test");
    EXPECT_EQ(removeSpecialPatterns("", ""), "");
    EXPECT_EQ(removeSpecialPatterns("", "lib"), "");
}
