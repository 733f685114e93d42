// The commands on a fixed set of directories: their text and JSON against golden/, and their exit codes.

#include "Heim.h"

#include "TestPlugins.h"
#include "support/Sanitizer.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>

using namespace testing;
using Json = nlohmann::json;

namespace {

/// A directory with a file in each state.
class Bunt : public Test {
protected:
    Bunt() {
        heim_.lege(
            test_plugins::DescribedByFile, "liba.dylib",
            "produktversion 1.9\nfileversion 3\nlabel Ausgabe\nonload zaehleOnLoad\nonunload "
            "fehlt\nresident\n"
            "check 10 2009,2010\ncheck LSTB 2009\nfinanzamt\nfactory gleicherService\nreader 77 immer\n");
        heim_.lege(test_plugins::DescribedByFile, "libb.dylib",
                   "produktversion 1.10\ncheck 10 2010,2011\nfinanzamt\nxpath 77 2009\n");
        heim_.lege(test_plugins::OffersEverything, "libc.dylib");
        heim_.lege(test_plugins::DoesHarm, "libd.dylib",
                   "version 1.9\ncheck Gr\xF6\xDF"
                   "e \x1b[31m\nlabel \x9B\xFFx\nfactory fehltAuch\ncheck 50\n");
        heim_.lege(test_plugins::WithoutEntryPoints, "libe.dylib");
        heim_.lege(test_plugins::DeclaresTypeTwo, "libf.dylib");
        heim_.lege(test_plugins::WithoutInitialize, "libg.dylib");
        heim_.lege(test_plugins::DescribedByFile, "libh.dylib", "abgelehnt\n");
        heim_.lege(test_plugins::ThrowsOwnStandardExceptionFromInitialize, "libi.dylib");
        heim_.lege(test_plugins::DescribedByFile, "unter/libj.dylib", "produktversion 2\ncheck 10 2009\n");
        heim_.verzeichnis.schreibe("plugins/libk.dylib", "kein Plugin");
        heim_.verzeichnis.schreibe("plugins/libfrendolin.dylib", "");
        heim_.verzeichnis.schreibe("plugins/ohnepunkt", "");
        heim_.verzeichnis.schreibe("plugins/.versteckt.dylib", "");
        EXPECT_EQ(symlink("/gibt/es/nicht", (heim_.plugins() + "/libtot.dylib").c_str()), 0);
        EXPECT_EQ(symlink("..", (heim_.plugins() + "/rauf").c_str()), 0);
    }
    /// Compares text and JSON with the golden files of that name, and the exit code of both with the one expected.
    void pruefe(const std::string& name, int ausgang, const std::vector<std::string>& argumente) {
        const Ergebnis text = heim_.rufe(argumente);
        EXPECT_EQ(text.ausgang, ausgang) << text.fehler;
        EXPECT_EQ(vergleicheMitMuster(name + ".txt", text.ausgabe), "");
        EXPECT_THAT(text.fehler, IsEmpty());
        std::vector<std::string> mitJson = argumente;
        mitJson.push_back("--json");
        const Ergebnis json = heim_.rufe(mitJson, kDeutsch); // JSON is English in every locale
        EXPECT_EQ(json.ausgang, ausgang);
        EXPECT_EQ(vergleicheMitMuster(name + ".json", json.ausgabe), "");
        EXPECT_THAT(json.fehler, IsEmpty());
        std::vector<std::string> still = argumente;
        still.push_back("--quiet");
        const Ergebnis stumm = heim_.rufe(still);
        EXPECT_EQ(stumm.ausgang, ausgang);
        EXPECT_THAT(stumm.ausgabe + stumm.fehler, IsEmpty());
    }

    const Heim heim_;
};

} // namespace

