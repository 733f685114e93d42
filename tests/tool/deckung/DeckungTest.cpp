// orvoplugin coverage: its text and JSON against golden/, and its exit codes.

#include "Heim.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

using namespace testing;
using Json = nlohmann::json;

namespace {

class Deckung : public Test {
protected:
    void lege(const std::string& name, const std::string& text) { heim_.lege(ORVO_BESCHRIEBEN, name, text); }

    void legeUebliche() {
        lege("libsteuer2008.dylib",
             "produktversion 1.2.0\nfileversion 7\ncheck 10 2007,2008\ncheck LSTB 2008\n");
        lege("libsteuer2009.dylib", "produktversion 2.0.1\ncheck 10 2008,2009\ncheck LSTB 2009\n"
                                    "check 12 2007,2009,2010\n");
        lege("libimmer.dylib", "produktversion 1.0\ncheck 10 immer\ncheck KapEStA immer\nfinanzamt\n"
                               "fehlertext 95 immer\n");
        lege("unter/libfa.dylib", "produktversion 9.0\nfinanzamt\nresident\ncheck 77 2010\n");
    }
    Json json(std::vector<std::string> argumente = {}) {
        argumente.insert(argumente.begin(), {"coverage", "--json"});
        return Json::parse(heim_.rufe(argumente).ausgabe);
    }
    void pruefe(const std::string& name, int ausgang, std::vector<std::string> argumente) {
        argumente.insert(argumente.begin(), "coverage");
        const Ergebnis text = heim_.rufe(argumente, {"COLUMNS=80"});
        EXPECT_EQ(text.ausgang, ausgang) << text.fehler;
        EXPECT_EQ(vergleicheMitMuster(name + ".txt", text.ausgabe), "");
        argumente.push_back("--json");
        const Ergebnis alsJson = heim_.rufe(argumente, kDeutsch); // JSON is English in every locale
        EXPECT_EQ(alsJson.ausgang, ausgang);
        EXPECT_EQ(vergleicheMitMuster(name + ".json", alsJson.ausgabe), "");
        argumente.back() = "--quiet";
        const Ergebnis still = heim_.rufe(argumente);
        EXPECT_EQ(still.ausgang, ausgang);
        EXPECT_THAT(still.ausgabe + still.fehler, IsEmpty());
    }
    static std::string inhalt(const std::string& datei) {
        std::ifstream strom(datei, std::ios::binary);
        return {(std::istreambuf_iterator<char>(strom)), {}};
    }
    /// The widest line, in characters.
    static std::size_t breite(const std::string& text) {
        std::size_t groesste = 0;
        std::size_t zeichen = 0;
        for (const char c : text) {
            zeichen = c == '\n' ? 0 : zeichen + ((static_cast<unsigned char>(c) & 0xC0) != 0x80);
            groesste = std::max(groesste, zeichen);
        }
        return groesste;
    }

    const Heim heim_;
};

} // namespace

