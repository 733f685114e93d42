// The command `describe`: plugins that describe themselves in their files, and those that cannot.

#include "Heim.h"

#include "TestPlugins.h"

#include <orvoplugin/beschreibung/Beschreibung.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

using namespace testing;
using Json = nlohmann::json;

namespace {

std::string inhalt(const std::string& datei) {
    std::ifstream strom(datei, std::ios::binary);
    return {std::istreambuf_iterator<char>(strom), {}};
}

Ergebnis beschreibe(const std::string& datei, const std::vector<std::string>& umgebung = {}) {
    return rufeTool({"describe", datei}, umgebung);
}

/// Describing a copy of the plugin with these orders fails, with the whole message, and changes nothing.
void erwarteAblehnung(const char* plugin, const std::string& auftraege, int ausgang, const std::string& grund,
                      const std::vector<std::string>& umgebung = {}) {
    const Heim heim;
    const std::string datei = heim.lege(plugin, "liba.dylib", auftraege);
    const std::string vorher = inhalt(datei);
    const Ergebnis ergebnis = beschreibe(datei, umgebung);
    EXPECT_EQ(ergebnis.ausgang, ausgang);
    EXPECT_EQ(ergebnis.ausgabe, "");
    EXPECT_THAT(ergebnis.fehler,
                AllOf(StartsWith("orvoplugin: " + datei + ": not described: "), HasSubstr(grund)));
    EXPECT_EQ(std::count(ergebnis.fehler.begin(), ergebnis.fehler.end(), '\n'), 1);
    EXPECT_TRUE(inhalt(datei) == vorher);
    const std::filesystem::directory_iterator verzeichnis(heim.plugins());
    EXPECT_EQ(std::distance(begin(verzeichnis), end(verzeichnis)), auftraege.empty() ? 1 : 2);
}

constexpr char kFragen[] = "such a plugin must be asked at each start: build it without DESCRIBED";

} // namespace

TEST(Describe, APluginsOwnDescriptionStandsInItsFile) {
    const Heim heim;
    const std::string datei = heim.lege(test_plugins::HasRoom, "liba.dylib");
    ASSERT_EQ(chmod(datei.c_str(), 0750), 0);
    EXPECT_EQ(liesBeschreibung(datei).stand, Beschreibungsfund::LEER);
    const std::string groesse = std::to_string(inhalt(datei).size());

    const Ergebnis ergebnis = beschreibe(datei);
    EXPECT_EQ(ergebnis.ausgang, 0) << ergebnis.fehler;
    const Beschreibungsfund fund = liesBeschreibung(datei);
    EXPECT_EQ(ergebnis.ausgabe,
              datei + ": described, " + std::to_string(fund.bytes.size()) + " of 4096 bytes\n");
    EXPECT_EQ(fund.stand, Beschreibungsfund::GEFUNDEN);
    EXPECT_THAT(fund.bytes, AllOf(HasSubstr("1.2.3"), HasSubstr("beimEntladen"), HasSubstr("LSTB")));
    EXPECT_EQ(std::to_string(inhalt(datei).size()), groesse);
    struct stat zustand {};
    ASSERT_EQ(stat(datei.c_str(), &zustand), 0);
    EXPECT_EQ(zustand.st_mode & 07777U, 0750U);
    EXPECT_EQ(rufeTool({"check", "--only", "use,services", datei}).ausgang, 0) << "it works as before";
}

TEST(Describe, WhatIsDescribedAlreadyIsLeftAlone) {
    const Heim heim;
    const std::string datei = heim.lege(test_plugins::HasRoom, "liba.dylib");
    ASSERT_EQ(beschreibe(datei).ausgang, 0);
    struct stat vorher {};
    struct stat nachher {};
    ASSERT_EQ(stat(datei.c_str(), &vorher), 0);
    const Ergebnis nochmals = rufeTool({"describe", "--json", datei});
    ASSERT_EQ(stat(datei.c_str(), &nachher), 0);
    EXPECT_EQ(vorher.st_ino, nachher.st_ino);
    EXPECT_EQ(Json::parse(nochmals.ausgabe)["files"][0]["result"], "unchanged");
}

