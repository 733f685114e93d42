// orvoplugin diff: its text and JSON against golden/, and its exit codes.

#include "Aufruf.h"
#include "Heim.h"

#include "support/Verzeichnis.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <thread>

using namespace testing;
using Json = nlohmann::json;
namespace fs = std::filesystem;

namespace {

/// A yearly update: last year's delivery in a/, this year's in b/.
class Diff : public Test {
protected:
    Diff() {
        ort_.legeAn("a");
        ort_.legeAn("b");
        ort_.legeAn("tmp");
    }
    void lege(const std::string& name, const std::string& text, const char* bibliothek = ORVO_BESCHRIEBEN) {
        ort_.kopiere(bibliothek, name);
        ort_.schreibe(name + ".txt", text);
    }
    void legeJahreswechsel() {
        lege("a/libsteuer.dylib",
             "produktversion 16.1\nfileversion 160\ncheck 10 2008,2009\ncheck 12 2009\n");
        lege("a/libimmer.dylib", "produktversion 1.0\ncheck 12 immer\nfinanzamt\n");
        lege("a/libneu.dylib", "produktversion 0.5\ncheck 77 2009\n");
        lege("a/libalt.dylib", "produktversion 3.0\ncheck 20 2009\n");
        lege("a/libkrank.dylib", "abgelehnt\n");
        lege("a/unter/libxpath.dylib", "produktversion 2.0\nxpath 10 2009\n");
        lege("b/libsteuer.dylib", "produktversion 17.1\nfileversion 170\ncheck 10 2008,2009,2010\n");
        lege("b/libneu.dylib", "abgelehnt\n");
        lege("b/libzwanzig.dylib", "produktversion 4.0\ncheck 20 2009\n");
        lege("b/libkrank.dylib", "produktversion 1.0\ncheck 21 2010\n");
        lege("b/unter/libxpath.dylib", "produktversion 1.9\nxpath 10 2009\n");
    }
    Ergebnis rufe(std::vector<std::string> argumente) {
        argumente.insert(argumente.begin(), "diff");
        std::vector<std::string> umgebung{"TMPDIR=" + ort_.pfad("tmp")};
        if (argumente.back() == "--json") // it is English in every locale
            umgebung.insert(umgebung.end(), kDeutsch.begin(), kDeutsch.end());
        Ergebnis ergebnis = rufeTool(argumente, umgebung);
        ergebnis.ausgabe = ersetze(ergebnis.ausgabe, ort_.pfad(), "@DIR@");
        // the content of a test plugin is not the same everywhere
        static const std::regex kInhalt("\"size\": \\d+,(\\s*)\"sha256\": \"[0-9a-f]{64}\"");
        ergebnis.ausgabe = std::regex_replace(ergebnis.ausgabe, kInhalt,
                                              "\"size\": 0,$1\"sha256\": \"" + std::string(64, '0') + "\"");
        ergebnis.fehler = ersetze(ergebnis.fehler, ort_.pfad(), "@DIR@");
        EXPECT_TRUE(fs::is_empty(ort_.pfad("tmp"))) << "nothing is left of a merge";
        return ergebnis;
    }
    Ergebnis vergleiche(std::vector<std::string> mehr = {}) {
        mehr.insert(mehr.begin(), {ort_.pfad("a"), ort_.pfad("b")});
        return rufe(mehr);
    }
    Json json(std::vector<std::string> mehr = {}) {
        mehr.push_back("--json");
        return Json::parse(vergleiche(mehr).ausgabe);
    }
    void pruefe(const std::string& name, int ausgang, std::vector<std::string> mehr = {}) {
        const Ergebnis text = vergleiche(mehr);
        EXPECT_EQ(text.ausgang, ausgang) << text.fehler;
        EXPECT_EQ(vergleicheMitMuster(name + ".txt", text.ausgabe), "");
        mehr.push_back("--json");
        const Ergebnis alsJson = vergleiche(mehr);
        EXPECT_EQ(alsJson.ausgang, ausgang);
        EXPECT_EQ(vergleicheMitMuster(name + ".json", alsJson.ausgabe), "");
        mehr.back() = "--quiet";
        const Ergebnis still = vergleiche(mehr);
        EXPECT_EQ(still.ausgang, ausgang);
        EXPECT_THAT(still.ausgabe + still.fehler, IsEmpty());
    }
    /// "lost CHECK 12 2009", of the document's list.
    static std::vector<std::string> kurz(const Json& liste) {
        std::vector<std::string> texte;
        for (const Json& e : liste)
            texte.push_back(
                e["change"].get<std::string>() + " " + e["type"]["label"].get<std::string>() + " " +
                (e["sub_case_type"].is_null() ? "any" : e["sub_case_type"]["name"].get<std::string>()) + " " +
                (e["year"].is_null() ? "any" : e["year"].dump()));
        return texte;
    }

