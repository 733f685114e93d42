// Plugins with descriptions in their files: commands that go by these, and those that compare.

#include "Heim.h"

#include "TestPlugins.h"

#include <orvoplugin/beschreibung/Beschreibung.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <fstream>

using namespace testing;
using Json = nlohmann::json;

namespace {

/// A home directory with plugins that say one thing in their files, and may say another when asked.
class Beschriebene : public Test {
protected:
    /// Has it described under the first orders; then it has the others.
    std::string lege(const char* plugin, const std::string& name, const std::string& beschrieben,
                     const std::string& gefragt) const {
        const std::string datei = heim.lege(plugin, name, beschrieben);
        EXPECT_EQ(rufeTool({"describe", "--quiet", datei}).ausgang, 0);
        heim.verzeichnis.schreibe("plugins/" + name + ".txt", gefragt);
        return datei;
    }
    /// Changes a byte of the description.
    static void beschaedige(const std::string& datei) {
        const Beschreibungsfund fund = liesBeschreibung(datei);
        std::fstream strom(datei, std::ios::in | std::ios::out | std::ios::binary);
        strom.seekp(static_cast<std::streamoff>(fund.stelle + fund.bytes.size() / 2)).put('\xFF');
        ASSERT_TRUE(strom.flush());
    }
    /// Code of each of these ends the process when it is opened; one has no description, and one a damaged one.
    void legeGefaehrliche() const {
        lege(test_plugins::HasRoom, "liba.dylib", "beschreiben version 2", "oeffnen absturz");
        lege(test_plugins::DescribedByFile, "libb.dylib", "produktversion 3\ncheck 10 2009,2012\n",
             "unbekannt");
        heim.lege(test_plugins::HasRoom, "libc.dylib", "oeffnen absturz");
        beschaedige(lege(test_plugins::HasRoom, "libd.dylib", "", "oeffnen absturz"));
    }
    /// What a check of that file says: its result and reason.
    static std::pair<std::string, std::string> pruefe(const std::string& datei) {
        const Ergebnis ergebnis = rufeTool({"check", "--json", "--only", "description", datei});
        const Json pruefung = Json::parse(ergebnis.ausgabe)["files"][0]["checks"][0];
        return {pruefung["result"], pruefung["reason"]};
    }

    const Heim heim;
};

} // namespace

TEST_F(Beschriebene, ListGoesByTheDescriptionsAndRunsNoCode) {
    legeGefaehrliche();
    EXPECT_EQ(heim.rufe({"list"}).ausgang, 4) << "their code does end the process";
    for (const auto& [name, argumente] :
         {std::pair<std::string, std::vector<std::string>>("list-described.txt", {"list", "--described"}),
          {"list-described.json", {"list", "--described", "--json"}}}) {
        const Ergebnis ergebnis = heim.rufe(argumente);
        EXPECT_EQ(ergebnis.ausgang, 1);
        EXPECT_EQ(ergebnis.fehler, "");
        EXPECT_EQ(vergleicheMitMuster(name, ergebnis.ausgabe), "");
    }
}

TEST_F(Beschriebene, ADirectoryOfDescribedPluginsHasNoFindings) {
    lege(test_plugins::HasRoom, "liba.dylib", "beschreiben version 2", "oeffnen absturz");
    EXPECT_EQ(heim.rufe({"list", "--described"}).ausgang, 0);
    heim.lege(test_plugins::HasRoom, "libb.dylib", "oeffnen absturz");
    EXPECT_EQ(heim.rufe({"list", "--described"}).ausgang, 1);
}

TEST_F(Beschriebene, ShowShowsThePluginOfTheDescription) {
    legeGefaehrliche();
    const Ergebnis a = heim.rufe({"show", "a", "--described"});
    EXPECT_EQ(a.ausgang, 0);
    EXPECT_THAT(a.ausgabe, AllOf(HasSubstr("beimLaden"), HasSubstr("serves LSTB"), HasSubstr("loaded")));
    const Ergebnis daneben = rufeTool({"show", heim.plugins() + "/liba.dylib", "--described"});
    EXPECT_EQ(daneben.ausgang, 0) << daneben.fehler;
    const Ergebnis c = heim.rufe({"show", "c", "--described"});
    EXPECT_EQ(c.ausgang, 1);
    EXPECT_THAT(c.ausgabe, HasSubstr("not_described"));
}

TEST_F(Beschriebene, FindNamesTheFilesThatMightAnswerToo) {
    legeGefaehrliche();
    const Ergebnis ergebnis = heim.rufe({"find", "check", "10", "2009", "--described", "--json"});
    EXPECT_EQ(ergebnis.ausgang, 0);
    const Json dokument = Json::parse(ergebnis.ausgabe);
    EXPECT_EQ(dokument["answers"][0]["plugin"]["file"], "libb.dylib");
    EXPECT_EQ(dokument["not_loaded"].size(), 2U);
    EXPECT_EQ(dokument["not_loaded"][0]["state"], "not_described");
}

TEST_F(Beschriebene, CoverageAndDiffGoByTheDescriptions) {
    legeGefaehrliche();
    const Ergebnis deckung = heim.rufe({"coverage", "--described"});
    EXPECT_EQ(deckung.ausgang, 1);
    EXPECT_THAT(deckung.ausgabe, HasSubstr("2012"));
    const Heim anderes;
    anderes.lege((heim.plugins() + "/libb.dylib").c_str(), "libb.dylib", "unbekannt");
    const Ergebnis vergleich = rufeTool({"diff", "--described", "--json", heim.plugins(), anderes.plugins()});
    EXPECT_EQ(vergleich.ausgang, 1) << vergleich.fehler;
    const Json unterschiede = Json::parse(vergleich.ausgabe)["keys"];
    EXPECT_EQ(unterschiede.size(), 2u) << "what only liba.dylib offers";
    for (const Json& verlorener : unterschiede)
        EXPECT_EQ(verlorener["change"], "lost");
    EXPECT_EQ(rufeTool({"diff", "--described", heim.plugins(), heim.plugins()}).ausgang, 0);
    EXPECT_EQ(rufeTool({"diff", "--described", "--merge", heim.plugins(), anderes.plugins()}).ausgang, 0);
}