TEST_F(Deckung, ShowsEveryKindBySubCaseTypeAndYear) {
    legeUebliche();
    pruefe("coverage", 0, {});
}
TEST_F(Deckung, ShowsOneKindAlone) {
    legeUebliche();
    pruefe("coverage-type", 0, {"--type", "fehler"});
}
TEST_F(Deckung, AKindThatNobodyServesIsAFinding) {
    legeUebliche();
    pruefe("coverage-nothing", 1, {"--type", "xpath"});
}
TEST_F(Deckung, AnEmptyDirectoryIsShownAsSuch) { pruefe("coverage-empty", 0, {}); }
TEST_F(Deckung, NamesWhatIsRequiredAndNotServed) {
    legeUebliche();
    const std::string soll = heim_.verzeichnis.schreibe(
        "soll.txt",
        "check 10 2007-2011 # the last two by the entry without period\ncheck lstb 2012Q1\nfinanz\nxpath\n");
    pruefe("coverage-required", 5, {"--type", "fehler", "--require", soll});
}
TEST_F(Deckung, SpeaksGermanWithoutAWordOfEnglish) {
    legeUebliche();
    const std::string soll = heim_.verzeichnis.schreibe("soll.txt", "check 10 2007-2011\nxpath\n");
    EXPECT_EQ(
        vergleicheMitMuster("coverage-de.txt", heim_.rufe({"coverage", "--require", soll}, kDeutsch).ausgabe),
        "");
    EXPECT_EQ(vergleicheMitMuster("coverage-nothing-de.txt",
                                  heim_.rufe({"coverage", "--type", "xpath"}, kDeutsch).ausgabe),
              "");
}
TEST_F(Deckung, ThePageIsInTheUsersLanguageAlsoBesideJson) {
    legeUebliche();
    const std::string seite = heim_.verzeichnis.pfad("seite.html");
    const std::vector<std::string> argumente{"coverage", "--html", seite, "--json"};
    const std::string englisch = heim_.rufe(argumente).ausgabe;
    EXPECT_THAT(inhalt(seite), AllOf(HasSubstr("<html lang=\"en\">"), HasSubstr("Plugin coverage")));
    EXPECT_EQ(heim_.rufe(argumente, kDeutsch).ausgabe, englisch);
    EXPECT_THAT(inhalt(seite), AllOf(HasSubstr("<html lang=\"de\">"), HasSubstr("Abdeckung durch Plugins"),
                                     HasSubstr("aria-label=\"Filter der Tabellen\"")));
}
TEST_F(Deckung, IsFineWhenAllThatIsRequiredIsServed) {
    legeUebliche();
    const std::string soll = heim_.verzeichnis.schreibe("soll.txt", "check 10 2007-2011\ncheck 77 2010-05\n");
    EXPECT_EQ(heim_.rufe({"coverage", "--require", soll}).ausgang, 0);
    EXPECT_THAT(json({"--require", soll})["required"]["cells"].back()["match"], "same_year");
}
TEST_F(Deckung, RequiredTaxOfficeDataAreServedForEverySubCaseTypeAndPeriod) {
    const std::string soll = heim_.verzeichnis.schreibe("soll.txt", "finanz LSTB 2009-2010\n4 10 2009-05\n");
    lege("liba.dylib", "check LSTB 2009,2010\n");
    EXPECT_EQ(heim_.rufe({"coverage", "--require", soll}).ausgang, 5);
    lege("libfa.dylib", "finanzamt\n");
    EXPECT_EQ(heim_.rufe({"coverage", "--require", soll}).ausgang, 0);
    const Json verlangt = json({"--require", soll})["required"];
    EXPECT_EQ(verlangt["missing"], 0);
    ASSERT_EQ(verlangt["cells"].size(), 3u);
    for (const Json& zelle : verlangt["cells"]) {
        EXPECT_EQ(zelle["match"], "period_independent");
        EXPECT_EQ(zelle["plugin"]["file"], "libfa.dylib");
    }
}
TEST_F(Deckung, ARequirementThatIsNoneIsWrongUsage) {
    const Ergebnis ergebnis = heim_.rufe(
        {"coverage", "--require", heim_.verzeichnis.schreibe("soll.txt", "check 10 2009\ncheck 10 nie\n")});
    EXPECT_EQ(ergebnis.ausgang, 2);
    EXPECT_THAT(ergebnis.fehler, HasSubstr("soll.txt:2: \"nie\" is no period"));
    EXPECT_EQ(heim_.rufe({"coverage", "--require", "/gibt/es/nicht"}).ausgang, 3);
    EXPECT_EQ(heim_.rufe({"coverage", "--type", "malen"}).ausgang, 2);
}
TEST_F(Deckung, ARefusedPluginIsAFindingAndNamed) {
    lege("liba.dylib", "check 10 2009\n");
    lege("libb.dylib", "abgelehnt\n");
    pruefe("coverage-refused", 1, {});
}
TEST_F(Deckung, GoesOnWithoutAPluginThatCrashes) {
    legeUebliche();
    heim_.lege(ORVO_SCHAEDLING, "libx.dylib", "tu initialize segv\n");
    const Ergebnis ergebnis = heim_.rufe({"coverage", "--type", "fehler"});
    EXPECT_EQ(ergebnis.ausgang, 4);
    EXPECT_THAT(ergebnis.ausgabe, AllOf(HasSubstr("95 "), HasSubstr("crashed     libx.dylib")));
}
TEST_F(Deckung, ADirectoryThatIsNotThereCannotBeRead) {
    EXPECT_EQ(rufeTool({"coverage", "--dir", "/gibt/es/nicht"}).ausgang, 3);
}
TEST_F(Deckung, YearsThatNobodyServesAreGapsOnlyBetweenTheFirstAndTheLast) {
    lege("liba.dylib", "check 10 2009,2012\ncheck 12 2010\n");
    const Json typ = json()["types"][0];
    EXPECT_EQ(typ["first_year"], 2009);
    EXPECT_EQ(typ["last_year"], 2012);
    EXPECT_EQ(typ["totals"]["gaps"], 2 + 3);
    EXPECT_EQ(typ["rows"][0]["cells"].size(), 3u);
    EXPECT_EQ(typ["rows"][0]["cells"][1], (Json{{"from", 2010}, {"to", 2011}, {"answer", "gap"}}));
}
TEST_F(Deckung, ManyYearsWithoutAnyEntryStandInOneColumn) {
    lege("liba.dylib", "check 10 2009,9998\n");
    const Ergebnis ergebnis = heim_.rufe({"coverage"});
    EXPECT_THAT(ergebnis.ausgabe, ContainsRegex("SUB-CASE TYPE  2009 +2010-9997  9998"));
    EXPECT_EQ(json()["types"][0]["totals"]["gaps"], 9997 - 2010 + 1);
}
TEST_F(Deckung, MonthsQuartersAndDaysStandInTheirYear) {
    lege("liba.dylib", "check 10 2009-05,2009-42\n");
    const Json zelle = json()["types"][0]["rows"][0]["cells"][0];
    EXPECT_EQ(zelle["periods"], (Json{"2009-05", "2009Q2"}));
    EXPECT_EQ(zelle["runner_up"], nullptr);
    EXPECT_THAT(heim_.rufe({"coverage"}).ausgabe, HasSubstr("(05,Q2)"));
}
TEST_F(Deckung, FitsTheWidthByLeavingOutVersionsAndThenByGoingOnBelow) {
    std::string jahre = "1990";
    for (int jahr = 1991; jahr < 2030; ++jahr)
        jahre += "," + std::to_string(jahr);
    lege("libderallerallerlaengstename-von-allen-die-es-je-gab.dylib",
         "produktversion 1.0\ncheck EinSehrSehrSehrSehrSehrSehrLangerName " + jahre + "\ncheck 10 2000\n");
    for (const char* const spalten : {"60", "80", "132"}) {
        const Ergebnis ergebnis = heim_.rufe({"coverage"}, {std::string("COLUMNS=") + spalten});
        const std::string ohneKopf = ergebnis.ausgabe.substr(ergebnis.ausgabe.find("SUB-CASE"));
        EXPECT_LE(breite(ohneKopf.substr(0, ohneKopf.find("Marks:"))), std::stoul(spalten))
            << ergebnis.ausgabe;
        EXPECT_THAT(ergebnis.ausgabe, AllOf(HasSubstr("\xE2\x80\xA6"), HasSubstr("2029")));
    }
}
TEST_F(Deckung, ForeignBytesDoNotReachTheTerminal) {
    heim_.lege(ORVO_SCHAEDLING, "liba.dylib",
               "version 1\x1b[2J\ncheck Gr\xF6\xDF"
               "e\x1b[31m\x9B\n");
    const Ergebnis ergebnis = heim_.rufe({"coverage"});
    EXPECT_THAT(ergebnis.ausgabe, HasSubstr("Gr\xC3\xB6\xC3\x9F"
                                            "e\\x1b[31m"));
    EXPECT_THAT(ergebnis.ausgabe, Not(HasSubstr("\x1b")));
}
TEST_F(Deckung, ATableThatNobodyCouldReadIsNotMade) {
    std::string text;
    for (int i = 0; i < 1000; ++i)
        text += "check " + std::to_string(i) + " " + std::to_string(2000 + i) + "\n";
    lege("liba.dylib", text);
    const std::string seite = heim_.verzeichnis.pfad("seite.html");
    const Ergebnis ergebnis = heim_.rufe({"coverage", "--html", seite});
    EXPECT_EQ(ergebnis.ausgang, 0);
    EXPECT_THAT(
        ergebnis.ausgabe,
        AllOf(HasSubstr("1000 cells served, 999000 gaps\ntoo many cells for a table"), SizeIs(Lt(1000u))));
    EXPECT_LT(std::filesystem::file_size(seite), 100000u);
    EXPECT_EQ(json()["types"][0]["rows"].size(), 1000u);
}
TEST_F(Deckung, TheOutputOfManyKeysIsWhole) {
    std::string text = "produktversion 1.0\n";
    std::string jahre = "1900";
    for (int jahr = 1901; jahr < 2000; ++jahr)
        jahre += "," + std::to_string(jahr);
    for (int ua = 0; ua < 1000; ++ua)
        text += "check " + std::to_string(ua) + " " + jahre + "\n";
    lege("liba.dylib", text);
    const Ergebnis ergebnis = heim_.rufe({"coverage", "--json", "--timeout", "120"});
    ASSERT_EQ(ergebnis.ausgang, 0) << ergebnis.fehler;
    EXPECT_EQ(Json::parse(ergebnis.ausgabe)["types"][0]["totals"]["served"], 100000);
}
