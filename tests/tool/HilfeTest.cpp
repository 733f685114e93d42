// What the tool says to somebody who mistyped, and to somebody who asks for help.

#include "Heim.h"

#include "TestPlugins.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace testing;

namespace {

class Hilfe : public Test {
protected:
    Hilfe() {
        heim_.lege(test_plugins::DescribedByFile, "liblohnsteuer.dylib",
                   "check Eigenart 2009\ncheck LSTB 2009\n");
    }

    /// The message about a wrong command line, with the directory as "@HOME@".
    std::string fehler(const std::vector<std::string>& argumente, int ausgang = 2) {
        const Ergebnis ergebnis = rufeTool(argumente);
        EXPECT_EQ(ergebnis.ausgang, ausgang);
        EXPECT_THAT(ergebnis.ausgabe, IsEmpty());
        return ersetze(ergebnis.fehler, heim_.verzeichnis.pfad(), "@HOME@");
    }

    const Heim heim_;
};

} // namespace

TEST_F(Hilfe, AMistypedCommandOrOptionIsRecognised) {
    EXPECT_THAT(fehler({"lsit"}), StartsWith("orvoplugin: there is no command lsit: did you mean list?\n"));
    EXPECT_THAT(fehler({"lsit", "--help"}), HasSubstr("did you mean list?"));
    EXPECT_THAT(fehler({"paint"}), StartsWith("orvoplugin: there is no command paint\n"));
    EXPECT_EQ(fehler({"list", "--jsn"}), "orvoplugin: there is no option --jsn: did you mean --json?\n"
                                         "Try 'orvoplugin list --help'.\n");
}

TEST_F(Hilfe, HelpIsAlsoACommandAndVAnOption) {
    EXPECT_EQ(rufeTool({"help"}).ausgabe, rufeTool({"--help"}).ausgabe);
    EXPECT_EQ(rufeTool({"help", "find"}).ausgabe, rufeTool({"find", "--help"}).ausgabe);
    EXPECT_THAT(rufeTool({"help", "find"}).ausgabe, HasSubstr("Usage: orvoplugin find"));
    EXPECT_THAT(fehler({"help", "fnid"}), HasSubstr("did you mean find?"));
    EXPECT_EQ(rufeTool({"-V"}).ausgabe, rufeTool({"--version"}).ausgabe);
}

TEST_F(Hilfe, EachCommandHasItsOwnExamplesAndOneListOfExitCodes) {
    for (const std::string befehl : {"list", "find", "check", "verify"}) {
        const std::string hilfe = rufeTool({befehl, "--help"}).ausgabe;
        EXPECT_EQ(hilfe.find("Exit codes:"), hilfe.rfind("Exit codes:")) << befehl;
        EXPECT_THAT(hilfe, HasSubstr("Examples:\n  orvoplugin " + befehl + " "));
    }
}

TEST_F(Hilfe, ADirectoryGetsItsOption) {
    const std::string home = heim_.verzeichnis.pfad(), dir = heim_.plugins();
    EXPECT_THAT(fehler({home}), HasSubstr("did you mean: orvoplugin list --home @HOME@\n"));
    EXPECT_THAT(fehler({dir}), HasSubstr("did you mean: orvoplugin list --dir @HOME@/plugins\n"));
    EXPECT_THAT(fehler({"list", home}), HasSubstr("did you mean --home @HOME@?\n"));
    EXPECT_THAT(fehler({"list", dir}), HasSubstr("did you mean --dir @HOME@/plugins?\n"));
    EXPECT_THAT(fehler({"diff", dir, dir, dir}), Not(HasSubstr("did you mean")));
    EXPECT_THAT(fehler({dir + "/liblohnsteuer.dylib"}), HasSubstr("did you mean: orvoplugin show @HOME@"));
}

TEST_F(Hilfe, AMissingDirectoryNamesTheOptions) {
    EXPECT_EQ(
        fehler({"list", "--home", heim_.plugins()}, 3),
        "orvoplugin: @HOME@/plugins/plugins: No such file or directory; --home names the directory above "
        "\"plugins\": did you mean --dir @HOME@/plugins?\n");
    EXPECT_THAT(fehler({"check", "--dir", "/gibt/es/nicht"}, 3),
                HasSubstr("--dir names the plugin directory"));
}

TEST_F(Hilfe, AnEmptyDirectoryIsSaidToBeEmpty) {
    const std::string leer = heim_.verzeichnis.pfad() + "/leer";
    std::filesystem::create_directory(leer);
    const auto sagtEs = HasSubstr("there is no plugin below " + leer + "; plugins end in .dylib; --dir");
    for (const std::vector<std::string>& befehl :
         {std::vector<std::string>{"list"}, {"coverage"}, {"find", "check"}, {"list", "--json"}}) {
        std::vector<std::string> worte = befehl;
        worte.insert(worte.end(), {"--dir", leer});
        EXPECT_THAT(rufeTool(worte).fehler, sagtEs) << befehl[0];
        EXPECT_THAT(heim_.rufe(befehl).fehler, IsEmpty()) << befehl[0];
        worte.push_back("--quiet");
        EXPECT_THAT(rufeTool(worte).fehler, IsEmpty()) << befehl[0];
    }
}