TEST_F(Bunt, ListShowsEveryFileWithWhatBecameOfIt) { pruefe("list", 1, {"list"}); }
TEST_F(Bunt, ListShowsWhoIsResident) { pruefe("list-resident", 1, {"list", "--resident", "alle,"}); }
TEST_F(Bunt, ShowShowsALoadedPluginWhole) { pruefe("show", 1, {"show", "a"}); }
TEST_F(Bunt, ShowShowsEveryKindOfExtension) { pruefe("show-all-kinds", 0, {"show", "libc.dylib"}); }
TEST_F(Bunt, ShowShowsForeignBytes) { pruefe("show-bytes", 1, {"show", "d"}); }
TEST_F(Bunt, ShowSaysWhyAPluginIsRefused) { pruefe("show-refused", 1, {"show", "i"}); }
TEST_F(Bunt, ShowSaysWhyAFileIsPassedOver) { pruefe("show-ignored", 1, {"show", "ohnepunkt"}); }
TEST_F(Bunt, FindListsTheKeysOfAKind) { pruefe("find-type", 1, {"find", "check"}); }
TEST_F(Bunt, FindListsTheKeysOfASubCaseType) { pruefe("find-sub-case-type", 0, {"find", "1", "010"}); }
TEST_F(Bunt, FindSaysWhoAnswersByTheKeyItself) { pruefe("find-exact", 0, {"find", "check", "10", "2010"}); }
TEST_F(Bunt, FindSaysWhoAnswersByTheYear) {
    pruefe("find-same-year", 0, {"find", "check", "lstb", "2009Q2"});
}
TEST_F(Bunt, FindSaysWhoAnswersForAnyPeriod) {
    pruefe("find-any", 0, {"find", "reader", "77", "2013-05-31"});
}
TEST_F(Bunt, FindShowsTaxOfficeDataForEverySubCaseTypeAndPeriod) {
    pruefe("find-tax-offices", 0, {"find", "finanz"});
    EXPECT_EQ(heim_.rufe({"find", "finanz", "LSTB"}).ausgabe, heim_.rufe({"find", "finanz"}).ausgabe);
}
TEST_F(Bunt, FindSaysThatTaxOfficeDataAnswerAnyLookUp) {
    pruefe("find-tax-offices-look-up", 0, {"find", "4", "10", "2009"});
    const std::string antwort = heim_.rufe({"find", "4", "10", "2009"}).ausgabe;
    for (const auto& [unterfallart, zeitraum] :
         {std::pair("0", "2000"), std::pair("Nie", "VZ_UNABHAENGIG"), std::pair("LSTB", "2013-05-31")})
        EXPECT_EQ(heim_.rufe({"find", "4", unterfallart, zeitraum}).ausgabe, antwort) << unterfallart;
}
TEST_F(Bunt, FindSaysThatNobodyAnswers) { pruefe("find-none", 1, {"find", "check", "10", "1999"}); }
TEST_F(Bunt, WhyFollowsAPluginThatAnswers) { pruefe("why-file", 1, {"why", "b"}); }
TEST_F(Bunt, WhyFollowsAPluginThatWonEverything) { pruefe("why-file-wins", 0, {"why", "unter/libj.dylib"}); }
TEST_F(Bunt, WhyFollowsARefusedPlugin) { pruefe("why-refused", 1, {"why", "g"}); }
TEST_F(Bunt, WhyFollowsABlockedFile) { pruefe("why-blocked", 1, {"why", "frendolin"}); }
TEST_F(Bunt, WhyFollowsAFileThatIsNotThere) { pruefe("why-missing", 1, {"why", "libweg.dylib"}); }
TEST_F(Bunt, WhyFollowsALookUp) { pruefe("why-look-up", 0, {"why", "check", "10", "2009"}); }
TEST_F(Bunt, WhyFollowsALookUpForAnyPeriod) { pruefe("why-any", 1, {"why", "reader", "77", "2013"}); }
TEST_F(Bunt, WhyFollowsALookUpOfTaxOfficeData) {
    pruefe("why-tax-offices", 0, {"why", "finanz", "10", "2009"});
    EXPECT_EQ(heim_.rufe({"why", "4", "Nie", "VZ_UNABHAENGIG"}).ausgabe,
              heim_.rufe({"why", "finanz", "10", "2009"}).ausgabe);
}
TEST_F(Bunt, WhyFollowsALookUpWithoutAFactory) {
    pruefe("why-no-factory", 1, {"why", "check", "50", "2009"});
}
TEST_F(Bunt, WhyFollowsALookUpOfAnotherPeriod) {
    pruefe("why-other-period", 1, {"why", "check", "10", "1999"});
}
TEST_F(Bunt, WhyFollowsALookUpOfAnUnknownSubCaseType) {
    pruefe("why-unknown", 1, {"why", "check", "Nie", "2009"});
}

