#include "deckung/Anforderung.h"

#include "support/Verzeichnis.h"

#include <gmock/gmock.h>

using namespace testing;
using namespace werkzeug;

namespace {

class Anforderungen : public Test {
protected:
    std::vector<VerlangteZelle> lies(const std::string& inhalt) {
        return liesAnforderung(verzeichnis_.schreibe("soll.txt", inhalt));
    }
    /// "3: 1 10 2009 YYYY"
    std::vector<std::string> zeilen(const std::string& inhalt) {
        std::vector<std::string> texte;
        for (const VerlangteZelle& zelle : lies(inhalt)) {
            std::string text = std::to_string(zelle.zeile) + ": " + std::to_string(zelle.typ);
            if (zelle.frage)
                text +=
                    " " + zelle.frage->unterfallart + " " + zelle.frage->zeitraum + " " + zelle.frage->format;
            texte.push_back(text);
        }
        return texte;
    }
    std::string fehler(const std::string& inhalt) {
        try {
            lies(inhalt);
        } catch (const AufrufFehler& fehler) {
            const std::string text = fehler.what();
            EXPECT_THAT(text, StartsWith(verzeichnis_.pfad("soll.txt:")));
            return text.substr(verzeichnis_.pfad("soll.txt:").size());
        }
        return "no error";
    }

    Verzeichnis verzeichnis_;
};

} // namespace

TEST_F(Anforderungen, EachLineNamesACell) {
    EXPECT_THAT(zeilen("check 10 2009\n  2\tLSTB  2009-05 \r\nreader 10 2009Q2"),
                ElementsAre("1: 1 10 2009 YYYY", "2: 2 LSTB 2009-05 YYYY-MM", "3: 6 10 2009-42 YYYY-MM"));
}
TEST_F(Anforderungen, EmptyLinesAndCommentsCountForNothing) {
    EXPECT_THAT(zeilen("# alles\n\n   # nichts\ncheck 10 2009 # und das\n"),
                ElementsAre("4: 1 10 2009 YYYY"));
    EXPECT_THAT(zeilen(""), IsEmpty());
}
TEST_F(Anforderungen, AByteOrderMarkInFrontIsPassedOver) {
    EXPECT_THAT(zeilen("\xEF\xBB\xBF"
                       "check 10 2009"),
                ElementsAre("1: 1 10 2009 YYYY"));
}
TEST_F(Anforderungen, AMessageHasNoControlCharactersOfTheFile) {
    EXPECT_THAT(fehler("\x1b[31m 10 2009"), HasSubstr("\"\\x1b[31m\""));
    EXPECT_THAT(fehler("check 10 \x1b"), HasSubstr("\"\\x1b\""));
}
TEST_F(Anforderungen, ARangeOfYearsIsACellForEach) {
    EXPECT_THAT(zeilen("check 10 2009-2011"),
                ElementsAre("1: 1 10 2009 YYYY", "1: 1 10 2010 YYYY", "1: 1 10 2011 YYYY"));
    EXPECT_THAT(zeilen("check 10 2009-2009"), SizeIs(1));
}
TEST_F(Anforderungen, QuotationMarksHoldBlanksAndNumberSigns) {
    EXPECT_THAT(zeilen("check \"a #b\" 2009"), ElementsAre("1: 1 a #b 2009 YYYY"));
}
TEST_F(Anforderungen, AKindAloneAsksForAnythingOfIt) { EXPECT_THAT(zeilen("finanz"), ElementsAre("1: 4")); }
TEST_F(Anforderungen, NamesAreLatin1AsInThePlugins) {
    EXPECT_THAT(zeilen("check Gr\xC3\xB6\xC3\x9F"
                       "e 2009"),
                ElementsAre("1: 1 Gr\xF6\xDF"
                            "e 2009 YYYY"));
}
TEST_F(Anforderungen, ALineThatIsNoneIsNamedByItsNumber) {
    EXPECT_THAT(fehler("check 10 2009\ncheck 10\n"), StartsWith("2: a line has a kind of extension"));
    EXPECT_THAT(fehler("check 10 2009 2010"), StartsWith("1: a line has"));
    EXPECT_THAT(fehler("\n\nmalen 10 2009"), StartsWith("3: there is no kind of extension"));
    EXPECT_THAT(fehler("check 10 2009-13-"), StartsWith("1: \"2009-13-\" is no period"));
    EXPECT_THAT(fehler("check 10 2011-2009"), StartsWith("1: \"2011-2009\" is no range of years"));
    EXPECT_THAT(fehler("check 10 1000-2999"), StartsWith("1: \"1000-2999\" is no range of years"));
    EXPECT_THAT(fehler("check \"10 2009"), StartsWith("1: a quotation mark is not closed"));
}
TEST_F(Anforderungen, AFileThatCannotBeReadIsNamed) {
    EXPECT_THAT([] { liesAnforderung("/gibt/es/nicht"); },
                ThrowsMessage<Unlesbar>("/gibt/es/nicht: No such file or directory"));
    EXPECT_THROW(liesAnforderung(verzeichnis_.pfad()), Unlesbar) << "a directory";
}
