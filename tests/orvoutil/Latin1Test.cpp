#include <orvoutil/Latin1.h>

#include <gtest/gtest.h>

using namespace orvo::orvoutil;

namespace {

constexpr Latin1Text kGruss{u8"Grüße ÿ"};
static_assert(kGruss.sicht() == "Gr\xFC\xDF"
                                "e \xFF");
static_assert(Latin1Text{u8""}.sicht().empty());
static_assert(Latin1Text{u8"a\0b"}.sicht().size() == 3);

} // namespace

TEST(Latin1Text, GoesWhereTextsGo) {
    EXPECT_STREQ(kGruss.c_str(), "Gr\xFC\xDF"
                                 "e \xFF");
    const std::string text = kGruss;
    EXPECT_EQ(text, kGruss.sicht());
    EXPECT_EQ(std::string("x") + kGruss.c_str(), "x" + text);
    const std::string_view sicht = kGruss;
    EXPECT_EQ(sicht.size(), 7u);
    const std::string mitNullbyte = Latin1Text{u8"a\0b"};
    EXPECT_EQ(mitNullbyte.size(), 3u);
}

TEST(Latin1Text, HoldsEveryCharacterOfLatin1) {
    constexpr Latin1Text erste{u8"\u0001\u007F\u0080\u00A0\u00BF\u00C0\u00FF"};
    EXPECT_EQ(erste.sicht(), "\x01\x7F\x80\xA0\xBF\xC0\xFF");
}

TEST(Latin1ToUtf8, WritesEachByteAsOneCharacter) {
    EXPECT_EQ(latin1ToUtf8(""), "");
    EXPECT_EQ(latin1ToUtf8("abc\x7F"), "abc\x7F");
    EXPECT_EQ(latin1ToUtf8("\x80\xBF\xC0\xFC\xFF"), "\xC2\x80\xC2\xBF\xC3\x80\xC3\xBC\xC3\xBF");
    EXPECT_EQ(latin1ToUtf8("\xC3\xBC"), "\xC3\x83\xC2\xBC");
    EXPECT_EQ(latin1ToUtf8(std::string_view("a\0b", 3)), std::string("a\0b", 3));
}

TEST(ToUtf8, KeepsWhatIsUtf8) {
    for (const char* const text : {"", "abc", "\x7F", "\xC3\xBC", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
                                   "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
                                   "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_EQ(toUtf8(text), text);
}

TEST(ToUtf8, TakesWhatIsNotUtf8AsLatin1) {
    for (const char* const text : {
             "\xFC",                 // a letter alone
             "\xC3",                 // truncated
             "\xE2\x82",             // truncated
             "\xF0\x9F\x98",         // truncated
             "\x80",                 // no leading byte
             "\xC0\x80",             // overlong
             "\xC1\xBF",             // overlong
             "\xE0\x9F\xBF",         // overlong
             "\xF0\x8F\xBF\xBF",     // overlong
             "\xED\xA0\x80",         // a single surrogate
             "\xED\xBF\xBF",         // a single surrogate
             "\xF4\x90\x80\x80",     // beyond the last character
             "\xF8\x88\x80\x80",     // no leading byte
             "\xF9\x80\x80\x80",     // no leading byte
             "\xF8\x84\x80\x80\x80", // no leading byte
             "b\x80",                // no leading byte
             "\xFF\xBF\xBF\xBF",     // no leading byte
         })
        EXPECT_EQ(toUtf8(text), latin1ToUtf8(text));
}

TEST(ToUtf8, ReadsNothingBehindTheText) {
    const std::string_view text = "\xC3\xBC";
    EXPECT_EQ(toUtf8(text.substr(0, 1)), "\xC3\x83");
}

TEST(ToUtf8, DecidesSequenceBySequence) {
    EXPECT_EQ(toUtf8("nicht ge\xF6"
                     "ffnet: /K\xC3\xBC"
                     "che"),
              "nicht geöffnet: /Küche");
    EXPECT_EQ(toUtf8("\xC3\xC3\xBC"), "\xC3\x83\xC3\xBC");
    EXPECT_EQ(toUtf8("\xE2\x82z"), "\xC3\xA2\xC2\x82z");
    EXPECT_EQ(toUtf8(std::string_view("\xFC\0\xFC", 3)), std::string("\xC3\xBC\0\xC3\xBC", 5));
}