    const Verzeichnis ort_;
};

} // namespace

TEST_F(Diff, ShowsWhatAYearlyUpdateChanges) {
    legeJahreswechsel();
    pruefe("diff", 1);
}
TEST_F(Diff, ShowsWhatAnUpdateChangesThatIsCopiedOverTheOldOne) {
    legeJahreswechsel();
    pruefe("diff-merge", 1, {"--merge"});
}
TEST_F(Diff, EqualDirectoriesHaveNoDifference) {
    legeJahreswechsel();
    const Ergebnis ergebnis = rufe({ort_.pfad("a"), ort_.pfad("a")});
    EXPECT_EQ(ergebnis.ausgang, 0) << "what is refused on both sides is no difference";
    EXPECT_THAT(ergebnis.ausgabe, EndsWith("No difference.\n"));
}
TEST_F(Diff, SpeaksGermanWithoutAWordOfEnglish) {
    legeJahreswechsel();
    const std::string text = rufeTool({"diff", ort_.pfad("a"), ort_.pfad("b")}, kDeutsch).ausgabe;
    EXPECT_EQ(vergleicheMitMuster("diff-de.txt", ersetze(text, ort_.pfad(), "@DIR@")), "");
}
TEST_F(Diff, GainsAreNoFindings) {
    lege("a/liba.dylib", "produktversion 1.0\ncheck 10 2009\n");
    lege("b/liba.dylib", "produktversion 1.1\ncheck 10 2009,2010\n");
    pruefe("diff-gains", 0);
}
TEST_F(Diff, ALowerVersionIsAFinding) {
    lege("a/liba.dylib", "produktversion 1.10\ncheck 10 2009\n");
    lege("b/liba.dylib", "produktversion 1.9\ncheck 10 2009\n");
    EXPECT_EQ(vergleiche().ausgang, 1);
    EXPECT_EQ(json()["keys"][0]["lower_version"], true) << "number by number, not text by text";
}
TEST_F(Diff, ALostKeySaysWhoAnswersInstead) {
    legeJahreswechsel();
    const Json dokument = json({"--merge"});
    for (const Json& e : dokument["keys"])
        if (e["change"] == "lost" && e["sub_case_type"]["name"] == "12") {
            EXPECT_EQ(e["after"]["match"], "period_independent");
            EXPECT_EQ(e["after"]["plugin"]["file"], "libimmer.dylib");
            return;
        }
    FAIL() << "not lost";
}
TEST_F(Diff, AKeyWhoseFactoryIsNotExportedIsServedByNobody) {
    lege("a/liba.dylib", "produktversion 1\ncheck 10 2009\ncheck 11 2009\n");
    lege("b/liba.dylib", "produktversion 1\ncheck 10 2009\nfactory keine\ncheck 11 2009\n");
    EXPECT_EQ(vergleiche().ausgang, 1);
    const Json verloren = json()["keys"];
    EXPECT_THAT(kurz(verloren), ElementsAre("lost CHECK 11 2009"));
    EXPECT_EQ(verloren[0]["after"], nullptr) << "that the plugin holds the key helps no client";
    const Json zurueck = Json::parse(rufe({ort_.pfad("b"), ort_.pfad("a"), "--json"}).ausgabe)["keys"];
    EXPECT_THAT(kurz(zurueck), ElementsAre("gained CHECK 11 2009"));
    EXPECT_EQ(zurueck[0]["before"], nullptr);
    EXPECT_EQ(rufe({ort_.pfad("b"), ort_.pfad("b")}).ausgang, 0) << "what nobody served is no difference";
    const std::string liste = ort_.schreibe("b.json", rufeTool({"lock", ort_.pfad("b")}).ausgabe);
    EXPECT_EQ(rufe({liste, ort_.pfad("b")}).ausgang, 0) << "nor does a lock file name it";
}
TEST_F(Diff, WhatWasDisplacedBeforeIsNotNew) {
    lege("a/liba.dylib", "produktversion 1\ncheck 10 2009\n");
    lege("a/libb.dylib", "produktversion 2\ncheck 10 2009\n");
    lege("b/liba.dylib", "produktversion 1\ncheck 10 2009\n");
    lege("b/libb.dylib", "produktversion 2\ncheck 10 2009\n");
    EXPECT_EQ(json()["displaced"], Json::array());
    lege("b/libb.dylib", "produktversion 0\ncheck 10 2009\n");
    EXPECT_THAT(kurz(json()["displaced"]),
                ElementsAre("newly_displaced CHECK 10 2009", "no_longer_displaced CHECK 10 2009"));
}
TEST_F(Diff, SubCaseTypesAreMatchedAsTheLibraryDoes) {
    lege("a/liba.dylib", "produktversion 1\ncheck LSTB 2009\ncheck 010 2009\n");
    lege("b/liba.dylib", "produktversion 1\ncheck lstb 2009\ncheck 10 2009\n");
    EXPECT_EQ(json()["totals"]["changes"], 0);
}
TEST_F(Diff, ACrashInOneDirectoryIsARowAndTheRestIsCompared) {
    lege("a/liba.dylib", "produktversion 1\ncheck 10 2009\n");
    lege("b/liba.dylib", "produktversion 1\ncheck 10 2009,2010\n");
    lege("b/libx.dylib", "tu initialize segv\n", ORVO_SCHAEDLING);
    for (const std::vector<std::string>& art :
         {std::vector<std::string>{}, std::vector<std::string>{"--merge"}}) {
        EXPECT_EQ(vergleiche(art).ausgang, 4);
        const Json dokument = json(art);
        EXPECT_EQ(dokument["files"][0]["change"], "newly_refused");
        EXPECT_EQ(dokument["files"][0]["after"]["state"], "crashed");
        EXPECT_EQ(dokument["files"][0]["after"]["path"], "@DIR@/b/libx.dylib") << "where it comes from";
        EXPECT_THAT(kurz(dokument["keys"]), ElementsAre("gained CHECK 10 2010"));
    }
}
TEST_F(Diff, ADirectoryThatCannotBeReadAndWrongUsage) {
    EXPECT_EQ(rufe({ort_.pfad("a"), ort_.pfad("fehlt")}).ausgang, 3);
    EXPECT_EQ(rufe({ort_.pfad("fehlt"), ort_.pfad("b")}).ausgang, 3);
    const Ergebnis zusammen = rufe({"--merge", ort_.pfad("a"), ort_.pfad("fehlt")});
    EXPECT_EQ(zusammen.ausgang, 3);
    EXPECT_THAT(zusammen.fehler, HasSubstr("@DIR@/fehlt"));
    EXPECT_EQ(rufe({ort_.pfad("a")}).ausgang, 2);
    EXPECT_EQ(rufe({ort_.pfad("a"), ort_.pfad("b"), "--dir", ort_.pfad("a")}).ausgang, 2);
}
TEST_F(Diff, AMergeThatCopyingCouldNotMakeIsAnError) {
    lege("a/x/liba.dylib", "");
    ort_.schreibe("b/x", "a file");
    const Ergebnis ergebnis = vergleiche({"--merge"});
    EXPECT_EQ(ergebnis.ausgang, 3);
    EXPECT_THAT(ergebnis.fehler, HasSubstr("@DIR@/b/x: cannot be copied over a directory"));
}
TEST_F(Diff, AFileOfTheSameInodeIsCopiedAsCopyingWould) {
    lege("a/liba.dylib", "produktversion 1\ncheck 10 2009\n", ORVO_BESCHRIEBEN_BLEIBT);
    fs::create_hard_link(ort_.pfad("a/liba.dylib"), ort_.pfad("b/libb.dylib"));
    ort_.schreibe("b/libb.dylib.txt", "produktversion 2\ncheck 11 2009\n");
    const Json dokument = json({"--merge"});
    EXPECT_THAT(kurz(dokument["keys"]), ElementsAre("gained CHECK 11 2009"))
        << "one library by two names would say the same of itself twice";
    EXPECT_EQ(dokument["files"][0]["file"], "libb.dylib");
}
TEST_F(Diff, NeitherDirectoryIsTouchedByAMerge) {
    legeJahreswechsel();
    const auto bild = [&] {
        std::vector<std::string> namen;
        for (const char* const seite : {"a", "b"})
            for (const auto& eintrag : fs::recursive_directory_iterator(ort_.pfad(seite)))
                namen.push_back(eintrag.path().string() + (eintrag.is_symlink() ? " link" : ""));
        std::sort(namen.begin(), namen.end());
        return namen;
    };
    const auto vorher = bild();
    vergleiche({"--merge"});
    EXPECT_EQ(bild(), vorher);
}
TEST_F(Diff, ForeignBytesDoNotReachTheTerminal) {
    lege("a/lib\x1b[31m\xF6<script>.dylib", "produktversion 1\x9B\ncheck a\x1b[2J 2009\n");
    const Ergebnis ergebnis = vergleiche();
    EXPECT_THAT(ergebnis.ausgabe, Not(AnyOf(HasSubstr("\x1b"), HasSubstr("\xC2\x9B"))));
    EXPECT_THAT(ergebnis.ausgabe, HasSubstr("lib\\x1b[31m\xC3\xB6<script>.dylib"));
    EXPECT_EQ(json()["keys"][0]["change"], "lost");
}
namespace {

/// `diff --merge` that hangs for a second while it loads the merged directory, in a temporary directory of the test.
class Zusammenlegen : public Diff {
protected:
    Zusammenlegen() {
        lege("a/liba.dylib", "tu initialize haenge\n", ORVO_SCHAEDLING);
        kind_ = fork();
        if (kind_ == 0) {
            setenv("TMPDIR", tmp_.c_str(), 1);
            execl(ORVO_TOOL, ORVO_TOOL, "diff", "--merge", "--timeout", "1", ort_.pfad("a").c_str(),
                  ort_.pfad("b").c_str(), nullptr);
            _exit(127);
        }
    }

