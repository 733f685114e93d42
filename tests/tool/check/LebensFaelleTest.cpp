// One plugin that passes every check, and a faulty one for each check that runs plugin code.

#include "check/Katalog.h"

#include "Lauf.h"

#include "TestPlugins.h"
#include "support/Sanitizer.h"

#include <gmock/gmock.h>

#include <map>
#include <set>
#include <string>

using namespace testing;

namespace {

#if defined(ORVO_ADDRESS_SANITIZER)
constexpr bool kMitSanitizer = true;
#else
constexpr bool kMitSanitizer = false;
#endif

/// A fault of the plugin, the checks that find it, and the message of the first one.
struct Fall {
    const char* name;
    const char* auftrag;
    std::map<std::string, std::string> auffaellige;
    const char* pruefung;
    const char* grund;
};

std::ostream& operator<<(std::ostream& aus, const Fall& fall) { return aus << fall.auftrag; }

class Faelle : public TestWithParam<Fall> {};

const Fall kFaelle[] = {
    {"CrashesWhenOpened", "oeffnen absturz", {{"loads", "crashed"}}, "loads", "SIGSEGV"},
    {"ExitsWhenOpened", "oeffnen exit 0", {{"loads", "crashed"}}, "loads", "exit code 0"},
    {"HangsWhenOpened", "oeffnen haenge", {{"loads", "timed_out"}}, "loads", "in time"},
    {"ThrowsWhenOpened", "oeffnen wirf mitten im Laden", {{"loads", "crashed"}}, "loads", "mitten im Laden"},
    {"DeclaresAnotherInterface",
     "typen typ 2",
     {{"declares-type", "failed"}},
     "declares-type",
     "2 records (types 2, 1)"},
    {"ThrowsFromTypes",
     "typen wirf keine Lust",
     {{"declares-type", "failed"}},
     "declares-type",
     "keine Lust"},
    {"CrashesInTypes",
     "typen abbruch mit Grund",
     {{"declares-type", "crashed"}},
     "declares-type",
     "SIGABRT): mit Grund"},
    {"ClearsTheListOfTypes", "typen ersetze", {{"signatures", "failed"}}, "signatures", "does not append"},
    {"Refuses",
     "beschreiben ablehnung",
     {{"describes", "failed"}},
     "describes",
     "orvo_plugin_initialize returns false (\"--log error\" shows what it wrote to the log): "
     "INITIALISIERUNGS_FEHLER"},
    {"ThrowsFromInitialize",
     "beschreiben wirf nicht mit mir",
     {{"describes", "failed"}},
     "describes",
     "orvo_plugin_initialize throws: nicht mit mir"},
    {"ThrowsAClassOfItsOwn",
     "beschreiben wirfeigenes",
     {{"describes", "failed"}},
     "describes",
     "an exception that is no std::exception"},
    {"HangsInInitialize", "beschreiben haenge", {{"describes", "timed_out"}}, "describes", "in time"},
    {"DescribesItselfByTheClock",
     "beschreiben zufall",
     {{"describes-twice", "failed"}},
     "describes-twice",
     "loaded again, it differs: first label"},
    {"HasALetterInItsVersion", "beschreiben version 1.2b", {{"versions", "failed"}}, "versions", "\"1.2b\""},
    {"HasALetterInItsFileVersion",
     "beschreiben fileversion neu",
     {{"versions", "failed"}},
     "versions",
     "file version \"neu\""},
    {"HasNoVersion", "beschreiben version", {{"versions", "warning"}}, "versions", "no product version"},
    {"HasAControlCharacterInALabel",
     "beschreiben label steuerzeichen",
     {{"texts", "failed"}},
     "texts",
     "a\\x01b"},
    {"NamesASubCaseTypeInUtf8",
     "beschreiben unterfallart \xC3\xBC"
     "ber",
     {{"texts", "warning"}},
     "texts",
     "is UTF-8"},
    {"OffersNothing", "beschreiben nichts", {{"offers", "warning"}}, "offers", "no extension"},
    {"ServesNoPeriod", "beschreiben ohnezeitraum", {{"offers", "warning"}}, "offers", "10 for no period"},
    {"HidesItsOwnExtension",
     "beschreiben doppelt",
     {{"own-overlaps", "failed"}},
     "own-overlaps",
     "ORVO_CHECK_SERVICE_ERWEITERUNG for 10 2009 is declared twice"},
    {"MisspellsAFactory",
     "beschreiben factoryname orvo_plugin_get_chek_service",
     {{"factories", "failed"}},
     "factories",
     "did you mean orvo_plugin_get_check_service?"},
    {"NamesNoFactory",
     "beschreiben factoryname",
     {{"factories", "failed"}},
     "factories",
     "\"\" is not exported"},
    {"MisspellsAHook",
     "beschreiben onload beimladen",
     {{"hooks", "failed"}},
     "hooks",
     "OnLoad function: \"beimLaden\" is exported, \"beimladen\" is not"},
    {"NamesAHookThatIsNotThere",
     "beschreiben onunload fort",
     {{"hooks", "failed"}},
     "hooks",
     "OnUnload function: \"fort\" is not exported"},
    {"CrashesInAFactory", "factory absturz", {{"use", "crashed"}}, "use", "SIGSEGV"},
    {"HangsInAHook", "laden haenge", {{"use", "timed_out"}}, "use", "in time"},
    {"ExitsWhenAServiceEnds", "ende exit 3", {{"use", "crashed"}}, "use", "exit code 3"},
    {"CrashesWhenClosed", "schliessen absturz", {{"loads", "crashed"}}, "loads", "SIGSEGV"},
    {"MakesNoService", "factory null", {{"services", "failed"}}, "services", "returns null"},
    {"MakesNoSecondService",
     "factory nullwennschoneiner",
     {{"services", "failed"}},
     "services",
     "while another is out"},
    {"MakesAServiceOfAnotherInterface",
     "factory falsche",
     {{"services", "failed"}},
     "services",
     "an object of another interface than ORVO_CHECK_SERVICE_ERWEITERUNG declares"},
    {"ThrowsFromAFactory",
     "factory wirf kein Dienst",
     {{"services", "failed"}, {"exceptions", "failed"}},
     "services",
     "throws: kein Dienst"},
    {"GivesAServiceTwiceThatIsDeletedOnce",
     "factory dieselbe",
     {{"service-ownership", "failed"}},
     "service-ownership",
     "gives the same object twice"},
    {"MakesServicesThatNobodyDeletes",
     "beschreiben ohneloeschen",
     {{"service-ownership", "warning"}, {"memory", "warning"}},
     "service-ownership",
     "which nobody deletes"},
    {"ThrowsFromAHook",
     "laden wirf nicht geladen",
     {{"exceptions", "failed"}},
     "exceptions",
     "leaves the OnLoad function \"beimLaden\": nicht geladen"},
    {"ThrowsAClassOfItsOwnFromAHook",
     "entladen wirfeigenes",
     {{"exceptions", "failed"}},
     "exceptions",
     "OnUnload function"},
    {"KeepsItselfOpen",
     "laden behalte",
     {{"unloads", "failed"}},
     "unloads",
     "still in the process after its last service was given back"},
    {"LosesMemory", "laden verliere", {{"memory", "warning"}}, "memory", "bytes that are never freed"},
    {"NeedsToBeClosedBetweenUses",
     "factory nullwennzweimalgeladen",
     {{"resident", "failed"}},
     "resident",
     "makes no object when it is used again"},
    {"CannotBeUnloadedWhileInUse",
     "schliessen absturzwennlebende",
     {{"reload", "crashed"}},
     "reload",
     "SIGSEGV"},
    {"PrintsSomething",
     "laden ausgabe Hallo",
     {{"no-output", "failed"}},
     "no-output",
     "writes to standard output: \"Hallo"},
    {"PrintsWhenClosed", "schliessen ausgabe Ende", {{"no-output", "failed"}}, "no-output", "Ende"},
    {"PrintsAnError",
     "factory fehlerausgabe Oh",
     {{"no-output", "warning"}},
     "no-output",
     "standard error: \"Oh"},
    {"ChangesTheLocale",
     "factory locale C.UTF-8",
     {{"locale", "failed"}},
     "locale",
     "the C locale was C and is now C.UTF-8"},
    {"ChangesTheWorkingDirectory",
     "beschreiben verzeichnis /usr",
     {{"working-directory", "failed"}},
     "working-directory",
     "is now /usr"},
    {"IgnoresASignal",
     "laden signal",
     {{"signal-handlers", "failed"}},
     "signal-handlers",
     "was default and is now ignored"},
    {"BlocksASignal", "laden signalmaske", {{"signal-handlers", "failed"}}, "signal-handlers", "blocked"},
    {"ChangesTheTerminateHandler",
     "laden terminate",
     {{"cxx-handlers", "failed"}},
     "cxx-handlers",
     "the terminate handler was"},
    {"LeavesAFileOpen",
     "factory oeffne /etc/passwd",
     {{"descriptors", "failed"}},
     "descriptors",
     "was nothing and is now /etc/passwd"},
    {"ClosesADescriptorOfOthers",
     "factory schliesse 0",
     {{"descriptors", "failed"}},
     "descriptors",
     "descriptor 0 was /dev/null and is now nothing"},
    {"SetsAVariable",
     "laden setenv wert",
     {{"environment", "failed"}},
     "environment",
     "environment variable ORVO_TEST_VARIABLE was nothing and is now \"wert\""},
    {"ChangesTheUmask", "laden umask", {{"umask", "failed"}}, "umask", "is now 123"},
    {"LeavesAThread",
     "factory thread",
     {{"threads", "failed"}, {"memory", "warning"}},
     "threads",
     "still run after the plugin was unloaded"},
    {"LeavesAChildProcess", "factory kind", {{"child-processes", "failed"}}, "child-processes", "still runs"},
    {"LeavesAnEndedChildProcess",
     "laden zombie",
     {{"child-processes", "failed"}},
     "child-processes",
     "nobody has waited for it"},
    {"ChangesTheRounding",
     "factory rundung",
     {{"floating-point", "failed"}},
     "floating-point",
     "the rounding was to nearest and is now upward"},
    {"ChangesAStream", "factory strom", {{"streams", "failed"}}, "streams", "the format of std::cout"},
    {"SetsAnAlarm",
     "laden wecker",
     {{"timers", "failed"}},
     "timers",
     "the timer for real time was off and is now running"},
    {"LowersALimit",
     "entladen knapp",
     {{"limits", "failed"}, {"services", "failed"}, {"descriptors", "failed"}, {"time", "failed"}},
     "limits",
     "the limit of open files was "},
    {"WritesThousandsOfLinesToTheLog",
     "factory logge 3000",
     {{"log-volume", "warning"}},
     "log-volume",
     " entries to the log; 65536 bytes are allowed"},
    {"NamesASubCaseTypeWithoutAName",
     "beschreiben unterfallart",
     {{"texts", "warning"}},
     "texts",
     "serves a sub-case type without a name"},
    {"GivesAStaticObjectThatTheLibraryDeletes",
     "factory statische",
     {{"use", "failed"}},
     "use",
     "gives a static object, and FLAG_SERVICE_LOESCHEN has it deleted"},
    {"ChangesASetting",
     "laden einstellung jemand,",
     {{"settings", "failed"}},
     "settings",
     "the setting basis.resident_plugins was \"\" and is now \"jemand,\""},
};

} // namespace

