// Plugins with faults in the file or its name, and several plugins together.

#include "Lauf.h"

#include "ElfDatei.h"
#include "TestPlugins.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

using namespace testing;
namespace fs = std::filesystem;

namespace {

using Auffaellige = std::map<std::string, std::string>;

std::string inhalt(const char* datei) {
    std::ifstream strom(datei, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(strom), {});
}

/// The only check that did not pass, with its reason.
void erwarteNur(const std::string& datei, const std::string& pruefung, const std::string& ergebnis,
                const std::string& grund) {
    const Dateilauf lauf = pruefe(datei);
    EXPECT_EQ(lauf.auffaellige, (Auffaellige{{pruefung, ergebnis}})) << datei;
    EXPECT_THAT(lauf.gruende.at(pruefung), HasSubstr(grund));
}

/// Two plugins in one directory, which says in which order the manager finds them.
class Nachbarn {
public:
    Nachbarn(const std::string& auftraegeA, const std::string& auftraegeB) {
        a = verzeichnis_.kopiere(test_plugins::Conforms, "liba.dylib");
        verzeichnis_.schreibe("liba.dylib.txt", auftraegeA);
        b = verzeichnis_.kopiere(test_plugins::Conforms, "libb.dylib");
        verzeichnis_.schreibe("libb.dylib.txt", auftraegeB);
    }

    std::string a, b;

    nlohmann::json pruefe() {
        int ausgang = 0;
        return pruefeAlsJson({"--only", "describes,overlaps", b, a}, ausgang).at("files"); // b stands first
    }

private:
    Verzeichnis verzeichnis_;
};

} // namespace

TEST(Dateifaelle, AnEntryPointThatIsMisspeltGetsASuggestion) {
    erwarteNur(Pruefplugin(test_plugins::MisspellsInitialize).pfad(), "entry-points", "failed",
               "\"orvo_plugin_initialise\" is exported, \"orvo_plugin_initialize\" is not: did you mean "
               "orvo_plugin_initialize?");
}

TEST(Dateifaelle, MissingEntryPointsAreAllNamed) {
    const std::string grund = pruefe(test_plugins::WithoutEntryPoints).gruende.at("entry-points");
    EXPECT_THAT(grund, HasSubstr("\"orvo_plugin_get_types\" is not exported"));
    EXPECT_THAT(grund, HasSubstr("\"orvo_plugin_initialize\" is not exported"));
}

TEST(Dateifaelle, AUniqueSymbolIsFound) {
    erwarteNur(Pruefplugin(test_plugins::HasAUniqueSymbol).pfad(), "unique-symbols", "failed", "einmalig");
}

TEST(Dateifaelle, ExportedCxxNamesAreFound) {
    erwarteNur(Pruefplugin(test_plugins::ExportsCxxNames).pfad(), "exports", "warning", "exports ");
}

TEST(Dateifaelle, ALibraryThatStaysByItsMarkIsFound) {
    erwarteNur(Pruefplugin(test_plugins::IsNeverUnmapped).pfad(), "nodelete", "failed", "-z nodelete");
}

TEST(Dateifaelle, AThreadLocalVariableWithADestructorIsFound) {
    erwarteNur(Pruefplugin(test_plugins::HasAThreadDestructor).pfad(), "thread-destructors", "warning",
               "thread-local variable");
}

TEST(Dateifaelle, CodeThatIsWrittenToIsFound) {
    erwarteNur(Pruefplugin(test_plugins::HasATextRelocation).pfad(), "text-relocations", "failed", "-fPIC");
}

TEST(Dateifaelle, ASearchPathThatDependsOnTheWorkingDirectoryIsFound) {
    erwarteNur(Pruefplugin(test_plugins::SearchesTheWorkingDirectory).pfad(), "search-paths", "failed",
               "\"lib/relativ\"");
}

