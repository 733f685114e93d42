// What the user asks of a plugin: limits, a baseline, data.

#include "../Heim.h"
#include "Lauf.h"

#include "TestPlugins.h"

#include <gmock/gmock.h>

#include <regex>
#include <string>

using namespace testing;

namespace {

/// The row of the only check that is made.
nlohmann::json zeile(const std::string& datei, const std::string& pruefung,
                     std::vector<std::string> argumente = {}) {
    argumente.insert(argumente.end(), {"--only", pruefung, datei});
    int ausgang = 0;
    return pruefeAlsJson(argumente, ausgang).at("files").at(0).at("checks").at(0);
}

} // namespace

TEST(Vorgaben, AStepThatWaitsIsFoundByItsLimitAndByNoOther) {
    const std::pair<const char*, const char*> schritte[] = {
        {"oeffnen schlafe 50", "open"}, {"typen schlafe 50", "describe"}, {"factory schlafe 50", "service"}};
    for (const auto& [auftrag, schritt] : schritte) {
        const Pruefplugin plugin(test_plugins::Conforms, auftrag);
        const std::string grenze = std::string("--max-") + schritt + "-ms";
        const nlohmann::json knapp = zeile(plugin.pfad(), "time", {grenze, "1"});
        EXPECT_EQ(knapp.at("result"), "failed") << auftrag;
        EXPECT_THAT(knapp.at("reason").get<std::string>(), EndsWith(" ms; 1.0 ms are allowed"));
        EXPECT_GE(knapp.at("figures").at(std::string(schritt) + "_ms").get<double>(), 50.0);
        const nlohmann::json reichlich = zeile(plugin.pfad(), "time", {grenze, "9000000"});
        EXPECT_EQ(reichlich.at("result"), "passed") << auftrag;
        EXPECT_EQ(reichlich.at("reason"), "");
    }
}

TEST(Vorgaben, WithoutLimitsTheTimesAreFiguresOnly) {
    const nlohmann::json time = zeile(Pruefplugin(test_plugins::Conforms).pfad(), "time");
    EXPECT_EQ(time.at("result"), "passed");
    for (const char* const name : {"open_ms", "describe_ms", "service_ms"})
        EXPECT_TRUE(time.at("figures").at(name).is_number()) << name;
    EXPECT_TRUE(
        zeile(Pruefplugin(test_plugins::Small).pfad(), "time").at("figures").at("service_ms").is_null())
        << "it has none";
    EXPECT_TRUE(zeile(Pruefplugin(test_plugins::Small).pfad(), "use").at("figures").is_null());
}

TEST(Vorgaben, TheLimitOfTheLogIsTheCallers) {
    const Pruefplugin plugin(test_plugins::Conforms, "factory logge 10");
    const nlohmann::json gut = zeile(plugin.pfad(), "log-volume");
    EXPECT_EQ(gut.at("result"), "passed");
    EXPECT_GE(gut.at("figures").at("entries").get<int>(), 10);
    EXPECT_GT(gut.at("figures").at("bytes").get<int>(), 100);
    EXPECT_EQ(zeile(plugin.pfad(), "log-volume", {"--max-log", "100"}).at("result"), "warning");
}

TEST(Vorgaben, TheBaselineIsComparedWithWhatTheFileNeeds) {
    const Pruefplugin plugin(test_plugins::Conforms);
    const nlohmann::json ohne = zeile(plugin.pfad(), "baseline");
    EXPECT_EQ(ohne.at("result"), "passed");
    const auto glibc = ohne.at("figures").at("glibc").get<std::string>();
    EXPECT_THAT(glibc, StartsWith("2."));
    EXPECT_EQ(zeile(plugin.pfad(), "baseline", {"--baseline", "glibc=" + glibc}).at("result"), "passed");
    const nlohmann::json alt = zeile(plugin.pfad(), "baseline", {"--baseline", "glibc=2.1,libstdc++=99"});
    EXPECT_EQ(alt.at("result"), "failed");
    EXPECT_EQ(alt.at("reason"), "needs glibc " + glibc + ", newer than 2.1");
}

TEST(Vorgaben, ABaselineThatIsNoneIsWrongUsage) {
    for (const char* const text : {"2.31", "glibc", "glibc=", "glibc=neu", "musl=1.2", "glibc 2.31"})
        EXPECT_EQ(rufeTool({"check", "--baseline", text, test_plugins::Conforms}).ausgang, 2) << text;
}

