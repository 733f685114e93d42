#include "check/Katalog.h"

#include "../Heim.h"
#include "Lauf.h"

#include "TestPlugins.h"
#include "support/Sanitizer.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <string>

using namespace testing;

namespace {

constexpr char kTeil[] = "entry-points,describes,factories,unique-symbols,undefined-symbols";

std::size_t zeilen(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

} // namespace

TEST(CheckBefehl, ShowsALineForEachCheckAndASum) {
    const Pruefplugin plugin(test_plugins::Conforms, "laden ausgabe Hallo");
    const Ergebnis ergebnis = rufeTool({"check", plugin.pfad(), "--only", "entry-points,no-output,overlaps"});
    EXPECT_EQ(ergebnis.ausgang, 1);
    EXPECT_EQ(ergebnis.ausgabe,
              plugin.pfad() +
                  "\n"
                  "  passed     entry-points\n"
                  "  failed     no-output     writes to standard output: \"Hallo\\nHallo\\nHallo\\n\"\n"
                  "  skipped    overlaps      no other plugin that can be loaded was given\n"
                  "  1 passed, 1 failed, 1 skipped\n");
    EXPECT_EQ(ergebnis.fehler, "");
}

TEST(CheckBefehl, SeveralFilesAreSeveralBlocks) {
    const Pruefplugin eines(test_plugins::Conforms), anderes(test_plugins::BindsLate);
    const Ergebnis ergebnis =
        rufeTool({"check", "--only", "entry-points,immediate-binding", eines.pfad(), anderes.pfad()});
    EXPECT_EQ(ergebnis.ausgang, 0) << "a warning is no failure";
    EXPECT_EQ(ergebnis.ausgabe,
              "1/2 " + eines.pfad() +
                  ": passed\n"
                  "  passed     entry-points\n"
                  "  passed     immediate-binding\n"
                  "  2 passed\n\n"
                  "2/2 " +
                  anderes.pfad() +
                  ": with warnings\n"
                  "  passed     entry-points\n"
                  "  warning    immediate-binding  not linked with -z now: opened by others, a "
                  "missing function would end the process at its first call\n"
                  "  1 passed, 1 warning\n\n"
                  "2 files: 1 passed, 1 with warnings\n");
}

TEST(CheckBefehl, StrictMakesAWarningAFailure) {
    const Pruefplugin plugin(test_plugins::BindsLate);
    const Ergebnis ergebnis = rufeTool({"check", "--strict", "--only", "immediate-binding", plugin.pfad()});
    EXPECT_EQ(ergebnis.ausgang, 1);
    EXPECT_THAT(ergebnis.ausgabe, HasSubstr("  failed     immediate-binding"));
    EXPECT_THAT(ergebnis.ausgabe, HasSubstr("  1 failed\n"));
    const Ergebnis gut =
        rufeTool({"check", "--strict", "--only", "immediate-binding", test_plugins::Conforms});
    EXPECT_EQ(gut.ausgang, 0);
}

TEST(CheckBefehl, ResultsDoNotDependOnHowManyFilesAreCheckedAtOnce) {
    const Verzeichnis verzeichnis;
    for (const char* const name : {"liba.dylib", "libb.dylib", "libc.dylib", "libd.dylib"})
        verzeichnis.kopiere(test_plugins::Conforms, name);
    verzeichnis.schreibe("libb.dylib.txt", "beschreiben absturz");
    verzeichnis.schreibe("libe.dylib", "no library");
    for (const char* const format : {"text", "json", "junit", "sarif", "github"}) {
        const auto mit = [&](const char* jobs) {
            return rufeTool({"check", "--dir", verzeichnis.pfad(), "--only",
                             "file-format,describes,use,overlaps", "--format", format, "--jobs", jobs});
        };
        const Ergebnis eines = mit("1");
        EXPECT_EQ(eines.ausgang, 4);
        for (const char* const jobs : {"2", "7"})
            EXPECT_EQ(mit(jobs).ausgabe, eines.ausgabe) << format;
    }
}

TEST(CheckBefehl, WhatLooksAtFilesTogetherComesAfterThem) {
    const Verzeichnis verzeichnis;
    const std::string eines = verzeichnis.kopiere(test_plugins::Conforms, "liba.dylib"),
                      anderes = verzeichnis.kopiere(test_plugins::Conforms, "libb.dylib");
    const std::string text = rufeTool({"check", "--only", "describes,overlaps", eines, anderes}).ausgabe;
    EXPECT_THAT(
        text,
        StartsWith(
            "1/2 " + eines + ": passed\n  passed     describes\n  1 passed\n\n2/2 " + anderes +
            ": passed\n  passed     describes\n  1 passed\n\nAll files together\n  failed     overlaps  "));
    EXPECT_THAT(
        text,
        EndsWith(
            ", of the same version: the order of the file names decides\n\n2 files: 1 passed, 1 failed\n"));
}

TEST(CheckBefehl, OnlyFailedLeavesOutFilesThatPassedAndCountsThem) {
    const Pruefplugin gut(test_plugins::Conforms), warnung(test_plugins::BindsLate),
        schlecht(test_plugins::Conforms, "beschreiben absturz");
    const std::vector<std::string> argumente{"--only-failed", "--only",       "immediate-binding,describes",
                                             gut.pfad(),      warnung.pfad(), schlecht.pfad()};
    std::vector<std::string> alsText = argumente;
    alsText.insert(alsText.begin(), "check");
    const std::string text = rufeTool(alsText).ausgabe;
    EXPECT_THAT(text, StartsWith("2/3 " + warnung.pfad() + ": with warnings\n"));
    EXPECT_THAT(text, HasSubstr("\n3/3 " + schlecht.pfad() + ": crashed\n"));
    EXPECT_THAT(text, Not(HasSubstr(gut.pfad())));
    EXPECT_THAT(text, EndsWith("\n3 files: 1 passed, 1 with warnings, 1 crashed\n"));
    int ausgang = 0;
    const nlohmann::json json = pruefeAlsJson(argumente, ausgang);
    EXPECT_EQ(json.at("files").size(), 2U);
    EXPECT_EQ(json.at("totals").at("files"), 3);
    EXPECT_EQ(json.at("totals").at("passed"), 1);
}

TEST(CheckBefehl, ChecksThatOneStandsInTheWayOfAreOneLine) {
    const Verzeichnis verzeichnis;
    const std::string pfad = verzeichnis.schreibe("libtext.dylib", "no library");
    const std::size_t ohneDaten = werkzeug::check::katalog().size() - 1;
    const std::string mehr = std::to_string(ohneDaten - 1);
    EXPECT_EQ(rufeTool({"check", pfad}).ausgabe,
              pfad + "\n  failed     file-format         keine ELF-Datei\n  " + mehr +
                  " skipped: they build on file-format\n  1 failed, " + mehr + " skipped\n");
    EXPECT_EQ(pruefe(pfad).ergebnisse.size(), ohneDaten) << "JSON has all";
}

TEST(CheckBefehl, HasNoColoursInAPipe) {
    const Ergebnis ergebnis = rufeTool({"check", test_plugins::Conforms}, {"TERM=xterm", "NO_COLOR="});
    EXPECT_THAT(ergebnis.ausgabe, Not(HasSubstr("\x1b")));
}

TEST(CheckBefehl, QuietSaysOnlyWhatDidNotPassAndThatOnStandardError) {
    const Pruefplugin plugin(test_plugins::Conforms, "beschreiben factoryname orvo_plugin_get_chek_service");
    const Ergebnis ergebnis = rufeTool({"check", "--quiet", "--only", kTeil, plugin.pfad()});
    EXPECT_EQ(ergebnis.ausgang, 1);
    EXPECT_EQ(ergebnis.ausgabe, "");
    EXPECT_EQ(zeilen(ergebnis.fehler), 1U);
    EXPECT_THAT(ergebnis.fehler, StartsWith("orvoplugin: " + plugin.pfad() + ": failed: factories: "));
    const Ergebnis gut = rufeTool({"check", "--quiet", "--only", kTeil, test_plugins::Conforms});
    EXPECT_EQ(gut.ausgang, 0);
    EXPECT_EQ(gut.ausgabe + gut.fehler, "");
}

TEST(CheckBefehl, ListNamesEveryCheckWithItsSentence) {
    const Ergebnis ergebnis = rufeTool({"check", "--list"});
    EXPECT_EQ(ergebnis.ausgang, 0);
    EXPECT_EQ(zeilen(ergebnis.ausgabe), werkzeug::check::katalog().size());
    for (const werkzeug::check::Pruefung& pruefung : werkzeug::check::katalog()) {
        EXPECT_THAT(ergebnis.ausgabe, HasSubstr(std::string(pruefung.name) + " "));
        EXPECT_THAT(ergebnis.ausgabe, HasSubstr(std::string("  ") + pruefung.satz + "\n"));
    }
}

TEST(CheckBefehl, ListAsJsonHasTheSameChecksInTheSameOrder) {
    int ausgang = -1;
    const nlohmann::json json = pruefeAlsJson({"--list"}, ausgang);
    EXPECT_EQ(ausgang, 0);
    ASSERT_EQ(json.at("checks").size(), werkzeug::check::katalog().size());
    for (std::size_t i = 0; i < json.at("checks").size(); ++i) {
        const werkzeug::check::Pruefung& pruefung = werkzeug::check::katalog()[i];
        EXPECT_EQ(json.at("checks").at(i).at("name"), pruefung.name);
        EXPECT_EQ(json.at("checks").at(i).at("sentence"), pruefung.satz);
        EXPECT_EQ(json.at("checks").at(i).at("builds_on").size(), pruefung.bautAuf.size());
    }
}

TEST(CheckBefehl, OnlyAndSkipChooseAmongTheChecks) {
    const std::vector<std::string> datei{test_plugins::Conforms};
    EXPECT_THAT(pruefe(datei[0], {"--only", "use,describes"}).ergebnisse,
                ElementsAre(Pair("describes", "passed"), Pair("use", "passed")));
    EXPECT_THAT(pruefe(datei[0], {"--only", "use", "--only", "describes", "--skip", "use"}).ergebnisse,
                ElementsAre(Pair("describes", "passed")));
    const auto ohne = pruefe(datei[0], {"--skip", "use,describes"}).ergebnisse;
    EXPECT_EQ(ohne.size(), werkzeug::check::katalog().size() - 3) << "and without data";
    EXPECT_FALSE(ohne.contains("use"));
}

TEST(CheckBefehl, ACheckThatIsAskedForAloneSaysWhatIsInItsWay) {
    const Pruefplugin plugin(test_plugins::Conforms, "beschreiben wirf kaputt");
    const Dateilauf lauf = pruefe(plugin.pfad(), {"--only", "factories"});
    EXPECT_EQ(lauf.ergebnisse.at("factories"), "failed");
    EXPECT_THAT(lauf.gruende.at("factories"), HasSubstr("kaputt"));
    EXPECT_EQ(pruefe(plugin.pfad(), {"--only", "describes,unloads"}).gruende.at("unloads"),
              "builds on describes")
        << "also over checks in between that are not made";
}

TEST(CheckBefehl, WrongUsageIsTold) {
    EXPECT_EQ(rufeTool({"check"}).ausgang, 2);
    EXPECT_EQ(rufeTool({"check", "--home", "x", "--dir", "x"}).ausgang, 2);
    EXPECT_EQ(rufeTool({"check", "--only", "use", "--skip", "use", "x"}).ausgang, 2);
    EXPECT_EQ(rufeTool({"check", "--json", "--format", "sarif", "x"}).ausgang, 2);
    EXPECT_EQ(rufeTool({"check", "--list", "--format", "junit"}).ausgang, 2);
    EXPECT_EQ(rufeTool({"check", "--format", "xml", "x"}).ausgang, 2);
    EXPECT_EQ(rufeTool({"check", "--jobs", "0", "x"}).ausgang, 2);
    const Ergebnis ergebnis = rufeTool({"check", "--only", "desribes", test_plugins::Conforms});
    EXPECT_EQ(ergebnis.ausgang, 2);
    EXPECT_THAT(ergebnis.fehler, HasSubstr("there is no check \"desribes\"; did you mean describes?"));
    EXPECT_EQ(ergebnis.ausgabe, "");
    EXPECT_EQ(rufeTool({"check", "--skip", "nothing-like-it", test_plugins::Conforms}).ausgang, 2);
}

TEST(CheckBefehl, FilesThatCannotBeReadAreNamedAndTheOthersChecked) {
    const Verzeichnis verzeichnis;
    mkfifo(verzeichnis.pfad("libfifo.dylib").c_str(), 0600);
    const std::vector<std::string> unlesbare{verzeichnis.pfad("libfehlt.dylib"), verzeichnis.pfad(),
                                             verzeichnis.pfad("libfifo.dylib")};
    std::vector<std::string> argumente{"check", "--only", "describes"};
    argumente.insert(argumente.end(), unlesbare.begin(), unlesbare.end());
    argumente.push_back(test_plugins::Conforms);
    const Ergebnis ergebnis = rufeTool(argumente);
    EXPECT_EQ(ergebnis.ausgang, 3);
    EXPECT_EQ(ergebnis.ausgabe,
              "4/4 " + std::string(test_plugins::Conforms) +
                  ": passed\n  passed     describes\n  1 passed\n\n4 files: 1 passed, 3 unreadable\n");
    for (const std::string& pfad : unlesbare)
        EXPECT_THAT(ergebnis.fehler, HasSubstr("orvoplugin: " + pfad + ": cannot be read: "));
    int ausgang = 0;
    const nlohmann::json json = pruefeAlsJson({"--only", "describes", unlesbare[0]}, ausgang);
    EXPECT_EQ(ausgang, 3);
    EXPECT_EQ(json.at("files").at(0).at("error"), "No such file or directory");
    EXPECT_EQ(json.at("files").at(0).at("conformant"), false);
}

TEST(CheckBefehl, TheExitCodeIsThatOfTheWorst) {
    const Pruefplugin gut(test_plugins::Conforms), schlecht(test_plugins::Conforms, "beschreiben ablehnung"),
        absturz(test_plugins::Conforms, "beschreiben absturz"),
        haengt(test_plugins::Conforms, "beschreiben haenge");
    const std::vector<std::string> anfang{"check",     "--quiet", "--only",  "describes",
                                          "--timeout", "2",       gut.pfad()};
    const auto ausgang = [&](std::initializer_list<std::string> weitere) {
        std::vector<std::string> argumente = anfang;
        argumente.insert(argumente.end(), weitere);
        return rufeTool(argumente).ausgang;
    };
    EXPECT_EQ(ausgang({}), 0);
    EXPECT_EQ(ausgang({schlecht.pfad()}), 1);
    EXPECT_EQ(ausgang({schlecht.pfad(), "/gibt/es/nicht"}), 3);
    EXPECT_EQ(ausgang({absturz.pfad(), "/gibt/es/nicht"}), 4);
    EXPECT_EQ(ausgang({haengt.pfad(), schlecht.pfad()}), 4);
}

TEST(CheckBefehl, JsonCountsTheResultsAndSaysWhetherAFileConforms) {
    const Pruefplugin gut(test_plugins::Conforms), schlecht(test_plugins::Conforms, "beschreiben absturz");
    int ausgang = -1;
    const nlohmann::json json = pruefeAlsJson({"--only", kTeil, gut.pfad(), schlecht.pfad()}, ausgang);
    EXPECT_EQ(ausgang, 4);
    EXPECT_EQ(json.at("files").at(0).at("file"), gut.pfad());
    EXPECT_EQ(json.at("files").at(0).at("conformant"), true);
    EXPECT_TRUE(json.at("files").at(0).at("error").is_null());
    EXPECT_EQ(json.at("files").at(0).at("totals").at("passed"), 5);
    EXPECT_EQ(json.at("files").at(1).at("conformant"), false);
    EXPECT_EQ(json.at("files").at(1).at("totals").at("crashed"), 1);
    EXPECT_EQ(json.at("files").at(1).at("totals").at("skipped"), 1);
}

TEST(CheckBefehl, BytesOfAPluginNeverBreakTheOutput) {
    const Pruefplugin plugin(test_plugins::Conforms, "beschreiben version \xFC\xFF\x1b[31m",
                             "libpr\xFC"
                             "fling.dylib");
    const Ergebnis text = rufeTool({"check", plugin.pfad(), "--only", "versions"});
    EXPECT_THAT(text.ausgabe,
                AllOf(HasSubstr("libprüfling.dylib"), HasSubstr("üÿ\\x1b[31m"), Not(HasSubstr("\x1b"))));
    EXPECT_THAT(pruefe(plugin.pfad(), {"--only", "versions"}).gruende.at("versions"),
                HasSubstr("üÿ\\x1b[31m"));
}

TEST(CheckBefehl, TheLogOfTheLibraryGoesToStandardError) {
    const Pruefplugin plugin(test_plugins::Conforms);
    const Ergebnis ergebnis =
        rufeTool({"check", "--log", "info", "--only", "describes,no-output", plugin.pfad()});
    EXPECT_EQ(ergebnis.ausgang, 0);
    EXPECT_THAT(ergebnis.fehler, HasSubstr("Kompatibles Plugin gefunden : Type=1,Version=1.2.3"));
    EXPECT_THAT(ergebnis.ausgabe, HasSubstr("2 passed"));
}

TEST(CheckBefehl, AFileWithoutASlashInItsNameIsThatOfTheWorkingDirectory) {
    const Pruefplugin plugin(test_plugins::Conforms);
    const std::string verzeichnis = plugin.pfad().substr(0, plugin.pfad().rfind('/'));
    ASSERT_EQ(chdir(verzeichnis.c_str()), 0);
    const Dateilauf lauf = pruefe("libpruefling.dylib");
    EXPECT_THAT(lauf.auffaellige, IsEmpty());
    EXPECT_EQ(lauf.ergebnisse.at("unloads"), "passed");
}

TEST(CheckBefehl, ADirectoryStandsForThePluginsInIt) {
    const Verzeichnis verzeichnis;
    const std::string eines = verzeichnis.kopiere(test_plugins::Conforms, "plugins/libb.dylib"),
                      anderes = verzeichnis.kopiere(test_plugins::Small, "plugins/unten/liba.dylib");
    verzeichnis.kopiere(test_plugins::Small, "plugins/libzelmak98.dylib"); // blocked
    verzeichnis.schreibe("plugins/LIESMICH.txt", "no plugin");
    const std::vector<std::string> erwartet{eines, anderes};
    for (const std::vector<std::string>& wo : {std::vector<std::string>{"--home", verzeichnis.pfad()},
                                               {"--dir", verzeichnis.pfad("plugins")},
                                               {"--dir", verzeichnis.pfad("plugins"), eines}}) {
        std::vector<std::string> argumente = wo;
        argumente.insert(argumente.end(), {"--only", "describes"});
        int ausgang = -1;
        const nlohmann::json json = pruefeAlsJson(argumente, ausgang);
        EXPECT_EQ(ausgang, 0);
        std::vector<std::string> dateien;
        for (const nlohmann::json& datei : json.at("files"))
            dateien.push_back(datei.at("file"));
        EXPECT_EQ(dateien, erwartet);
    }
    EXPECT_EQ(rufeTool({"check", "--dir", verzeichnis.pfad("gibt-es-nicht")}).ausgang, 3);
    EXPECT_EQ(rufeTool({"check", "--home", verzeichnis.pfad("plugins")}).ausgang, 3);
}

TEST(CheckBefehl, APathFromTheWorkingDirectoryStaysRightWhenThePluginLeavesThat) {
    const Pruefplugin plugin(test_plugins::Conforms, "beschreiben verzeichnis /usr");
    const std::string verzeichnis = plugin.pfad().substr(0, plugin.pfad().rfind('/'));
    ASSERT_EQ(chdir(verzeichnis.c_str()), 0);
    EXPECT_THAT(pruefe("./libpruefling.dylib").auffaellige, ElementsAre(Pair("working-directory", "failed")));
}

TEST(CheckBefehl, APluginThatClosesAllDescriptorsIsARowLikeAnyOther) {
    const Pruefplugin plugin(test_plugins::Conforms, "laden schliesseab 3");
    const Dateilauf lauf = pruefe(plugin.pfad());
    EXPECT_EQ(lauf.ergebnisse.at("describes"), "passed");
    EXPECT_EQ(lauf.ergebnisse.at("use"), "crashed");
    EXPECT_EQ(lauf.ergebnisse.at("unloads"), "skipped");
}

TEST(CheckBefehl, TextsOfAnyLengthAreCutShort) {
    const Pruefplugin plugin(test_plugins::Conforms, "beschreiben version " + std::string(100000, 'x'));
    EXPECT_LT(pruefe(plugin.pfad()).gruende.at("versions").size(), 500U);
}

TEST(CheckBefehl, TextAndJsonOfADirectoryStandAsTheyAre) {
    const Heim heim;
    heim.lege(test_plugins::Conforms, "libgut.dylib");
    heim.lege(test_plugins::Conforms, "libkaputt.dylib", "beschreiben absturz");
    heim.lege(test_plugins::Conforms, "liblaut.dylib",
              "laden ausgabe Gr\xFC\xDF"
              "e");
    heim.verzeichnis.schreibe("plugins/libtext.dylib", "no library");
    // Figures differ by machine. A sanitizer handles memory and crashes differently.
#if !defined(ORVO_ADDRESS_SANITIZER)
    const std::vector<std::string> alle{"check", "--skip", "memory,time,baseline,log-volume"};
    const std::vector<std::string> wenige{"check", "--only", "describes,no-output"};
    EXPECT_EQ(vergleicheMitMuster("check.txt", heim.rufe(alle).ausgabe), "");
    EXPECT_EQ(vergleicheMitMuster("check-some.txt", heim.rufe(wenige).ausgabe), "");
    EXPECT_EQ(heim.rufe(alle).ausgang, 4);
    for (const auto& [name, argumente] :
         {std::pair("check.json", alle), std::pair("check-some.json", wenige)}) {
        std::vector<std::string> mitJson = argumente;
        mitJson.push_back("--json");
        EXPECT_EQ(vergleicheMitMuster(name, heim.rufe(mitJson, kDeutsch).ausgabe), "");
    }
#endif
}

TEST(CheckBefehl, SpeaksGermanToGermansAndEnglishToPrograms) {
    const Pruefplugin plugin(test_plugins::Conforms, "laden umask");
    const std::vector<std::string> argumente{"check", "--only", "umask,description", plugin.pfad()};
    const std::string text = rufeTool(argumente, kDeutsch).ausgabe;
    EXPECT_THAT(text, HasSubstr("\n  übersprungen   description  es gibt keine\n"));
    EXPECT_THAT(text, HasSubstr("\n  durchgefallen  umask        die Maske für neue Dateien: vorher "));
    EXPECT_THAT(text, EndsWith("\n  1 durchgefallen, 1 übersprungen\n"));
    EXPECT_THAT(rufeTool({"check", "--list"}, kDeutsch).ausgabe,
                HasSubstr("  Das Plugin beschreibt sich, und die Bibliothek nimmt es an.\n"));
    for (const char* const format : {"json", "junit", "sarif", "github"}) {
        std::vector<std::string> mitFormat = argumente;
        mitFormat.insert(mitFormat.end(), {"--format", format});
        EXPECT_EQ(rufeTool(mitFormat, kDeutsch).ausgabe, rufeTool(mitFormat).ausgabe) << format;
    }
}

TEST(CheckBefehl, TheListStandsAsItIs) {
    EXPECT_EQ(vergleicheMitMuster("check-list.txt", rufeTool({"check", "--list"}).ausgabe), "");
    EXPECT_EQ(vergleicheMitMuster(
                  "check-list.json",
                  rufeTool({"check", "--list", "--json", "--only", "loads,describes"}, kDeutsch).ausgabe),
              "");
}