TEST(Konformitaet, APluginInOrderPassesEveryCheckBesideAnother) {
    const Pruefplugin eines(test_plugins::HasRoom), anderes(test_plugins::Small);
    ASSERT_EQ(rufeTool({"describe", eines.pfad()}).ausgang, 0);
    int ausgang = -1;
    const nlohmann::json json = pruefeAlsJson({eines.pfad(), anderes.pfad()}, ausgang);
    EXPECT_EQ(ausgang, 0);
    for (const auto& [name, ergebnis] : alsDateilauf(json.at("files").at(0)).ergebnisse)
        EXPECT_EQ(ergebnis, kMitSanitizer && name == "memory" ? "skipped" : "passed")
            << name << ": " << json.at("files").at(0);
}

TEST_P(Faelle, IsFoundByItsCheckAndByNoOther) {
    const Fall& fall = GetParam();
    if (kMitSanitizer && std::string(fall.name) == "ThrowsWhenOpened")
        GTEST_SKIP() << "what an exception does in the system's loader depends on the runtime";
    if (kMitSanitizer && std::string(fall.name) == "LowersALimit")
        GTEST_SKIP() << "the sanitizer opens a pipe whenever it looks at an object's type";
    auto erwartet = fall.auffaellige;
    if (kMitSanitizer)
        erwartet.erase("memory"); // not measured there
    const Pruefplugin plugin(test_plugins::Conforms, fall.auftrag);
    const Dateilauf lauf = pruefe(plugin.pfad(), {"--timeout", kMitSanitizer ? "5" : "2"});
    EXPECT_EQ(lauf.auffaellige, erwartet);
    if (erwartet.contains(fall.pruefung)) {
        EXPECT_THAT(lauf.gruende.at(fall.pruefung), HasSubstr(fall.grund));
    }
}

