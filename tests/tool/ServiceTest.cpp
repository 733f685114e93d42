// Plugins that hold keys and whose services cannot be had: no command may call them served.

#include "Heim.h"

#include "TestPlugins.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <iterator>

using namespace testing;
using Json = nlohmann::json;

namespace {

Json alsJson(const Ergebnis& ergebnis) { return Json::parse(ergebnis.ausgabe); }

struct Fall {
    const char* name;
    const char* auftraege; ///< of the plugin DoesHarm
    const char* zustand;   ///< of its service
    const char* schritt;   ///< in which its code ended the process; empty if it did not
    int ausgang;           ///< of a command that makes the service
};

std::ostream& operator<<(std::ostream& out, const Fall& fall) { return out << fall.name; }

/// A bad plugin before a good runner-up of a lower version.
class Services : public TestWithParam<Fall> {
protected:
    void lege(const std::string& auftraege) const {
        heim_.lege(test_plugins::DoesHarm, "libschlecht.dylib", auftraege + "version 2\ncheck 10\n");
        heim_.lege(test_plugins::DescribedByFile, "libgut.dylib", "produktversion 1\ncheck 10 2009\n");
        heim_.verzeichnis.schreibe("verlangt", "CHECK 10 2009\n");
    }
    Ergebnis rufe(std::vector<std::string> argumente) const {
        argumente.insert(argumente.end(), {"--json", "--timeout", "5"});
        return heim_.rufe(argumente);
    }

    const Heim heim_;
};

constexpr char kFehlt[] = "factory gibtEsNicht\n";

} // namespace

TEST_P(Services, WhyMakesTheServiceAndSaysWhatCame) {
    lege(GetParam().auftraege);
    const Ergebnis ergebnis = rufe({"why", "CHECK", "10", "2009"});
    EXPECT_EQ(ergebnis.ausgang, GetParam().ausgang) << ergebnis.ausgabe;
    const Json dokument = alsJson(ergebnis);
    const Json& service = dokument["answer"]["service"];
    EXPECT_EQ(service["state"], GetParam().zustand);
    EXPECT_EQ(service["step"], *GetParam().schritt ? Json(GetParam().schritt) : Json());
    EXPECT_EQ(dokument["answer"]["plugin"]["file"], "libschlecht.dylib");
    EXPECT_FALSE(dokument["steps"].back()["ok"].get<bool>());
    EXPECT_THAT(dokument["conclusion"]["code"].get<std::string>(), AnyOf("no_service", "no_factory"));
    EXPECT_THAT(dokument["conclusion"]["advice"].get<std::string>(),
                Not(HasSubstr("Nothing needs to be done")));
}

TEST_P(Services, WhySaysItOfTheFileToo) {
    lege(GetParam().auftraege);
    const Ergebnis ergebnis = rufe({"why", "schlecht"});
    EXPECT_EQ(ergebnis.ausgang, GetParam().ausgang) << ergebnis.ausgabe;
    EXPECT_THAT(alsJson(ergebnis)["conclusion"]["code"].get<std::string>(),
                AnyOf("no_service", "no_factory"));
}

TEST_P(Services, ARequiredCellIsMissingOnceServicesAreMade) {
    lege(GetParam().auftraege);
    const Ergebnis ergebnis = rufe({"coverage", "--probe", "--require", heim_.verzeichnis.pfad("verlangt")});
    EXPECT_EQ(ergebnis.ausgang, 5) << ergebnis.ausgabe;
    const Json dokument = alsJson(ergebnis);
    EXPECT_EQ(dokument["required"]["missing"], 1);
    EXPECT_EQ(dokument["required"]["cells"][0]["served"], false);
    EXPECT_EQ(dokument["required"]["cells"][0]["service"]["state"], GetParam().zustand);
    EXPECT_EQ(dokument["types"][0]["rows"][0]["cells"][0]["answer"], "broken")
        << "the runner-up does not count";
    EXPECT_EQ(dokument["types"][0]["totals"]["served"], 0);
    EXPECT_EQ(dokument["types"][0]["totals"]["broken"], 1);
    ASSERT_EQ(dokument["broken"].size(), 1u);
    EXPECT_EQ(dokument["broken"][0]["plugin"]["file"], "libschlecht.dylib");
}

TEST_P(Services, FindSaysSoWhenItMakesThem) {
    lege(GetParam().auftraege);
    const Ergebnis ergebnis = rufe({"find", "CHECK", "10", "2009", "--probe"});
    EXPECT_EQ(ergebnis.ausgang, GetParam().ausgang);
    EXPECT_EQ(alsJson(ergebnis)["answers"][0]["service"]["state"], GetParam().zustand);
}

INSTANTIATE_TEST_SUITE_P(
    Kaputt, Services,
    Values(Fall{"notExported", kFehlt, "not_exported", "", 1}, Fall{"null", "", "null", "", 1},
           Fall{"crash", "tu factory segv\n", "crashed", "factory", 4},
           Fall{"exit", "tu factory exit 3\n", "exited", "factory", 4},
           Fall{"crashWhenGivenBack", "diene\ntu rueckgabe segv\n", "crashed", "release", 4},
           Fall{"crashInTheHook", "diene\ntu onload segv\n", "crashed", "hook", 4},
           Fall{"staticObject", "statisch\n", "static_object", "", 1}),
    [](const auto& fall) { return fall.param.name; });