TEST(Dateifaelle, ALibraryThatMakesTheStackExecutableIsFound) {
    erwarteNur(Pruefplugin(test_plugins::HasAnExecutableStack).pfad(), "executable-stack", "failed",
               "makes the stack of the whole process executable");
    ElfDatei ohneAngabe(test_plugins::Conforms);
    ohneAngabe.segmentVom(PT_GNU_STACK).p_type = PT_NULL;
    const Verzeichnis verzeichnis;
    erwarteNur(verzeichnis.schreibe("libpruefling.dylib", ohneAngabe.bytes), "executable-stack", "failed",
               "does not say whether code runs on the stack");
}

TEST(Dateifaelle, ExportedCNamesThatNobodyAsksForAreFound) {
    const Pruefplugin plugin(test_plugins::ExportsCNames);
    erwarteNur(plugin.pfad(), "c-symbols", "warning", "exports inflate");
    erwarteNur(plugin.pfad(), "c-symbols", "warning", "exports fremdeDaten");
}

TEST(Dateifaelle, WhoElseMayWriteTheFileOrAFolderIsFound) {
    const Pruefplugin plugin(test_plugins::Conforms);
    const fs::path datei = plugin.pfad(), ordner = datei.parent_path();
    const auto grund = [](const std::string& pfad) {
        const Dateilauf lauf = pruefe(pfad, {"--only", "writable"});
        EXPECT_EQ(lauf.ergebnisse.at("writable"), lauf.gruende.at("writable").empty() ? "passed" : "warning");
        return lauf.gruende.at("writable");
    };
    EXPECT_EQ(grund(datei), "");
    fs::permissions(datei, fs::perms::group_write, fs::perm_options::add);
    EXPECT_THAT(grund(datei), HasSubstr(datei.string() + " is writable by its group ("));
    fs::permissions(datei, fs::perms::others_write, fs::perm_options::add);
    EXPECT_EQ(grund(datei), datei.string() + " is writable by everybody");
    fs::permissions(datei, fs::perms::group_write | fs::perms::others_write, fs::perm_options::remove);
    fs::permissions(ordner, fs::perms::others_write, fs::perm_options::add);
    EXPECT_EQ(grund(datei), ordner.string() + " is writable by everybody");

    const Verzeichnis anderswo;
    const std::string link = anderswo.pfad("liblink.dylib");
    fs::create_symlink(datei, link);
    EXPECT_THAT(grund(link), StartsWith(ordner.string() + " is writable")) << "of the folders of both";
    fs::permissions(ordner, fs::perms::sticky_bit, fs::perm_options::add);
    EXPECT_EQ(grund(link), "");
    fs::permissions(anderswo.pfad(), fs::perms::group_write, fs::perm_options::add);
    EXPECT_THAT(grund(link), StartsWith(anderswo.pfad() + " is writable"));
}

TEST(Dateifaelle, AFileOfSomebodyElseIsFound) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root gives files away";
    const Pruefplugin plugin(test_plugins::Conforms);
    ASSERT_EQ(chown(plugin.pfad().c_str(), 4711, 0), 0);
    erwarteNur(plugin.pfad(), "writable", "warning",
               plugin.pfad() + " belongs to user 4711, who may replace the plugin");
}

TEST(Dateifaelle, ALibraryThatBindsLateIsFound) {
    erwarteNur(Pruefplugin(test_plugins::BindsLate).pfad(), "immediate-binding", "warning", "-z now");
}

TEST(Dateifaelle, ALibraryThatIsNotThereIsNamed) {
    const Pruefplugin plugin(test_plugins::NeedsAMissingLibrary);
    erwarteNur(
        plugin.pfad(), "needed-libraries", "failed",
        "libgibtEsNicht.so: cannot open shared object file: No such file or directory. A library that the "
        "plugin needs is not found. Install the library that the reason names; ");
    const std::vector<std::string> anderswo{"--strict", "--elsewhere"};
    EXPECT_EQ(pruefe(plugin.pfad(), anderswo).auffaellige, (Auffaellige{{"needed-libraries", "warning"}}));
    EXPECT_EQ(pruefe(test_plugins::BindsLate, anderswo).ergebnisse.at("immediate-binding"), "failed");
}