TEST_F(Beschriebene, OtherCommandsDoNotTakeTheOption) {
    for (const char* const befehl : {"why", "check", "describe"})
        EXPECT_EQ(rufeTool({befehl, "--described", "liba.dylib"}).ausgang, 2) << befehl;
}

TEST_F(Beschriebene, TheCheckComparesTheDescriptionWithThePlugin) {
    EXPECT_THAT(pruefe(test_plugins::Conforms), Pair("skipped", "there is none"));
    EXPECT_THAT(pruefe(test_plugins::HasRoom), Pair("skipped", "there is none"));
    const std::string gut = lege(test_plugins::HasRoom, "liba.dylib", "", "");
    EXPECT_THAT(pruefe(gut), Pair("passed", ""));
    EXPECT_EQ(rufeTool({"check", "--strict", "--skip", "memory", gut}).ausgang, 0);

    const std::string falsch = lege(test_plugins::HasRoom, "libb.dylib", "", "beschreiben version 9");
    EXPECT_THAT(pruefe(falsch), Pair("failed", "it is not: in the file product version \"1.2.3\", asked "
                                               "product version \"9\""));
    EXPECT_EQ(rufeTool({"check", "--only", "description", falsch}).ausgang, 1);

    const std::string kaputt = lege(test_plugins::HasRoom, "libc.dylib", "", "");
    beschaedige(kaputt);
    EXPECT_THAT(pruefe(kaputt), Pair("warning", "clients ignore it: besch\u00E4digt"));
    EXPECT_EQ(rufeTool({"check", "--only", "description", kaputt}).ausgang, 0);
    EXPECT_EQ(rufeTool({"check", "--strict", "--only", "description", kaputt}).ausgang, 1);
}

TEST_F(Beschriebene, WhyConfirmsADescriptionThatIsTrue) {
    lege(test_plugins::DescribedByFile, "liba.dylib", "check 10 2009\n", "check 10 2009\n");
    const Ergebnis datei = heim.rufe({"why", "a"});
    EXPECT_EQ(datei.ausgang, 0);
    EXPECT_THAT(datei.ausgabe, HasSubstr("yes  the description in it is what the plugin says\n"));
    const Ergebnis schluessel = heim.rufe({"why", "check", "10", "2009"});
    EXPECT_EQ(schluessel.ausgang, 0);
    EXPECT_THAT(schluessel.ausgabe, Not(HasSubstr("description")));
}

TEST_F(Beschriebene, WhyNamesTheKeysThatOnlyADescriptionHas) {
    lege(test_plugins::DescribedByFile, "liba.dylib", "produktversion 2\ncheck 10 2009,2010\n",
         "produktversion 1\ncheck 10 2010,2011\n");
    heim.lege(test_plugins::DescribedByFile, "libb.dylib", "produktversion 1.5\ncheck 10 2010\n");
    for (const auto& [name, argumente] :
         {std::pair<std::string, std::vector<std::string>>("why-described.txt", {"why", "a"}),
          {"why-described.json", {"why", "a", "--json"}}}) {
        const Ergebnis ergebnis = heim.rufe(argumente);
        EXPECT_EQ(ergebnis.ausgang, 1);
        EXPECT_EQ(vergleicheMitMuster(name, ergebnis.ausgabe), "");
    }
}

TEST_F(Beschriebene, WhySaysThatALookUpIsAnsweredByADescription) {
    lege(test_plugins::DescribedByFile, "liba.dylib", "produktversion 2\ncheck 10 2009,2010\n",
         "produktversion 1\ncheck 10 2010,2011\n");
    heim.lege(test_plugins::DescribedByFile, "libb.dylib", "produktversion 1.5\ncheck 10 2010\n");
    constexpr char kSchritt[] = "no   by the descriptions in the files, ";
    for (const auto& [jahr, wer] : {std::pair("2009", "liba.dylib (2) answers;"),
                                    {"2010", "liba.dylib (2) answers;"},
                                    {"2011", "nobody answers;"}}) {
        const Ergebnis ergebnis = heim.rufe({"why", "check", "10", jahr});
        EXPECT_EQ(ergebnis.ausgang, 1) << jahr;
        EXPECT_THAT(ergebnis.ausgabe,
                    HasSubstr(std::string(kSchritt) + wer + " the plugins themselves say otherwise\n"));
    }
    EXPECT_EQ(heim.rufe({"why", "check", "10", "1999"}).ausgabe.find("description"), std::string::npos);
}

TEST_F(Beschriebene, WhyFindsADescriptionOfAPluginThatIsRefused) {
    lege(test_plugins::DescribedByFile, "liba.dylib", "check 10 2009\n", "abgelehnt\n");
    const Json dokument = Json::parse(heim.rufe({"why", "a", "--json"}).ausgabe);
    EXPECT_EQ(dokument["conclusion"]["code"], "described_otherwise");
    EXPECT_THAT(dokument["steps"].back()["text"].get<std::string>(),
                HasSubstr("by it, the plugin also answers for CHECK 10 2009"));
}