TEST(Describe, AnOlderDescriptionIsReplacedWithoutARest) {
    const Heim heim;
    const std::string datei =
        heim.lege(test_plugins::HasRoom, "liba.dylib", "beschreiben version 1." + std::string(500, '0'));
    ASSERT_EQ(beschreibe(datei).ausgang, 0);
    heim.verzeichnis.entferne("plugins/liba.dylib.txt");
    ASSERT_EQ(beschreibe(datei).ausgang, 0);
    const std::string andere = heim.lege(test_plugins::HasRoom, "libb.dylib");
    ASSERT_EQ(beschreibe(andere).ausgang, 0);
    EXPECT_TRUE(inhalt(datei) == inhalt(andere));
}

TEST(Describe, ALinkStaysAndItsFileIsDescribed) {
    const Heim heim;
    const std::string datei = heim.lege(test_plugins::HasRoom, "liba.dylib");
    const std::string verweis = heim.verzeichnis.pfad("verweis.dylib");
    ASSERT_EQ(symlink("plugins/liba.dylib", verweis.c_str()), 0);
    ASSERT_EQ(beschreibe(verweis).ausgang, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(verweis));
    EXPECT_EQ(liesBeschreibung(datei).stand, Beschreibungsfund::GEFUNDEN);
}

TEST(Describe, StrippingKeepsTheDescription) {
    const Heim heim;
    const std::string datei = heim.lege(test_plugins::HasRoom, "liba.dylib");
    ASSERT_EQ(beschreibe(datei).ausgang, 0);
    const Beschreibungsfund vorher = liesBeschreibung(datei);
    const std::size_t groesse = inhalt(datei).size();
    ASSERT_EQ(rufe(ORVO_STRIP, {datei}).ausgang, 0);
    EXPECT_LT(inhalt(datei).size(), groesse);
    EXPECT_EQ(liesBeschreibung(datei).bytes, vorher.bytes);
    EXPECT_THAT(beschreibe(datei).ausgabe, HasSubstr(": unchanged, "));
}

TEST(Describe, APluginWithoutRoomIsToldHowToReserveIt) {
    erwarteAblehnung(
        test_plugins::Conforms, "", 1,
        "no room for a description: build it with DESCRIBED, or with the source that \"pkg-config "
        "--variable=described orvoplugin-plugin\" names");
}
TEST(Describe, TooLittleRoomIsNamedWithWhatItTakes) {
    erwarteAblehnung(test_plugins::HasLittleRoom, "", 1,
                     "and its file has room for 64: build it with DESCRIPTION_SIZE 1024");
}
TEST(Describe, MoreThanClientsReadIsRefused) {
    erwarteAblehnung(test_plugins::HasRoom, "beschreiben version 1." + std::string(40000, '0'), 1,
                     "ein Text von mehr als 1.000 Bytes");
}
TEST(Describe, AClassOfThePluginsOwnIsNamed) {
    erwarteAblehnung(test_plugins::AddsExtensionOfItsOwnClass, "", 1, "ErweiterungDesPlugins");
}
TEST(Describe, APluginThatGoesByTheEnvironmentIsRefused) {
    erwarteAblehnung(
        test_plugins::HasRoom, "beschreiben umgebung ORVO_TEST_EINE", 1,
        "it describes itself differently with another environment: first label 0 \"eins\" \"\" \"\" 0 "
        "\"\" \"\", then label 0 \"\" \"\" \"\" 0 \"\" \"\"; " +
            std::string(kFragen),
        {"ORVO_TEST_EINE=eins"});
    erwarteAblehnung(test_plugins::HasRoom, "beschreiben umgebung TZ", 1, "with another environment");
}
TEST(Describe, APluginThatGoesByTheWorkingDirectoryIsRefused) {
    erwarteAblehnung(test_plugins::HasRoom, "beschreiben arbeitsverzeichnis", 1,
                     "it describes itself differently with another working directory: ");
}
TEST(Describe, APluginThatGoesByTheLocaleIsRefused) {
    erwarteAblehnung(test_plugins::HasRoom, "beschreiben kommazahl", 1,
                     "it describes itself differently with another locale: first label 0 \"1.5\"");
}
TEST(Describe, APluginThatNeverSaysTheSameIsRefused) {
    erwarteAblehnung(test_plugins::HasRoom, "beschreiben zufall", 1,
                     "it describes itself differently in each process: ");
}
TEST(Describe, APluginThatRefusesItselfIsRefused) {
    erwarteAblehnung(test_plugins::HasRoom, "beschreiben ablehnung", 1, "Fehler im Aufruf");
    erwarteAblehnung(test_plugins::HasRoom, "beschreiben wirf kaputt", 1,
                     "asked to describe itself, it fails: kaputt");
}
TEST(Describe, APluginThatCrashesEndsOrHangsIsRefused) {
    erwarteAblehnung(test_plugins::HasRoom, "beschreiben absturz", 4,
                     "asked to describe itself, it ended by signal 11 (SIGSEGV)");
    erwarteAblehnung(test_plugins::HasRoom, "schliessen absturz", 4, "ended by signal 11 (SIGSEGV)");
    erwarteAblehnung(test_plugins::HasRoom, "beschreiben exit 0", 4, "ended the process with exit code 0");
    const Heim heim;
    const std::string datei = heim.lege(test_plugins::HasRoom, "liba.dylib", "beschreiben haenge");
    const Ergebnis ergebnis = rufeTool({"describe", "--timeout", "0.2", datei});
    EXPECT_EQ(ergebnis.ausgang, 4);
    EXPECT_THAT(ergebnis.fehler, HasSubstr("asked to describe itself, it did not come back in time"));
}