TEST(Dateifaelle, RelocationsThatTheLoaderRefusesForTheirMissingMarkAreFound) {
    ElfDatei gepackt(test_plugins::Conforms);
    const auto tabelle = gepackt.eintrag(DT_RELA).d_un.d_ptr;
    constexpr ElfW(Sxword) kRelrSz = 35, kRelr = 36, kRelrEnt = 37;
    gepackt.eintrag(DT_RELACOUNT) = {kRelr, {tabelle}};
    gepackt.eintrag(DT_FLAGS) = {kRelrSz, {sizeof(ElfW(Addr))}};
    gepackt.eintrag(DT_FLAGS_1) = {kRelrEnt, {sizeof(ElfW(Addr))}};
    const Verzeichnis verzeichnis;
    erwarteNur(verzeichnis.schreibe("libpruefling.dylib", gepackt.bytes), "needed-libraries", "failed",
               "its linker left out the version GLIBC_ABI_DT_RELR");
}

TEST(Dateifaelle, ASymbolThatNobodyHasIsNamed) {
    erwarteNur(Pruefplugin(test_plugins::CallsAMissingFunction).pfad(), "undefined-symbols", "failed",
               "gibtEsNicht is provided by nobody");
}

TEST(Dateifaelle, AnotherResultTypeThanBoolIsFound) {
    const Dateilauf lauf = pruefe(test_plugins::ReturnsAnInt);
    // How the library treats such a result depends on how it was compiled.
    EXPECT_THAT(lauf.gruende.at("describes") + lauf.gruende.at("signatures"),
                HasSubstr("returns 42, which is no bool"));
}

TEST(Dateifaelle, EachDeclarationOfTypesThatTheLoaderRefusesFailsOneCheck) {
    erwarteNur(Pruefplugin(test_plugins::DeclaresTypeTwo).pfad(), "declares-type", "failed",
               "declares interface 2 instead of 1");
    erwarteNur(Pruefplugin(test_plugins::DeclaresNoType).pfad(), "declares-type", "failed",
               "declares nothing: append {1} to the list");
    erwarteNur(Pruefplugin(test_plugins::DeclaresTypeOneTwice).pfad(), "declares-type", "failed",
               "2 records (types 1, 1)");
}

TEST(Dateifaelle, AFileThatIsNoLibraryFailsTheFirstCheckAndIsSkippedByAllOthers) {
    const Verzeichnis verzeichnis;
    const std::string ganz = inhalt(test_plugins::Conforms);
    for (const std::string& text :
         {std::string("no library"), std::string(), ganz.substr(0, ganz.size() / 2)}) {
        const std::string pfad = verzeichnis.schreibe("libkaputt.dylib", text);
        const Dateilauf lauf = pruefe(pfad);
        EXPECT_EQ(lauf.auffaellige, (Auffaellige{{"file-format", "failed"}}));
        EXPECT_NE(lauf.gruende.at("file-format"), "");
        EXPECT_EQ(lauf.gruende.at("describes"), "builds on file-format");
    }
}

TEST(Dateifaelle, AFileThatIsNoLibraryFailsEachCheckThatIsAskedForByItself) {
    const Verzeichnis verzeichnis;
    const std::string pfad = verzeichnis.schreibe("libkaputt.dylib", "no library");
    for (const char* const name : {"describes", "entry-points", "overlaps"}) {
        const Dateilauf lauf = pruefe(pfad, {"--only", name});
        EXPECT_EQ(lauf.auffaellige, (Auffaellige{{name, "failed"}}));
        EXPECT_EQ(lauf.gruende.at(name), "keine ELF-Datei");
    }
}