TEST_F(Services, AFactoryThatIsNotExportedCountsAsUnservedWithoutRunningAnything) {
    lege(kFehlt);
    const Ergebnis gefunden = rufe({"find", "CHECK", "10", "2009"});
    EXPECT_EQ(gefunden.ausgang, 1);
    EXPECT_EQ(alsJson(gefunden)["answers"][0]["service"]["state"], "not_exported");
    EXPECT_THAT(heim_.rufe({"find", "CHECK", "10", "2009"}).ausgabe, HasSubstr("no service: "));

    const Ergebnis deckung = rufe({"coverage", "--require", heim_.verzeichnis.pfad("verlangt")});
    EXPECT_EQ(deckung.ausgang, 5);
    EXPECT_EQ(alsJson(deckung)["required"]["missing"], 1);
    EXPECT_EQ(rufe({"coverage"}).ausgang, 1);
    const std::string text = heim_.rufe({"coverage"}).ausgabe;
    EXPECT_THAT(text, AllOf(HasSubstr("!"), HasSubstr("NO SERVICE"), HasSubstr("gibtEsNicht")));
}

TEST_F(Services, WhatRunsNoPluginCodeMakesNoServices) {
    EXPECT_EQ(heim_.rufe({"coverage", "--described", "--probe"}).ausgang, 2);
    EXPECT_EQ(heim_.rufe({"find", "CHECK", "--probe", "--described"}).ausgang, 2);
}

TEST_F(Services, ThePageShowsItAsAGapWithTheNameOfThePlugin) {
    lege(kFehlt);
    const std::string seite = heim_.verzeichnis.pfad("seite.html");
    EXPECT_EQ(heim_.rufe({"coverage", "--html", seite}).ausgang, 1);
    std::ifstream datei(seite);
    const std::string html((std::istreambuf_iterator<char>(datei)), {});
    EXPECT_THAT(html, AllOf(HasSubstr("A✗"), HasSubstr("schlecht 2: no service can be had")));
}

TEST_F(Services, WithoutAskingForItFindAndCoverageRunNoFactory) {
    lege("tu factory segv\n");
    const Ergebnis gefunden = rufe({"find", "CHECK", "10", "2009"});
    EXPECT_EQ(gefunden.ausgang, 0);
    EXPECT_EQ(alsJson(gefunden)["answers"][0]["service"]["state"], "exported");
    EXPECT_EQ(rufe({"coverage", "--require", heim_.verzeichnis.pfad("verlangt")}).ausgang, 0);
}

TEST_F(Services, AGoodServiceIsMadeAndNothingNeedsToBeDone) {
    lege("diene\n");
    const Ergebnis ergebnis = rufe({"why", "CHECK", "10", "2009"});
    EXPECT_EQ(ergebnis.ausgang, 0) << ergebnis.ausgabe;
    EXPECT_EQ(alsJson(ergebnis)["answer"]["service"]["state"], "made");
    EXPECT_EQ(alsJson(ergebnis)["conclusion"]["code"], "answered");
    EXPECT_EQ(rufe({"coverage", "--probe", "--require", heim_.verzeichnis.pfad("verlangt")}).ausgang, 0);
    EXPECT_EQ(rufe({"why", "schlecht"}).ausgang, 0);
}

TEST_F(Services, AnExceptionAndAnObjectOfAnotherInterfaceAreToldApart) {
    heim_.lege(test_plugins::DescribedByFile, "liba.dylib",
               "factory werfenderService\ncheck 10 2009\nfactory falscherService\ncheck 11 2009\n");
    EXPECT_EQ(alsJson(rufe({"why", "CHECK", "10", "2009"}))["answer"]["service"]["state"], "threw");
    EXPECT_EQ(alsJson(rufe({"why", "CHECK", "11", "2009"}))["answer"]["service"]["state"], "other_interface");
    EXPECT_EQ(rufe({"why", "CHECK", "11", "2009"}).ausgang, 1);
}

TEST_F(Services, ACrashCostsTheOtherServicesOfThePluginNothing) {
    heim_.lege(
        test_plugins::DoesHarm, "liba.dylib",
        "diene\ntu factory2 segv\ncheck 10\nfactory zweiter\ncheck 11\nfactory orvo_plugin_get_check_service\n"
        "check 12\n");
    const Json dokument = alsJson(rufe({"coverage", "--probe"}));
    ASSERT_EQ(dokument["broken"].size(), 1u) << dokument["broken"];
    EXPECT_EQ(dokument["broken"][0]["factory"], "zweiter");
    EXPECT_EQ(dokument["types"][0]["totals"]["served"], 2);
}

TEST_F(Services, AServiceThatHangsIsGivenUpAfterTheTimeLimit) {
    lege("tu factory haenge\n");
    const Ergebnis ergebnis = heim_.rufe({"why", "CHECK", "10", "2009", "--json", "--timeout", "0.5"});
    EXPECT_EQ(ergebnis.ausgang, 4);
    EXPECT_EQ(alsJson(ergebnis)["answer"]["service"]["state"], "timed_out");
}
