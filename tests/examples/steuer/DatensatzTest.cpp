#include <steuer/Datensatz.h>

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace steuer {
namespace {

using testing::ElementsAre;
using testing::Pair;
using enum Lesefehler::Art;

/// Without a terminating zero, so that a read past the end is detected.
std::variant<Datensatz, Lesefehler> lies(const std::string& text) {
    const std::vector<char> zeichen(text.begin(), text.end());
    return liesDatensatz({zeichen.data(), zeichen.size()});
}

/// The fields as pairs; empty for a text that is no record.
std::vector<std::pair<std::string, std::string>> felder(const std::string& text) {
    std::vector<std::pair<std::string, std::string>> paare;
    const auto gelesen = lies(text);
    if (const auto* const satz = std::get_if<Datensatz>(&gelesen))
        for (const Datensatz::Feld& feld : satz->getFelder())
            paare.emplace_back(feld.name, feld.wert);
    return paare;
}

/// Kind of error and line.
std::pair<Lesefehler::Art, std::size_t> fehler(const std::string& text) {
    const auto gelesen = lies(text);
    const auto* const lesefehler = std::get_if<Lesefehler>(&gelesen);
    EXPECT_TRUE(lesefehler) << testing::PrintToString(text) << " is a record";
    return lesefehler ? std::pair(lesefehler->art, lesefehler->zeile) : std::pair(LEER, std::size_t(99'999));
}

TEST(Datensatz, HasItsFieldsInTheOrderOfTheText) {
    EXPECT_THAT(felder("Satzart=LSTB\nIdNr=86095742719\nA_1=x\n"),
                ElementsAre(Pair("Satzart", "LSTB"), Pair("IdNr", "86095742719"), Pair("A_1", "x")));
}

TEST(Datensatz, NeedsNoEndOfTheLastLine) {
    EXPECT_THAT(felder("A=1\nB=2"), ElementsAre(Pair("A", "1"), Pair("B", "2")));
    EXPECT_THAT(felder("A=1\r\nB=2\r"), ElementsAre(Pair("A", "1"), Pair("B", "2")));
}

TEST(Datensatz, TakesLinesOfEitherSystem) {
    EXPECT_THAT(felder("A=1\r\nB=2\nC=3\r\n"), ElementsAre(Pair("A", "1"), Pair("B", "2"), Pair("C", "3")));
}

TEST(Datensatz, PassesOverEmptyLines) {
    EXPECT_THAT(felder("\n\r\n   \nA=1\n\n  \r\nB=2\n\n"), ElementsAre(Pair("A", "1"), Pair("B", "2")));
}

TEST(Datensatz, TakesBlanksAwayAtEitherEndOfNamesAndValues) {
    EXPECT_THAT(felder("  A =  Otto  Meier  \n B= \r\n"),
                ElementsAre(Pair("A", "Otto  Meier"), Pair("B", "")));
}

TEST(Datensatz, SplitsALineAtItsFirstEqualsSign) {
    EXPECT_THAT(felder("A=b=c\nB==\nC= = "), ElementsAre(Pair("A", "b=c"), Pair("B", "="), Pair("C", "=")));
}

TEST(Datensatz, TakesEveryPrintableCharacterOfLatin1) {
    std::string zeichen;
    for (int c = 0x21; c <= 0xFF; ++c)
        if (c < 0x7F || c >= 0xA0)
            zeichen += static_cast<char>(c);
    EXPECT_THAT(felder("A=" + zeichen), ElementsAre(Pair("A", zeichen)));
    EXPECT_THAT(felder("Name=J\xF6rg M\xFC\xDFiggang"), ElementsAre(Pair("Name", "J\xF6rg M\xFC\xDFiggang")));
}

TEST(Datensatz, FindsTheFirstFieldOfAName) {
    const auto gelesen = lies("A=1\nB=2\nA=3");
    const Datensatz& satz = std::get<Datensatz>(gelesen);
    EXPECT_EQ(satz.getFelder().size(), 3u);
    EXPECT_EQ(satz.finde("A"), &satz.getFelder()[0]);
    EXPECT_EQ(satz.finde("B"), &satz.getFelder()[1]);
    EXPECT_EQ(satz.wert("A"), "1");
    EXPECT_EQ(satz.wert("A").data(), satz.getFelder()[0].wert.data());
}

TEST(Datensatz, HasNoFieldOfAnotherName) {
    const auto gelesen = lies("Name=x\nLeer=");
    const Datensatz& satz = std::get<Datensatz>(gelesen);
    for (const char* name : {"", "name", "NAME", "Nam", "Name ", "Namen"}) {
        EXPECT_EQ(satz.finde(name), nullptr) << name;
        EXPECT_EQ(satz.wert(name), "") << name;
    }
    EXPECT_NE(satz.finde("Leer"), nullptr);
    EXPECT_EQ(satz.wert("Leer"), "");
}

TEST(Datensatz, IsNoneWithoutAField) {
    for (const std::string text : {"", "\n", "\r\n", "\r", "   ", "\n\n  \r\n \n"})
        EXPECT_THAT(fehler(text), Pair(LEER, 0u)) << testing::PrintToString(text);
}

TEST(Datensatz, IsNoneWithALineThatHasNoNameAndEqualsSign) {
    for (const std::string zeile : {"Name",
                                    "=x",
                                    "=",
                                    " = x",
                                    "1a=x",
                                    "_a=x",
                                    "a b=x",
                                    "a-b=x",
                                    "a.b=x",
                                    "\tA=1",
                                    "A\t=1",
                                    "\r",
                                    "# Anmerkung",
                                    "---",
                                    "Stra\xDF"
                                    "e=x",
                                    "\xC4=x",
                                    "\xA0"
                                    "A=1",
                                    "\xEF\xBB\xBF"
                                    "A=1" /* byte order mark */,
                                    "{\"A\": \"1\"}",
                                    "<A>1</A>",
                                    "MZ\x90",
                                    "\x7F"
                                    "ELF\x02\x01\x01"})
        EXPECT_THAT(fehler("A=1\n\n" + zeile + "\r\nB=2\n"), Pair(ZEILE, 3u))
            << testing::PrintToString(zeile);
    EXPECT_THAT(fehler(std::string("A\0=1", 4)), Pair(ZEILE, 1u));
    EXPECT_THAT(fehler(std::string(1000, '\0')), Pair(ZEILE, 1u));
}

TEST(Datensatz, IsNoneWithAControlCharacterInAValue) {
    for (int c = 0; c <= 0xFF; ++c) {
        const bool istSteuerzeichen = c < 0x20 || (c >= 0x7F && c < 0xA0);
        if (!istSteuerzeichen || c == '\n')
            continue;
        for (const std::string& wert :
             {std::string(1, static_cast<char>(c)) + "b", std::string("a") + static_cast<char>(c) + "b"})
            EXPECT_THAT(fehler("A=1\nB=" + wert + "\nC=3"), Pair(ZEICHEN, 2u)) << c;
    }
    EXPECT_THAT(fehler("A=1\t"), Pair(ZEICHEN, 1u));
    EXPECT_THAT(fehler("A=1\r\r\n"), Pair(ZEICHEN, 1u)); // one of them ends the line
}

TEST(Datensatz, IsNoneInUtf8WithCapitalUmlautsOrASharpS) {
    for (const std::string name : {"\xC3\x84"
                                   "rger",
                                   "\xC3\x96"
                                   "hler",
                                   "\xC3\x9C"
                                   "bel",
                                   "M\xC3\xBC\xC3\x9F"
                                   "ig",
                                   "\xE2\x82\xAC" /* euro sign */})
        EXPECT_THAT(fehler("A=1\nName=" + name), Pair(ZEICHEN, 2u)) << name;
}

TEST(Datensatz, CannotTellUtf8WhoseBytesAreAllPrintableFromLatin1) {
    EXPECT_THAT(felder("Name=J\xC3\xB6rg"), ElementsAre(Pair("Name", "J\xC3\xB6rg")));
}

TEST(Datensatz, NamesTheFirstLineAtFault) {
    EXPECT_THAT(fehler("A=1\nB\nC=\x01\n"), Pair(ZEILE, 2u));
    EXPECT_THAT(fehler("A=1\nC=\x01\nB\n"), Pair(ZEICHEN, 2u));
    EXPECT_THAT(fehler("\r\n\r\nB"), Pair(ZEILE, 3u));
}

TEST(Datensatz, MayHave65536Bytes) {
    const std::string groesster = "A=" + std::string(65'534, 'x');
    EXPECT_THAT(felder(groesster), ElementsAre(Pair("A", std::string(65'534, 'x'))));
    EXPECT_THAT(fehler(groesster + 'x'), Pair(ZU_GROSS, 0u));
    EXPECT_THAT(fehler(groesster + '\n'), Pair(ZU_GROSS, 0u));
    EXPECT_THAT(fehler(std::string(65'536, '\n')), Pair(LEER, 0u));
    EXPECT_THAT(fehler(std::string(65'537, '\n')), Pair(ZU_GROSS, 0u));
    EXPECT_THAT(fehler(std::string(5'000'000, '\0')), Pair(ZU_GROSS, 0u));
}

TEST(Datensatz, MayHave200Fields) {
    std::string text;
    for (int i = 0; i < 200; ++i)
        text += "F=1\n";
    EXPECT_EQ(felder(text).size(), 200u);
    EXPECT_EQ(felder(text + "\n  \n").size(), 200u);
    EXPECT_THAT(fehler(text + "\nF=1"), Pair(ZU_GROSS, 202u));
    EXPECT_THAT(fehler(text + "F"), Pair(ZEILE, 201u));
}

} // namespace
} // namespace steuer