TEST_F(Bunt, SpeaksGermanWithoutAWordOfEnglish) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> faelle{
        {"list-de.txt", {"list"}},
        {"show-de.txt", {"show", "a"}},
        {"why-file-de.txt", {"why", "b"}},
        {"why-refused-de.txt", {"why", "g"}},
        {"why-look-up-de.txt", {"why", "check", "10", "2009"}}};
    for (const auto& [muster, argumente] : faelle)
        EXPECT_EQ(vergleicheMitMuster(muster, heim_.rufe(argumente, kDeutsch).ausgabe), "");
}

TEST(Befehle, TaxOfficeDataThatNobodyServesAreServedForNoSubCaseTypeAndPeriod) {
    const Heim heim;
    heim.lege(test_plugins::DescribedByFile, "liba.dylib", "check 10 2009\ncheck 0 2000\nxpath 77 2009\n");
    const std::vector<std::vector<std::string>> fragen{
        {"0", "2000"}, {"10", "2009"}, {"Nie", "VZ_UNABHAENGIG"}};
    for (const std::vector<std::string>& frage : fragen) {
        const Ergebnis wer = heim.rufe({"find", "finanz", frage[0], frage[1]});
        EXPECT_EQ(wer.ausgang, 1) << frage[0];
        EXPECT_EQ(wer.ausgabe, "nobody answers\n");
        const Ergebnis warum = heim.rufe({"why", "finanz", frage[0], frage[1]});
        EXPECT_EQ(warum.ausgang, 1) << frage[0];
        EXPECT_EQ(warum.ausgabe,
                  "1. no   there is no key for FINANZAMTS_DATEN\n\n"
                  "No loaded plugin serves this kind of extension; served are CHECK, XPATH_MAPPING.\n"
                  "Install a plugin that serves it.\n");
        const Ergebnis alsJson = heim.rufe({"why", "finanz", frage[0], frage[1], "--json"});
        EXPECT_EQ(Json::parse(alsJson.ausgabe)["conclusion"]["code"], "other_types");
    }
    const Heim leer;
    leer.verzeichnis.legeAn("plugins");
    EXPECT_THAT(leer.rufe({"why", "finanz", "10", "2009"}).ausgabe,
                HasSubstr("No plugin is loaded that serves anything."));
}

namespace {

/// A directory in which one plugin crashes, one ends the process and one hangs.
class Boese : public Bunt {
protected:
    Boese() {
        heim_.lege(test_plugins::DoesHarm, "liba.dylib", "tu initialize segv\n");
        heim_.lege(test_plugins::DoesHarm, "libb.dylib", "tu initialize exit 0\n");
        heim_.lege(test_plugins::DoesHarm, "libc.dylib", "tu types farbe\ntu initialize haenge\n");
    }
};

} // namespace

TEST_F(Boese, ListShowsWhatCrashedEndedAndHung) { pruefe("list-crashes", 4, {"list", "--timeout", "2"}); }
TEST_F(Boese, ShowShowsWhatCrashed) { pruefe("show-crash", 4, {"show", "a"}); }
TEST_F(Boese, WhyFollowsWhatCrashed) { pruefe("why-crash", 4, {"why", "a", "--timeout", "2"}); }
TEST_F(Boese, FindAnswersWithoutWhatCrashed) {
    pruefe("find-crash", 4, {"find", "check", "10", "2009", "--timeout", "2"});
}
TEST_F(Boese, WhyNamesWhatCrashedBesideAnAnswer) {
    pruefe("why-look-up-crash", 4, {"why", "check", "10", "2009", "--timeout", "2"});
}

