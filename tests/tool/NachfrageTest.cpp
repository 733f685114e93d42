#include "kern/Sammler.h"

#include "support/Verzeichnis.h"

#include <TestPlugins.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace testing;
using namespace werkzeug;

namespace {

/// A plugin directory whose plugins are controlled by text files.
class Nachfragen : public Test {
protected:
    void lege(const std::string& name, const std::string& beschreibung) {
        verzeichnis_.kopiere(test_plugins::DescribedByFile, name);
        verzeichnis_.schreibe(name + ".txt", beschreibung);
    }
    Bestand sammleMit(const Auftrag& auftrag) {
        Optionen optionen;
        optionen.dir = verzeichnis_.pfad();
        return sammle(optionen, auftrag);
    }
    Bestand sammleDeckung() {
        Auftrag auftrag;
        auftrag.deckung = true;
        return sammleMit(auftrag);
    }
    /// "1000-2008 -", "2009 liba.dylib", "2010- liba.dylib (no period)"
    static std::vector<std::string> zeile(const Bestand& bestand, const ZeileFakt& zeile) {
        std::vector<std::string> texte;
        for (const SpanneFakt& spanne : zeile.spannen) {
            std::string text = std::to_string(spanne.von);
            if (spanne.bis != spanne.von)
                text += "-" + (spanne.bis == SpanneFakt::kOffen ? "" : std::to_string(spanne.bis));
            text += " " + (spanne.treffer == RegisterAuskunft::KEINER
                               ? "-"
                               : bestand.datei(bestand.schluessel.at(spanne.schluessel).inhaber).name);
            if (spanne.treffer == RegisterAuskunft::UNABHAENGIG)
                text += " (no period)";
            texte.push_back(text);
        }
        return texte;
    }
    static std::string zweiter(const Bestand& bestand, const SchluesselFakt& schluessel) {
        return schluessel.zweiter ? bestand.datei(*schluessel.zweiter).name : "nobody";
    }

    Verzeichnis verzeichnis_;
};

} // namespace

TEST_F(Nachfragen, ARowSaysForEveryYearWhoAnswers) {
    lege("liba.dylib", "check 10 2009,2012\n");
    const Bestand bestand = sammleDeckung();
    ASSERT_THAT(bestand.zeilen, SizeIs(1));
    EXPECT_THAT(zeile(bestand, bestand.zeilen[0]),
                ElementsAre("1000-2008 -", "2009 liba.dylib", "2010-2011 -", "2012 liba.dylib", "2013- -"));
    EXPECT_EQ(bestand.zeilen[0].ohneZeitraum, std::nullopt);
}

TEST_F(Nachfragen, AnEntryWithoutPeriodAnswersForAllYearsThatHaveNone) {
    lege("liba.dylib", "check 10 2009\n");
    lege("libb.dylib", "check 10 immer\n");
    const Bestand bestand = sammleDeckung();
    ASSERT_THAT(bestand.zeilen, SizeIs(1));
    EXPECT_THAT(
        zeile(bestand, bestand.zeilen[0]),
        ElementsAre("1000-2008 libb.dylib (no period)", "2009 liba.dylib", "2010- libb.dylib (no period)"));
    ASSERT_NE(bestand.zeilen[0].ohneZeitraum, std::nullopt);
    EXPECT_EQ(bestand.datei(bestand.schluessel.at(*bestand.zeilen[0].ohneZeitraum).inhaber).name,
              "libb.dylib");
}

TEST_F(Nachfragen, RowsAreOfOneKindAndSubCaseTypeEachWithNumbersBeforeNames) {
    lege("liba.dylib", "check LSTB 2009\ncheck lstb 2010\ncheck 010 2009\ncheck 10 2010\ncheck 9 2009\n"
                       "feldinfo 10 2009\n");
    const Bestand bestand = sammleDeckung();
    std::vector<std::string> namen;
    for (const ZeileFakt& zeile : bestand.zeilen)
        namen.push_back(std::to_string(zeile.typ) + " " + zeile.unterfallart.name);
    EXPECT_THAT(namen, ElementsAre("1 9", "1 010", "1 LSTB", "2 10"));
    EXPECT_THAT(bestand.zeilen[1].spannen, SizeIs(4)) << "before, 2009, 2010, after";
}