INSTANTIATE_TEST_SUITE_P(Plugin, Faelle, ValuesIn(kFaelle),
                         [](const TestParamInfo<Fall>& fall) { return std::string(fall.param.name); });

TEST(Konformitaet, EachCheckThatRunsPluginCodeHasACaseThatDoesNotPass) {
    std::set<std::string> gefunden{"file-name",  "needed-libraries", "undefined-symbols",
                                   "c-symbols", // in DateiFaelleTest
                                   "time",
                                   "data",         // in VorgabenTest
                                   "description"}; // in BeschriebeneTest
    for (const Fall& fall : kFaelle)
        for (const auto& [name, ergebnis] : fall.auffaellige)
            gefunden.insert(name);
    for (const werkzeug::check::Pruefung& pruefung : werkzeug::check::katalog()) {
        if (pruefung.ort == werkzeug::check::Ort::KIND) {
            EXPECT_TRUE(gefunden.contains(pruefung.name)) << pruefung.name;
        }
    }
}

TEST(Konformitaet, ATextThatNobodyCanReadForItsLengthIsAWarning) {
    const Pruefplugin knapp(test_plugins::Conforms, "beschreiben label " + std::string(1000, 'x')),
        lang(test_plugins::Conforms, "beschreiben label " + std::string(1001, 'x'));
    EXPECT_EQ(pruefe(knapp.pfad(), {"--only", "texts"}).ergebnisse.at("texts"), "passed");
    const Dateilauf lauf = pruefe(lang.pfad(), {"--only", "texts"});
    EXPECT_EQ(lauf.ergebnisse.at("texts"), "warning");
    EXPECT_THAT(lauf.gruende.at("texts"), EndsWith(" has 1001 bytes"));
}