TEST(Befehle, AnEmptyDirectoryIsFine) {
    const Heim heim;
    const Ergebnis ergebnis = heim.rufe({"list"});
    EXPECT_EQ(ergebnis.ausgang, 0);
    EXPECT_EQ(ergebnis.ausgabe, "Plugin directory: @HOME@/plugins\n\n0 files; 0 extensions, 0 keys\n");
}

TEST(Befehle, AMissingDirectoryCannotBeRead) {
    for (const std::string befehl : {"list", "find check", "why x", "show x"}) {
        std::vector<std::string> worte{befehl.substr(0, befehl.find(' '))};
        if (befehl.find(' ') != std::string::npos)
            worte.push_back(befehl.substr(befehl.find(' ') + 1));
        worte.insert(worte.end(), {"--dir", "/gibt/es/nicht"});
        const Ergebnis ergebnis = rufeTool(worte);
        EXPECT_EQ(ergebnis.ausgang, 3) << befehl;
        EXPECT_THAT(ergebnis.ausgabe, IsEmpty());
        EXPECT_EQ(
            ergebnis.fehler,
            "orvoplugin: /gibt/es/nicht: No such file or directory; --dir names the plugin directory itself\n");
    }
}

namespace {

/// A subdirectory whose path exceeds the system's limit: even root cannot read it.
std::string legeZuTiefAn(const std::string& verzeichnis) {
    const std::string name(200, 'd');
    std::string pfad = verzeichnis;
    int offen = open(pfad.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    while (pfad.size() < PATH_MAX) {
        EXPECT_EQ(mkdirat(offen, name.c_str(), 0700), 0);
        const int naechstes = openat(offen, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        close(offen);
        offen = naechstes;
        pfad += "/" + name;
    }
    close(offen);
    return pfad;
}

} // namespace

TEST(Befehle, ADirectoryBelowThatCannotBeReadIsNamedBesideTheResults) {
    const Heim heim, leer;
    heim.lege(test_plugins::DescribedByFile, "liba.dylib", "check 10 2009\n");
    leer.verzeichnis.legeAn("plugins");
    const std::string unlesbar = legeZuTiefAn(heim.verzeichnis.legeAn("plugins/unter"));
    const std::vector<std::vector<std::string>> befehle{
        {"list", "--dir", heim.plugins()},
        {"find", "check", "10", "2009", "--dir", heim.plugins()},
        {"why", "check", "10", "2009", "--dir", heim.plugins()},
        {"coverage", "--dir", heim.plugins()},
        {"diff", heim.plugins(), leer.plugins()},
        {"check", "--only", "describes", "--dir", heim.plugins()},
    };
    for (std::vector<std::string> worte : befehle) {
        const Ergebnis text = rufeTool(worte);
        EXPECT_EQ(text.ausgang, 3) << worte.front();
        EXPECT_THAT(text.ausgabe, HasSubstr("liba.dylib")) << worte.front();
        EXPECT_THAT(text.ausgabe + text.fehler,
                    AllOf(HasSubstr("cannot be read"), HasSubstr(unlesbar), HasSubstr("File name too long")))
            << worte.front();
        worte.push_back("--json");
        EXPECT_THAT(rufeTool(worte).ausgabe, AllOf(HasSubstr(unlesbar), HasSubstr("File name too long")))
            << worte.front();
    }
}

TEST(Befehle, AMissingFileCannotBeShown) {
    const Heim heim;
    EXPECT_EQ(heim.rufe({"show", "libx.dylib"}).ausgang, 3);
    const Ergebnis ergebnis = rufeTool({"show", "/gibt/es/nicht.dylib"});
    EXPECT_EQ(ergebnis.ausgang, 3);
    EXPECT_EQ(ergebnis.fehler, "orvoplugin: /gibt/es/nicht.dylib: No such file or directory\n");
}

TEST(Befehle, ShowTakesAFileAnywhere) {
    const Heim heim;
    const std::string pfad = heim.lege(test_plugins::DescribedByFile, "kein-plugin-name", "check 10 2009\n");
    const Ergebnis ergebnis = rufeTool({"show", pfad});
    EXPECT_EQ(ergebnis.ausgang, 0);
    EXPECT_THAT(ergebnis.ausgabe, HasSubstr("state:            loaded"));
}

TEST(Befehle, ShowAlignsBesideLettersThatTakeTwoBytes) {
    const Heim heim;
    heim.lege(test_plugins::DescribedByFile, "liba.dylib",
              "check Gr\xF6\xDF"
              "e 2009\ncheck Groesse 2010\n");
    const std::string ausgabe = heim.rufe({"show", "a"}).ausgabe;
    EXPECT_THAT(ausgabe, HasSubstr("\n  serves Groesse: 2010\n"));
    EXPECT_THAT(ausgabe, HasSubstr("\n  serves Gr\xC3\xB6\xC3\x9F"
                                   "e:   2009\n"));
}

TEST(Befehle, WrongUsageHasItsOwnExitCode) {
    const std::vector<std::vector<std::string>> faelle{
        {"show"},
        {"find"},
        {"find", "nichts"},
        {"find", "check", "10", "gestern"},
        {"find", "check", "10", "2009-13"},
        {"why", "check", "10", "2009-02-30"},
        {"why", "check", "10"},
        {"list", "--log", "laut"},
        {"list", "--home", "a", "--dir", "b"},
        {"list", "--timeout", "-1"},
        {"list", "--timeout", "nan"},
        {"list", "zuviel"},
        {"list", "--gibtesnicht"},
    };
    for (const auto& fall : faelle) {
        const Ergebnis ergebnis = rufeTool(fall);
        EXPECT_EQ(ergebnis.ausgang, 2) << fall.back();
        EXPECT_THAT(ergebnis.ausgabe, IsEmpty());
        EXPECT_THAT(ergebnis.fehler, StartsWith("orvoplugin: "));
    }
}

TEST(Befehle, AResidentNameWithoutItsCommaIsPointedOut) {
    const Heim heim;
    heim.lege(test_plugins::DescribedByFile, "liba.dylib", "check 10 2009\n");
    const Ergebnis ohne = heim.rufe({"list", "--resident", "b,alle"});
    EXPECT_EQ(ohne.ausgang, 0);
    EXPECT_EQ(ohne.fehler, "orvoplugin: --resident: \"alle\" names no plugin, for no comma follows it\n");
    EXPECT_THAT(heim.rufe({"list", "--resident", "b,alle,"}).fehler, IsEmpty());
    EXPECT_THAT(heim.rufe({"list", "--resident", ""}).fehler, IsEmpty());
    EXPECT_THAT(heim.rufe({"list", "--quiet", "--resident", "alle"}).fehler, IsEmpty());
}

TEST(Befehle, AnAmbiguousNameIsWrongUsageThatNamesTheFiles) {
    const Heim heim;
    heim.lege(test_plugins::DescribedByFile, "a/libx.dylib", "check 10 2009\n");
    heim.lege(test_plugins::DescribedByFile, "b/libx.dylib", "check 10 2010\n");
    const Ergebnis ergebnis = heim.rufe({"show", "x"});
    EXPECT_EQ(ergebnis.ausgang, 2);
    EXPECT_THAT(ergebnis.fehler, AllOf(HasSubstr("a/libx.dylib"), HasSubstr("b/libx.dylib")));
}

TEST(Befehle, TheLogIsReadableOnStandardError) {
    const Heim heim;
    heim.lege(test_plugins::DeclaresTypeTwo, "liba.dylib");
    const Ergebnis ergebnis = heim.rufe({"list", "--log", "info"});
    EXPECT_THAT(ergebnis.fehler,
                HasSubstr("Plugin nicht geladen: UNGUELTIGE_PLUGIN_VERSION: Ungültige Pluginversion"));
    EXPECT_THAT(ergebnis.ausgabe, Not(HasSubstr("Lese Bibliothek")));
    EXPECT_THAT(ergebnis.fehler, Not(HasSubstr("Spur")));
    const Ergebnis spuren = heim.rufe({"list", "--log", "debug"});
    EXPECT_THAT(spuren.fehler, HasSubstr("-> loadPlugin()"));
}

TEST(Befehle, AReaderOfTheLogWhoGoesCostsNoResult) {
    const Heim heim;
    heim.lege(test_plugins::DescribedByFile, "liba.dylib", "check 10 2009\n");
    heim.lege(test_plugins::DescribedByFile, "libb.dylib", "check 11 2009\n");
    const std::string rohr = heim.verzeichnis.pfad("rohr"); // has no reader
    const Ergebnis ergebnis = rufe(
        "env",
        {"--default-signal=PIPE", "sh", "-c",
         "mkfifo \"$2\" && exec 3<>\"$2\" 4>\"$2\" 3>&- && exec \"$0\" list --log debug --home \"$1\" 2>&4",
         ORVO_TOOL, heim.verzeichnis.pfad(), rohr});
    EXPECT_EQ(ergebnis.ausgang, 0);
    EXPECT_THAT(ergebnis.ausgabe, HasSubstr(": 2 loaded"));
}

TEST(Befehle, WhatPluginsPrintDoesNotSpoilTheResults) {
    const Heim heim;
    heim.lege(test_plugins::DoesHarm, "liba.dylib", "tu start farbe\ntu initialize farbe\ncheck 10\n");
    const Ergebnis ergebnis = heim.rufe({"list", "--json", "--resident", "a,"});
    EXPECT_EQ(ergebnis.ausgang, 0);
    EXPECT_THAT(ergebnis.fehler, IsEmpty());
    EXPECT_EQ(Json::parse(ergebnis.ausgabe)["files"][0]["plugin"]["resident"], true);
}

namespace {

#ifdef ORVO_ADDRESS_SANITIZER
constexpr int kViele = 10000; // it takes its time
#else
constexpr int kViele = 100000;
#endif

/// The tool's list of so many keys.
Ergebnis vieleSchluessel(const std::string& form) {
    const Heim heim;
    heim.lege(test_plugins::DoesHarm, "liba.dylib", "checks " + std::to_string(kViele) + "\n");
    Ergebnis ergebnis = heim.rufe({"find", "check", "--timeout", "600", form});
    EXPECT_EQ(ergebnis.ausgang, 0) << ergebnis.fehler;
    return ergebnis;
}

} // namespace

TEST(Befehle, AHundredThousandKeysComeOutWhole) {
    const std::string text = vieleSchluessel("--log=error").ausgabe;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), kViele + 1);
}