    bool wirdLeer(bool leer, std::chrono::milliseconds takt) {
        for (const auto ende = Uhr::now() + std::chrono::seconds(60); Uhr::now() < ende;) {
            if (fs::is_empty(tmp_) == leer)
                return true;
            std::this_thread::sleep_for(takt);
        }
        return false;
    }
    /// Returns: whether it was still at work.
    bool toete() {
        kill(kind_, SIGKILL);
        int zustand = 0;
        waitpid(kind_, &zustand, 0);
        return WIFSIGNALED(zustand);
    }

private:
    using Uhr = std::chrono::steady_clock;
    const std::string tmp_ = ort_.pfad("tmp");
    pid_t kind_ = -1;
};

constexpr std::chrono::milliseconds kSofort{0}, kGemaechlich{20};

class ZusammenlegenVonAnfangAn : public Zusammenlegen, public WithParamInterface<int> {};

} // namespace

TEST_F(Zusammenlegen, LeavesNothingEvenWhenTheToolIsKilled) {
    ASSERT_TRUE(wirdLeer(false, kGemaechlich)) << "the second loading has begun";
    ASSERT_TRUE(toete());
    EXPECT_TRUE(wirdLeer(true, kGemaechlich));
}

TEST_P(ZusammenlegenVonAnfangAn, LeavesNothingWhenTheToolIsKilledAsSoonAsThereIsSomething) {
    ASSERT_TRUE(wirdLeer(false, kSofort));
    ASSERT_TRUE(toete());
    EXPECT_TRUE(wirdLeer(true, kGemaechlich));
}

INSTANTIATE_TEST_SUITE_P(TimeAndAgain, ZusammenlegenVonAnfangAn, Range(0, 5));