// A sanitizer's own threads and memory are others.
#if !defined(ORVO_ADDRESS_SANITIZER)
TEST(Konformitaet, AThreadInUnmappedCodeIsNamedAsTheCauseOfTheCrash) {
    const Pruefplugin plugin(test_plugins::Conforms, "factory faden");
    const Dateilauf lauf = pruefe(plugin.pfad());
    EXPECT_THAT(lauf.auffaellige, Contains(Pair(_, "crashed")));
    for (const auto& [name, ergebnis] : lauf.auffaellige)
        if (ergebnis == "crashed") {
            EXPECT_THAT(lauf.gruende.at(name),
                        HasSubstr("; a thread that the plugin started still runs when its code is unmapped"));
        }
}

TEST(Konformitaet, ACxxLibraryOfItsOwnIsFoundAndNamedAsTheCauseOfLostMemory) {
    const Dateilauf lauf = pruefe(Pruefplugin(test_plugins::BringsItsCxxLibrary).pfad());
    EXPECT_THAT(lauf.auffaellige, ElementsAre(Pair("cxx-library", "warning"), Pair("memory", "warning")));
    for (const char* const name : {"cxx-library", "memory"})
        EXPECT_THAT(lauf.gruende.at(name), HasSubstr("brings a C++ library or an operator new of its own"));
}

TEST(Konformitaet, ALimitThatWasLoweredIsNamedAsTheCauseOfWhatFails) {
    const Pruefplugin plugin(test_plugins::Conforms, "laden knapp");
    const Dateilauf lauf = pruefe(plugin.pfad(), {"--only", "services"});
    EXPECT_EQ(lauf.ergebnisse.at("services"), "failed");
    EXPECT_THAT(lauf.gruende.at("services"),
                AllOf(HasSubstr("; the limit of open files was "), EndsWith(" and is now 0 (0)")));
}
#endif

TEST(Konformitaet, AStaticObjectThatIsDeletedIsRefusedByEachCheckThatWouldDeleteIt) {
    const Pruefplugin plugin(test_plugins::Conforms, "factory statische");
    for (const char* const name : {"services", "service-ownership", "exceptions", "memory", "resident"}) {
        const Dateilauf lauf = pruefe(plugin.pfad(), {"--only", name});
        EXPECT_EQ(lauf.ergebnisse.at(name), "failed") << name;
        EXPECT_THAT(lauf.gruende.at(name), HasSubstr("gives a static object")) << name;
    }
}

TEST(Konformitaet, WhatAPluginBroughtAlongAndLeavesIsNamed) {
    const Pruefplugin plugin(test_plugins::Conforms,
                             std::string("laden bringemit ") + test_plugins::OffersEverything + "\n");
    const Dateilauf lauf = pruefe(plugin.pfad());
    EXPECT_THAT(lauf.auffaellige, ElementsAre(Pair("reload", "warning"), Pair("unloads", "warning")));
    EXPECT_THAT(lauf.gruende.at("unloads"),
                HasSubstr("libOffersEverything.dylib, which the plugin brought along"));
}