TEST(Befehle, AHundredThousandKeysComeOutWholeAsJson) {
    const std::string text = vieleSchluessel("--json").ausgabe;
    EXPECT_TRUE(Json::accept(text));
    int antworten = 0; // counted in the text: the whole document in memory takes its time
    for (std::size_t i = 0; (i = text.find("\"factory\": ", i)) != std::string::npos; ++i)
        ++antworten;
    EXPECT_EQ(antworten, kViele);
}

TEST(Befehle, ResultsThatCannotBeWrittenAreAnError) {
    const Heim heim;
    const Ergebnis ergebnis =
        rufe("/bin/sh", {"-c", "\"$0\" list --home \"$1\" >/dev/full", ORVO_TOOL, heim.verzeichnis.pfad()});
    EXPECT_EQ(ergebnis.ausgang, 3);
    EXPECT_THAT(ergebnis.fehler, HasSubstr("cannot write the results"));
}

TEST(Befehle, NothingIsColouredThatGoesToNoTerminal) {
    const Heim heim;
    heim.lege(test_plugins::DescribedByFile, "liba.dylib", "check 10 2009\n");
    EXPECT_THAT(heim.rufe({"list"}, {"TERM=xterm-256color"}).ausgabe, Not(HasSubstr("\x1b")));
}