TEST_F(Hilfe, AFileIsFoundByHalfItsNameOrASimilarOneNamed) {
    EXPECT_EQ(heim_.rufe({"why", "liblohnsteuer"}).ausgang, 0);
    EXPECT_EQ(heim_.rufe({"show", "liblohnsteuer"}).ausgang, 0);
    for (const char* const name : {"liblohnsteuer.so", "libLohnsteur.dylib", "lohnstuer"}) {
        EXPECT_THAT(heim_.rufe({"why", name}).ausgabe, HasSubstr("did you mean liblohnsteuer.dylib?"))
            << name;
        EXPECT_THAT(heim_.rufe({"show", name}).fehler, HasSubstr("did you mean liblohnsteuer.dylib?"))
            << name;
    }
    EXPECT_THAT(heim_.rufe({"why", "ganzanders"}).ausgabe, Not(HasSubstr("did you mean")));
    heim_.verzeichnis.schreibe("plugins/liblohnsteuer.so", "");
    EXPECT_THAT(heim_.rufe({"why", "liblohnsteuer.so"}).ausgabe, HasSubstr("end in \".dylib\""));
}

TEST_F(Hilfe, WhyTakesAPathWithoutADirectory) {
    const Ergebnis ergebnis = rufeTool({"why", heim_.plugins() + "/liblohnsteuer.dylib"});
    EXPECT_EQ(ergebnis.ausgang, 0) << ergebnis.fehler;
    EXPECT_THAT(ergebnis.ausgabe, HasSubstr("looked at without other plugins"));
    EXPECT_THAT(ergebnis.ausgabe, HasSubstr("answers for all that it offers"));
    EXPECT_THAT(ergebnis.ausgabe, Not(HasSubstr("walk")));
    EXPECT_THAT(fehler({"why", "/gibt/es/nicht.dylib"}, 3), HasSubstr("No such file"));
}

TEST_F(Hilfe, AKindThatFitsSeveralOrNoneNamesThem) {
    const std::string mehrere = fehler({"find", "DATEN"});
    EXPECT_THAT(mehrere, AllOf(HasSubstr("FEHLER_TEXT_DATEN"), HasSubstr("FINANZAMTS_DATEN"),
                               Not(HasSubstr("XPATH_MAPPING"))));
    EXPECT_THAT(fehler({"find", "chekc"}),
                AllOf(HasSubstr("did you mean CHECK?"), HasSubstr("XPATH_MAPPING")));
}

TEST_F(Hilfe, AMistypedSubCaseTypeIsRecognised) {
    const auto antwort = [&](const char* typ) { return heim_.rufe({"find", "CHECK", typ, "2009"}).ausgabe; };
    EXPECT_EQ(antwort("LTSB"), "nobody answers: did you mean LSTB?\n");         // served and predefined
    EXPECT_EQ(antwort("eigenrat"), "nobody answers: did you mean Eigenart?\n"); // served
    EXPECT_EQ(antwort("Kontoabfarge"), "nobody answers: did you mean Kontoabfrage?\n"); // predefined
    EXPECT_EQ(antwort("Kontoabfrage"), "nobody answers\n");
    EXPECT_EQ(antwort("11"), "nobody answers\n");
}

TEST_F(Hilfe, AMistypedLineOfTheRequiredCellsIsRecognised) {
    const std::string soll = heim_.verzeichnis.schreibe("soll.txt", "CHECK LSTB 2009\nCHECK LTSB 2009\n");
    const Ergebnis ergebnis = heim_.rufe({"coverage", "--require", soll});
    EXPECT_EQ(ergebnis.ausgang, 5);
    EXPECT_THAT(ergebnis.ausgabe, HasSubstr("@HOME@/soll.txt:2: did you mean LSTB?\n"));
    EXPECT_THAT(ergebnis.ausgabe, Not(HasSubstr("soll.txt:1")));
    heim_.verzeichnis.schreibe("soll.txt", "\nCHEKC LSTB 2009\n");
    EXPECT_THAT(heim_.rufe({"coverage", "--require", soll}).fehler,
                AllOf(HasSubstr("@HOME@/soll.txt:2: "), HasSubstr("did you mean CHECK?")));
}

TEST_F(Hilfe, ALongTextOfAPluginPadsNoRow) {
    heim_.lege(test_plugins::DescribedByFile, "liblang.dylib",
               "produktversion " + std::string(500, '7') + "\ncheck 10 2009\n");
    const std::string text = heim_.rufe({"list"}).ausgabe;
    const std::string zeile = text.substr(text.find("loaded   liblohnsteuer.dylib"));
    EXPECT_LT(zeile.find('\n'), 150U) << text;
    EXPECT_THAT(text, HasSubstr("7…7"));
    EXPECT_THAT(heim_.rufe({"list", "--json"}).ausgabe, HasSubstr(std::string(500, '7')));
}
