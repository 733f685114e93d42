#include "Aufruf.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

TEST(Programm, ShowsHelpOnStandardOutput) {
    const Ergebnis ergebnis = rufeTool({"--help"});
    EXPECT_EQ(ergebnis.ausgang, 0);
    EXPECT_THAT(ergebnis.ausgabe, HasSubstr("Usage: orvoplugin"));
    EXPECT_THAT(ergebnis.ausgabe, HasSubstr("Exit codes: 0 fine; 1 findings"));
    EXPECT_THAT(ergebnis.fehler, IsEmpty());
}

TEST(Programm, ShowsOfACommandThoseOptionsOnlyThatItTakes) {
    for (const char* const option : {"--home DIR", "--dir DIR"}) {
        EXPECT_THAT(rufeTool({"coverage", "--help"}).ausgabe, HasSubstr(option));
        EXPECT_THAT(rufeTool({"diff", "--help"}).ausgabe, Not(HasSubstr(option)));
    }
    EXPECT_THAT(rufeTool({"diff", "--help"}).ausgabe, HasSubstr("--resident LIST"));
    for (const char* const option : {"--home", "--dir"}) {
        for (const Ergebnis& ergebnis :
             {rufeTool({"diff", "a", "b", option, "c"}), rufeTool({option, "c", "diff", "a", "b"})}) {
            EXPECT_EQ(ergebnis.ausgang, 2) << option;
            EXPECT_THAT(ergebnis.fehler, HasSubstr("neither --home nor --dir"));
        }
    }
}

TEST(Programm, ShowsItsVersion) {
    const Ergebnis ergebnis = rufeTool({"--version"});
    EXPECT_EQ(ergebnis.ausgang, 0);
    EXPECT_THAT(ergebnis.ausgabe, StartsWith("orvoplugin 17.4.6"));
}

TEST(Programm, RefusesAMissingCommandAsWrongUsage) {
    const Ergebnis ergebnis = rufeTool({});
    EXPECT_EQ(ergebnis.ausgang, 2);
    EXPECT_THAT(ergebnis.ausgabe, IsEmpty());
    EXPECT_THAT(ergebnis.fehler, StartsWith("orvoplugin: A subcommand is required"));
}

TEST(Programm, SpeaksTheUsersLanguage) {
    const Ergebnis hilfe = rufeTool({"find", "--help"}, kDeutsch);
    EXPECT_THAT(hilfe.ausgabe,
                HasSubstr("Aufruf: orvoplugin find [OPTIONEN] ART [UNTERFALLART] [ZEITRAUM]\n"));
    EXPECT_EQ(rufeTool({"find"}, kDeutsch).fehler,
              "orvoplugin: TYPE fehlt\nHilfe gibt 'orvoplugin find --help'.\n");
    EXPECT_EQ(
        rufeTool({"list", "--log", "laut"}, kDeutsch).fehler,
        "orvoplugin: --log: laut ist keines von {debug,info,warn,error}\nHilfe gibt 'orvoplugin list --help'.\n");
    EXPECT_EQ(rufeTool({"find"}, {"LC_ALL=xx_YY.UTF-8"}).fehler,
              "orvoplugin: TYPE is required\nTry 'orvoplugin find --help'.\n");
}

TEST(Programm, SpeaksGermanAlsoWhereTheSystemHasNoGermanLocale) {
    const Ergebnis ohne = rufe("/usr/bin/env", {"-i", "LANG=de_AT.UTF-8", ORVO_TOOL, "find"});
    EXPECT_THAT(ohne.fehler, StartsWith("orvoplugin: TYPE fehlt\n"));
}

TEST(Programm, RefusesAnUnknownCommandAsWrongUsage) {
    const Ergebnis ergebnis = rufeTool({"paint"});
    EXPECT_EQ(ergebnis.ausgang, 2);
    EXPECT_THAT(ergebnis.ausgabe, IsEmpty());
    EXPECT_THAT(ergebnis.fehler, StartsWith("orvoplugin: "));
}

TEST(Programm, SaysThatHelpAndVersionCannotBeWritten) {
    for (const char* const wunsch : {"--help", "--version"}) {
        const Ergebnis ergebnis = rufe("/bin/sh", {"-c", "\"$0\" $1 >/dev/full", ORVO_TOOL, wunsch});
        EXPECT_EQ(ergebnis.ausgang, 3) << wunsch;
        EXPECT_EQ(ergebnis.fehler, "orvoplugin: cannot write the results: No space left on device\n");
    }
}

TEST(Programm, RefusesAnEmptyValueAsWrongUsage) { // which an unset variable in a script makes
    for (const char* const option : {"--home", "--dir", "--require", "--html", "--type"}) {
        const Ergebnis ergebnis = rufeTool({"coverage", option, ""});
        EXPECT_EQ(ergebnis.ausgang, 2) << option;
        EXPECT_THAT(ergebnis.fehler, StartsWith(std::string("orvoplugin: ") + option + ": "));
    }
    for (const char* const befehl : {"find", "why"})
        for (const auto& [unterfallart, zeitraum] : {std::pair("", "2009"), std::pair("LSTB", "")}) {
            const Ergebnis ergebnis = rufeTool({befehl, "check", unterfallart, zeitraum});
            EXPECT_EQ(ergebnis.ausgang, 2) << befehl << unterfallart << zeitraum;
        }
}