TEST(Vorgaben, EachServiceChecksTheRecordsOfTheFile) {
    const Verzeichnis verzeichnis;
    const Pruefplugin plugin(test_plugins::Conforms);
    const std::string daten = verzeichnis.schreibe("daten.txt", "eins\n\nvier f\xFCnf\nsechs\n");
    const nlohmann::json data = zeile(plugin.pfad(), "data", {"--data", daten});
    EXPECT_EQ(data.at("result"), "passed");
    EXPECT_THAT(
        data.at("reason").get<std::string>(),
        StartsWith("4 messages for 10 2009 (returned 4): 4711 Feld: eins, 4711 Feld: , 4711 Feld: vier "
                   "fünf; 4 messages for LSTB 2010 (returned 4): "));
    EXPECT_EQ(data.at("figures").at("records"), 4);
    const nlohmann::json ruf = data.at("figures").at("calls").at(1);
    EXPECT_EQ(ruf.at("sub_case_type"), "LSTB");
    EXPECT_EQ(ruf.at("period"), "2010");
    EXPECT_EQ(ruf.at("returned"), 4);
    EXPECT_EQ(ruf.at("messages"), 4);
    EXPECT_EQ(ruf.at("first_messages").size(), 3U);
    EXPECT_EQ(ruf.at("first_messages").at(0),
              (nlohmann::json{{"code", 4711}, {"field", "Feld"}, {"text", "eins"}}));
    EXPECT_TRUE(ruf.at("ms").is_number());
}

TEST(Vorgaben, TheFiguresStandInJsonAsTheyAre) {
    const Heim heim;
    heim.lege(test_plugins::Conforms, "libgut.dylib");
    const std::string daten = heim.verzeichnis.schreibe("daten.txt", "eins\n");
    const Ergebnis ergebnis =
        heim.rufe({"check", "--json", "--only", "baseline,log-volume,time,data", "--data", daten});
    std::string text = std::regex_replace(
        ergebnis.ausgabe, std::regex(R"x(("(?:\w+_)?ms"|"bytes"|"entries"): [0-9.e-]+)x"), "$1: 1");
    text = std::regex_replace(text, std::regex(R"x(("(?:glibc|libstdc\+\+|cxxabi)"): "[0-9.]+")x"),
                              "$1: \"1.0\"");
    EXPECT_EQ(vergleicheMitMuster("check-figures.json", text), "");
}

TEST(Vorgaben, ADirectoryHoldsOneRecordInEachFile) {
    const Verzeichnis verzeichnis;
    verzeichnis.schreibe("daten/b", "zwei\nzwei");
    verzeichnis.schreibe("daten/a", "eins");
    const nlohmann::json data =
        zeile(Pruefplugin(test_plugins::Conforms).pfad(), "data",
              {"--data", verzeichnis.pfad("daten"), "--data", verzeichnis.schreibe("c", "drei")});
    EXPECT_EQ(data.at("figures").at("records"), 3);
    EXPECT_THAT(data.at("reason").get<std::string>(),
                HasSubstr("4711 Feld: eins, 4711 Feld: zwei\\nzwei, 4711 Feld: drei;"));
}

TEST(Vorgaben, WhatGoesWrongWithTheRecordsIsTold) {
    const Verzeichnis verzeichnis;
    const std::string daten = verzeichnis.schreibe("daten.txt", "eins\n");
    const Pruefplugin wirft(test_plugins::Conforms, "pruefen wirf kaputt"),
        absturz(test_plugins::Conforms, "pruefen absturz");
    const nlohmann::json geworfen = zeile(wirft.pfad(), "data", {"--data", daten});
    EXPECT_EQ(geworfen.at("result"), "failed");
    EXPECT_THAT(geworfen.at("reason").get<std::string>(),
                HasSubstr("an exception leaves pruefe for 10 2009: kaputt"));
    const nlohmann::json abgestuerzt = zeile(absturz.pfad(), "data", {"--data", daten});
    EXPECT_EQ(abgestuerzt.at("result"), "crashed");
    EXPECT_THAT(abgestuerzt.at("reason").get<std::string>(), HasSubstr("SIGSEGV"));
}

TEST(Vorgaben, WithoutDataThereIsNoSuchCheckUnlessItIsNamed) {
    const Verzeichnis verzeichnis;
    const Pruefplugin plugin(test_plugins::Conforms);
    const std::string daten = verzeichnis.schreibe("daten.txt", "eins\n");
    EXPECT_FALSE(pruefe(plugin.pfad()).ergebnisse.contains("data"));
    EXPECT_EQ(pruefe(plugin.pfad(), {"--data", daten}).ergebnisse.at("data"), "passed");
    EXPECT_EQ(zeile(plugin.pfad(), "data").at("result"), "skipped");
    EXPECT_EQ(zeile(Pruefplugin(test_plugins::Small).pfad(), "data", {"--data", daten}).at("reason"),
              "the plugin offers no check service");
    EXPECT_EQ(rufeTool({"check", "--data", verzeichnis.pfad("fehlt"), plugin.pfad()}).ausgang, 3);
    EXPECT_EQ(rufeTool({"check", "--data", verzeichnis.schreibe("leer", ""), plugin.pfad()}).ausgang, 3);
}