TEST_F(Nachfragen, TheSecondIsWhoWouldAnswerWithoutTheHoldersPlugin) {
    lege("liba.dylib", "produktversion 1.0\ncheck 10 2009\n");
    lege("libb.dylib", "produktversion 3.0\ncheck 10 2009\ncheck 10 2010\n");
    lege("libc.dylib", "produktversion 2.0\ncheck 10 2009\n"); // was refused because of b, and still beats a
    lege("libd.dylib", "produktversion 2.0\ncheck 10 2009\n"); // equal to c, and later
    const Bestand bestand = sammleDeckung();
    ASSERT_THAT(bestand.schluessel, SizeIs(2));
    EXPECT_EQ(bestand.datei(bestand.schluessel[0].inhaber).name, "libb.dylib");
    EXPECT_EQ(zweiter(bestand, bestand.schluessel[0]), "libc.dylib");
    EXPECT_EQ(zweiter(bestand, bestand.schluessel[1]), "nobody");
}

TEST_F(Nachfragen, APluginIsNotItsOwnSecond) {
    lege("liba.dylib", "check 10 2009,2009\ncheck 10 2009\n");
    const Bestand bestand = sammleDeckung();
    ASSERT_THAT(bestand.schluessel, SizeIs(1));
    EXPECT_THAT(bestand.schluessel[0].ereignisse, SizeIs(Gt(1u)));
    EXPECT_EQ(zweiter(bestand, bestand.schluessel[0]), "nobody");
}

TEST_F(Nachfragen, ForTaxOfficeDataTheSecondIsTheNextThatWasLoaded) {
    lege("liba.dylib", "produktversion 1.0\nfinanzamt\n");
    lege("libb.dylib", "produktversion 2.0\nfinanzamt\n");
    lege("libc.dylib", "produktversion 3.0\nfinanzamt\n");
    const Bestand bestand = sammleDeckung();
    ASSERT_THAT(bestand.schluessel, SizeIs(1));
    EXPECT_EQ(bestand.datei(bestand.schluessel[0].inhaber).name, "liba.dylib");
    EXPECT_EQ(zweiter(bestand, bestand.schluessel[0]), "libb.dylib");
}

TEST_F(Nachfragen, AnyNumberOfLookUpsIsAnsweredInOrder) {
    lege("liba.dylib", "check 10 2009\ncheck LSTB immer\n");
    Auftrag auftrag;
    auftrag.frage = Frage{1, "10", "2009", "YYYY"};
    auftrag.fragen = {
        {1, "lstb", "2009-05", "YYYY-MM"}, {1, "10", "2010", "YYYY"}, {1, "10", "200905", "YYYYMM"}};
    const Bestand bestand = sammleMit(auftrag);
    EXPECT_EQ(bestand.antwort.value().treffer, RegisterAuskunft::GENAU);
    EXPECT_THAT(bestand.antworten,
                ElementsAre(Field(&AntwortFakt::treffer, RegisterAuskunft::UNABHAENGIG),
                            Field(&AntwortFakt::treffer, RegisterAuskunft::KEINER),
                            Field(&AntwortFakt::treffer, RegisterAuskunft::GLEICHES_JAHR)));
    EXPECT_EQ(bestand.schluessel.at(bestand.antworten[0].schluessel).unterfallart.name, "LSTB");
}

TEST_F(Nachfragen, TaxOfficeDataAnswerForEverySubCaseTypeAndPeriod) {
    Auftrag auftrag;
    auftrag.fragen = {{4, "10", "2009", "YYYY"},
                      {4, "LSTB", "2009-05", "YYYY-MM"},
                      {4, "0", "2000", "YYYY"},
                      {4, "Nie", "", ""}};
    lege("liba.dylib", "check 0 2000\ncheck 10 2009\n");
    EXPECT_THAT(sammleMit(auftrag).antworten, Each(Field(&AntwortFakt::treffer, RegisterAuskunft::KEINER)));
    lege("libb.dylib", "finanzamt\n");
    const Bestand bestand = sammleMit(auftrag);
    ASSERT_THAT(bestand.antworten, SizeIs(4));
    for (const AntwortFakt& antwort : bestand.antworten) {
        EXPECT_EQ(antwort.treffer, RegisterAuskunft::UNABHAENGIG) << antwort.gefragt.text;
        EXPECT_EQ(bestand.datei(bestand.schluessel.at(antwort.schluessel).inhaber).name, "libb.dylib");
    }
    EXPECT_EQ(bestand.antworten[0].gefragt.jahr, 2009) << "the question stays what it was";
}