TEST(Dateifaelle, ANameThatTheManagerPassesOverIsFound) {
    const std::map<const char*, const char*> namen{
        {"libpruefling.so", "has to end in .dylib"},
        {"libpruefling.dylib.bak", "has to end in .dylib"},
        {"libpruefling", "hidden, or has no suffix"},
        {".libpruefling.dylib", "hidden, or has no suffix"},
        {"libzelmak98.dylib", "block list"},
        {"LIBFRENDOLIN.DYLIB", "block list"},
        {"libpruefling.DYLIB", "is looked for as \"libpruefling.dylib\""}};
    for (const auto& [name, grund] : namen)
        erwarteNur(Pruefplugin(test_plugins::Conforms, "", name).pfad(), "file-name", "failed", grund);
}

TEST(Dateifaelle, APluginAloneOverlapsWithNobody) {
    const Pruefplugin plugin(test_plugins::Conforms);
    EXPECT_EQ(pruefe(plugin.pfad()).ergebnisse.at("overlaps"), "skipped");
    int ausgang = 0;
    const nlohmann::json json = pruefeAlsJson({plugin.pfad(), plugin.pfad()}, ausgang);
    EXPECT_EQ(json.at("files").size(), 1U) << "the same file twice is one";
}

TEST(Dateifaelle, TheOlderOfTwoPluginsThatServeTheSameIsWarned) {
    const nlohmann::json dateien = Nachbarn("beschreiben version 1.10", "beschreiben version 1.9").pruefe();
    const Dateilauf b = alsDateilauf(dateien.at(0)), a = alsDateilauf(dateien.at(1));
    EXPECT_EQ(a.auffaellige, Auffaellige());
    EXPECT_EQ(b.auffaellige, (Auffaellige{{"overlaps", "warning"}}));
    EXPECT_THAT(b.gruende.at("overlaps"),
                AllOf(HasSubstr(" and 2 more are served by "), HasSubstr("liba.dylib (version 1.10)")));
}

TEST(Dateifaelle, OfTwoPluginsOfTheSameVersionTheOneWithTheLaterNameFails) {
    const nlohmann::json dateien = Nachbarn("beschreiben version 2", "beschreiben version 2.0").pruefe();
    const Dateilauf b = alsDateilauf(dateien.at(0)), a = alsDateilauf(dateien.at(1));
    EXPECT_EQ(a.auffaellige, Auffaellige());
    EXPECT_EQ(b.auffaellige, (Auffaellige{{"overlaps", "failed"}}));
    EXPECT_THAT(b.gruende.at("overlaps"), HasSubstr("the order of the file names decides"));
}

TEST(Dateifaelle, OfTwoPluginsForTaxOfficesTheOneWithTheLaterNameIsWarned) {
    const nlohmann::json dateien = Nachbarn("beschreiben nurfinanzamt", "beschreiben version 9").pruefe();
    const Dateilauf b = alsDateilauf(dateien.at(0)), a = alsDateilauf(dateien.at(1));
    EXPECT_EQ(a.auffaellige, Auffaellige());
    EXPECT_EQ(b.auffaellige, (Auffaellige{{"overlaps", "warning"}}));
    EXPECT_THAT(b.gruende.at("overlaps"),
                AllOf(HasSubstr("tax offices is served by "), HasSubstr("first by its file")));
}

TEST(Dateifaelle, APluginThatCrashesIsNotLoadedBesideOthers) {
    for (const char* const auftrag : {"beschreiben absturz", "beschreiben ablehnung"}) {
        const nlohmann::json dateien = Nachbarn("", auftrag).pruefe();
        EXPECT_EQ(alsDateilauf(dateien.at(0)).ergebnisse.at("overlaps"), "skipped");
        EXPECT_EQ(alsDateilauf(dateien.at(1)).ergebnisse.at("overlaps"), "skipped");
    }
}