TEST(Describe, WhatIsNoPluginsFileIsNamed) {
    const Heim heim;
    const std::string text = heim.verzeichnis.schreibe("text.dylib", "kein Plugin");
    EXPECT_THAT(beschreibe(text).fehler, HasSubstr("not described: keine ELF-Datei"));
    EXPECT_THAT(beschreibe(heim.plugins()).fehler, HasSubstr("cannot be read: it is a directory"));
    EXPECT_EQ(beschreibe(heim.verzeichnis.pfad("weg")).ausgang, 3);
    EXPECT_EQ(rufeTool({"describe"}).ausgang, 2);
    EXPECT_EQ(rufeTool({"describe", text, "--dir", heim.plugins()}).ausgang, 2);
}

TEST(Describe, AFileThatMayNotBeWrittenIsNamed) {
    if (geteuid() == 0)
        GTEST_SKIP() << "the administrator may write any file";
    const Heim heim;
    const std::string datei = heim.lege(test_plugins::HasRoom, "liba.dylib");
    ASSERT_EQ(chmod(datei.c_str(), 0555), 0);
    const Ergebnis ergebnis = beschreibe(datei);
    EXPECT_EQ(ergebnis.ausgang, 3);
    EXPECT_THAT(ergebnis.fehler, HasSubstr("cannot write"));
}

TEST(Describe, OneFileThatCannotBeDescribedDoesNotKeepTheOthers) {
    const Heim heim;
    const std::string a = heim.lege(test_plugins::Conforms, "liba.dylib");
    const std::string b = heim.lege(test_plugins::HasRoom, "libb.dylib");
    const Ergebnis ergebnis = rufeTool({"describe", "--json", a, b});
    EXPECT_EQ(ergebnis.ausgang, 1);
    const Json dateien = Json::parse(ergebnis.ausgabe)["files"];
    ASSERT_EQ(dateien.size(), 2U);
    EXPECT_EQ(dateien[0]["result"], "failed");
    EXPECT_THAT(dateien[0]["reason"].get<std::string>(), StartsWith("it has no room"));
    EXPECT_EQ(dateien[1]["result"], "described");
    EXPECT_EQ(dateien[1]["room"], 4096);
    EXPECT_EQ(rufeTool({"describe", "--quiet", b}).ausgabe, "");
}

TEST(Describe, TextAndJsonStandAsTheyAre) {
    const Heim heim;
    const std::string gut = heim.lege(test_plugins::HasRoom, "libgut.dylib");
    const std::string ohne = heim.lege(test_plugins::Conforms, "libohne.dylib");
    for (const char* const name : {"describe.txt", "describe.json"}) {
        std::vector<std::string> argumente{"describe", gut, ohne};
        if (name == std::string("describe.json"))
            argumente.emplace_back("--json");
        const Ergebnis ergebnis = // JSON is English in every locale
            rufeTool(argumente, argumente.back() == "--json" ? kDeutsch : std::vector<std::string>{});
        const std::string groesse = std::to_string(liesBeschreibung(gut).bytes.size());
        const std::string text = ersetze(ergebnis.ausgabe, heim.verzeichnis.pfad(), "@HOME@");
        EXPECT_EQ(vergleicheMitMuster(name, ersetze(text, groesse, "200")), "");
    }
}
