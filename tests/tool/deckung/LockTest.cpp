// orvoplugin lock and verify, and diff with lock files.

#include "Aufruf.h"
#include "Heim.h"

#include "support/Verzeichnis.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

using namespace testing;
using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

namespace {

std::string lies(const std::string& pfad) {
    std::ifstream datei(pfad, std::ios::binary);
    return {std::istreambuf_iterator<char>(datei), {}};
}

/// Sums and sizes of test plugins, and versions of the tool, are not the same everywhere.
std::string ohneWechselndes(const std::string& text) {
    Json dokument = Json::parse(text);
    if (dokument.contains("made_by"))
        dokument["made_by"] = "@VERSIONS@";
    for (Json& datei : dokument["files"])
        for (Json* const seite : {&datei, &datei["before"], &datei["after"]})
            if (seite->contains("sha256") && !(*seite)["sha256"].is_null()) {
                (*seite)["sha256"] = std::string(64, '0');
                (*seite)["size"] = 0;
            }
    for (Json& datei : dokument["files"])
        if (!datei.contains("change")) {
            datei.erase("before");
            datei.erase("after");
        }
    return dokument.dump(2) + "\n";
}

class Lock : public Test {
protected:
    Lock() { ort_.legeAn("p"); }

    void lege(const std::string& name, const std::string& text, const char* bibliothek = ORVO_BESCHRIEBEN) {
        ort_.kopiere(bibliothek, name);
        ort_.schreibe(name + ".txt", text);
    }
    void legeBestand() {
        lege("p/libsteuer.dylib",
             "produktversion 16.1\nfileversion 160\ncheck 10 2008,2009\ncheck LSTB 2009\n");
        lege("p/unter/libimmer.dylib", "produktversion 1.0\ncheck 12 immer\nfinanzamt\n");
        lege("p/libkrank.dylib", "abgelehnt\n");
        ort_.schreibe("p/.versteckt", "hidden");
        fs::create_directory_symlink("unter", ort_.pfad("p/link"));
    }
    /// Another build of the same version: the loader does not look at what follows the last section.
    void baueNeu(const std::string& name) {
        std::ofstream(ort_.pfad(name), std::ios::binary | std::ios::app) << "another build";
    }
    Ergebnis rufe(const std::vector<std::string>& argumente) {
        const bool json = argumente.back() == "--json"; // it is English in every locale
        Ergebnis ergebnis = rufeTool(argumente, json ? kDeutsch : std::vector<std::string>{});
        ergebnis.ausgabe = ersetze(ergebnis.ausgabe, ort_.pfad(), "@DIR@");
        ergebnis.fehler = ersetze(ergebnis.fehler, ort_.pfad(), "@DIR@");
        return ergebnis;
    }
    /// Returns: the path of a lock file of the directory.
    std::string sperre(const std::string& name = "lock.json") {
        return ort_.schreibe(name, rufeTool({"lock", ort_.pfad("p")}).ausgabe);
    }
    Ergebnis pruefe(const std::string& liste, std::vector<std::string> mehr = {}) {
        mehr.insert(mehr.begin(), {"verify", liste, ort_.pfad("p")});
        return rufe(mehr);
    }
    Json pruefeAlsJson(const std::string& liste) { return Json::parse(pruefe(liste, {"--json"}).ausgabe); }
    /// The lock file with a change.
    std::string verdorben(const std::function<void(Json&)>& aendere) {
        Json liste = Json::parse(lies(sperre()));
        aendere(liste);
        return ort_.schreibe("falsch.json", liste.dump());
    }

    const Verzeichnis ort_;
};

} // namespace

TEST_F(Lock, ListsEveryFileWithItsContentAndItsKeys) {
    legeBestand();
    const Ergebnis ergebnis = rufe({"lock", ort_.pfad("p")});
    EXPECT_EQ(ergebnis.ausgang, 1) << "a plugin is refused";
    EXPECT_EQ(vergleicheMitMuster("lock.json", ohneWechselndes(ergebnis.ausgabe)), "");
    EXPECT_EQ(rufe({"lock", ort_.pfad("p"), "--json"}).ausgabe, ergebnis.ausgabe)
        << "in German, too: a lock file is English in every locale";
    EXPECT_EQ(rufe({"lock", "--dir", ort_.pfad("p")}).ausgabe, ergebnis.ausgabe)
        << "the same bytes each time";
}
TEST_F(Lock, TheSumIsThatOfTheFile) {
    ort_.schreibe("p/a.txt", "abc");
    ort_.schreibe("p/b.txt", std::string(1'000'000, 'a')); // read in several pieces
    const Json dateien = Json::parse(lies(sperre()))["files"];
    EXPECT_EQ(dateien[0]["size"], 3);
    EXPECT_EQ(dateien[0]["sha256"], "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(dateien[1]["size"], 1'000'000);
    EXPECT_EQ(dateien[1]["sha256"], "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}
TEST_F(Lock, ADirectoryThatIsAsLockedHasNoDifference) {
    legeBestand();
    const Ergebnis ergebnis = pruefe(sperre());
    EXPECT_EQ(ergebnis.ausgang, 0) << ergebnis.ausgabe;
    EXPECT_THAT(ergebnis.ausgabe, EndsWith("8 files as locked; changed: 0, added: 0, lost: 0\n"));
}
TEST_F(Lock, SaysWhatWasChangedAddedAndLost) {
    legeBestand();
    const std::string liste = sperre();
    baueNeu("p/libsteuer.dylib");
    ort_.schreibe("p/libsteuer.dylib.txt", "another text");
    fs::remove(ort_.pfad("p/unter/libimmer.dylib"));
    lege("p/libneu.dylib", "tu initialize segv\n", ORVO_SCHAEDLING);
    const Ergebnis text = pruefe(liste);
    EXPECT_EQ(text.ausgang, 6) << "and no code has run";
    EXPECT_EQ(vergleicheMitMuster("verify.txt", text.ausgabe), "");
    const Ergebnis alsJson = pruefe(liste, {"--json"});
    EXPECT_EQ(alsJson.ausgang, 6);
    EXPECT_EQ(vergleicheMitMuster("verify.json", ohneWechselndes(alsJson.ausgabe)), "");
    EXPECT_EQ(pruefe(liste, {"--quiet"}).ausgabe, "");
}
TEST_F(Lock, DescriptionsTellVersionsAndKeysWithoutRunningCode) {
    const std::string pfad = ort_.pfad("p/libx.dylib");
    lege("p/libx.dylib", "produktversion 1\nfileversion 2\ncheck 10 2009\n");
    ASSERT_EQ(rufe({"describe", pfad}).ausgang, 0);
    const std::string liste = sperre();
    baueNeu("p/libx.dylib");
    const Json datei = pruefeAlsJson(liste)["files"][0];
    EXPECT_EQ(datei["after"]["product_version"], datei["before"]["product_version"]);
    EXPECT_EQ(datei["keys_lost"], Json::array());
    EXPECT_EQ(datei["keys_gained"], Json::array());
    EXPECT_THAT(pruefe(liste).ausgabe, HasSubstr("other content under the same version"));
    fs::remove(pfad);
    EXPECT_THAT(pruefeAlsJson(liste)["files"][0]["keys_lost"], Not(IsEmpty()));
}
TEST_F(Lock, NamesThatAreNotUtf8AreNotMixedUp) {
    ort_.schreibe("p/\xC3\xB6.txt", "a");
    const std::string liste = sperre();
    EXPECT_EQ(pruefe(liste).ausgang, 0);
    fs::rename(ort_.pfad("p/\xC3\xB6.txt"), ort_.pfad("p/\xF6.txt"));
    EXPECT_EQ(pruefe(liste).ausgang, 6) << "the two names look the same";
    const Ergebnis ergebnis = rufe({"lock", ort_.pfad("p")});
    EXPECT_EQ(ergebnis.ausgang, 3);
    EXPECT_THAT(ergebnis.fehler, HasSubstr("its name is not UTF-8"));
}
TEST_F(Lock, ALockFileInTheDirectoryIsNoneOfItsFiles) {
    legeBestand();
    const std::string liste = ort_.pfad("p/plugins.lock.json");
    ::rufe("/bin/sh", {"-c", "exec \"$1\" lock \"$2\" > \"$3\"", "sh", ORVO_TOOL, ort_.pfad("p"), liste});
    EXPECT_THAT(lies(liste), Not(HasSubstr("plugins.lock.json")));
    EXPECT_EQ(pruefe(liste).ausgang, 0);
}
TEST_F(Lock, WhatCannotBeReadIsNotLocked) {
    ort_.schreibe("p/a.txt", "abc");
    ort_.legeAn("p/unter");
    const std::string liste = sperre();
    if (geteuid() == 0)
        GTEST_SKIP() << "root can read everything";
    fs::permissions(ort_.pfad("p/unter"), fs::perms::none);
    const Ergebnis ergebnis = rufe({"lock", ort_.pfad("p")});
    const Ergebnis geprueft = pruefe(liste);
    fs::permissions(ort_.pfad("p/unter"), fs::perms::owner_all);
    EXPECT_EQ(ergebnis.ausgang, 3);
    EXPECT_EQ(ergebnis.ausgabe, "");
    EXPECT_EQ(geprueft.ausgang, 3);
}
TEST_F(Lock, TheDirectoryIsNamedOnce) {
    EXPECT_EQ(rufe({"lock", ort_.pfad("p"), "--home", ort_.pfad()}).ausgang, 2);
    EXPECT_EQ(rufe({"verify", sperre(), ort_.pfad("p"), "--dir", ort_.pfad("p")}).ausgang, 2);
    EXPECT_EQ(rufe({"verify"}).ausgang, 2);
}

// --- Lock files that somebody else has written ---

TEST_F(Lock, AnInvalidLockFileIsRefusedAndTheReasonIsSaid) {
    legeBestand();
    const auto erster = [](const char* name, const Json& wert) {
        return [=](Json& liste) {
            for (Json& datei : liste["files"])
                if (datei["state"] == "loaded") {
                    datei[name] = wert;
                    return;
                }
        };
    };
    const auto schluessel = [](const char* name, const Json& wert) {
        return [=](Json& liste) {
            for (Json& datei : liste["files"])
                if (!datei["keys"].empty())
                    datei["keys"][0][name] = wert;
        };
    };
    const std::vector<std::pair<std::function<void(Json&)>, const char*>> faelle{
        {[](Json& l) { l = Json::array(); }, "is no lock file"},
        {[](Json& l) { l.erase("format"); }, "'format' not found"},
        {[](Json& l) { l["format_version"] = 2; }, "no \"orvoplugin-lock\" of version 1"},
        {[](Json& l) { l["files"] = 1; }, "\"files\" is no list"},
        {[](Json& l) { l["files"].push_back(nullptr); }, "files[8]: "},
        {[](Json& l) { l["files"].push_back(l["files"][0]); }, "files[8]: it is there twice: .versteckt"},
        {erster("path", "../libx.dylib"), "leads elsewhere: ../libx.dylib"},
        {erster("path", "a/../../libx.dylib"), "leads elsewhere"},
        {erster("path", "./libx.dylib"), "leads elsewhere"},
        {erster("path", "/libx.dylib"), "leads elsewhere"},
        {erster("path", "a/"), "leads elsewhere"},
        {erster("path", ""), "leads elsewhere"},
        {erster("path", std::string("a\0b", 3)), "leads elsewhere"},
        {erster("path", 1), "must be string"},
        {erster("size", "1"), "must be number"},
        {erster("sha256", "\x1b[2J"), "this is no SHA-256: \\x1b[2J"},
        {erster("state", "dancing"), "there is no state dancing"},
        {erster("product_version", nullptr), "must be string"},
        {erster("file_version", 1), "must be string"},
        {erster("resident", "no"), "must be boolean"},
        {erster("keys", Json::object()), "\"keys\" is no list"},
        {schluessel("type", "CHECK"), "must be number"},
        {schluessel("year", "2009"), "must be number"},
        {schluessel("sub_case_type", 1), "must be string"},
        {[](Json& l) {
             l["files"][0]["keys"] = l["files"][3]["keys"];
             l["files"][0]["keys"].push_back({{"type", 1}});
         },
         "is no plugin"},
    };
    for (const auto& [aendere, grund] : faelle) {
        const Ergebnis ergebnis = pruefe(verdorben(aendere));
        EXPECT_EQ(ergebnis.ausgang, 3) << grund;
        EXPECT_THAT(ergebnis.fehler,
                    AllOf(HasSubstr("@DIR@/falsch.json is no lock file: "), HasSubstr(grund)));
    }
}
TEST_F(Lock, WhatIsNoLockFileAtAllIsRefused) {
    ort_.legeAn("ordner");
    const std::string tief(1 << 20, '[');
    for (const auto& [inhalt, grund] :
         std::vector<std::pair<std::string, const char*>>{{"", "parse error"},
                                                          {"{", "parse error"},
                                                          {std::string("\0\xFF", 2), "parse error"},
                                                          {tief, "nested too deeply"}}) {
        const Ergebnis ergebnis = pruefe(ort_.schreibe("falsch.json", inhalt));
        EXPECT_EQ(ergebnis.ausgang, 3);
        EXPECT_THAT(ergebnis.fehler, HasSubstr(grund));
    }
    EXPECT_THAT(pruefe(ort_.pfad("ordner")).fehler, HasSubstr("Is a directory"));
    EXPECT_THAT(pruefe(ort_.pfad("fehlt")).fehler, HasSubstr("No such file"));
    EXPECT_THAT(pruefe("/dev/zero").fehler, HasSubstr("too large"));
}
// --- diff ---

TEST_F(Lock, DiffSeesAnotherBuildOfTheSameVersion) {
    lege("p/liba.dylib", "produktversion 1\ncheck 10 2009\n");
    lege("q/liba.dylib", "produktversion 1\ncheck 10 2009\n");
    baueNeu("q/liba.dylib");
    const Ergebnis ergebnis = rufe({"diff", ort_.pfad("p"), ort_.pfad("q")});
    EXPECT_EQ(ergebnis.ausgang, 0) << "as another version is no finding";
    EXPECT_THAT(ergebnis.ausgabe, HasSubstr("Files with other content under the same version: 1\n"));
    const Json dokument = Json::parse(rufe({"diff", ort_.pfad("p"), ort_.pfad("q"), "--json"}).ausgabe);
    EXPECT_EQ(dokument["files"][0]["change"], "content_changed");
    EXPECT_NE(dokument["files"][0]["before"]["sha256"], dokument["files"][0]["after"]["sha256"]);
    EXPECT_EQ(dokument["totals"]["changes"], 1);
}
TEST_F(Lock, DiffFindsNoDifferenceBetweenADirectoryAndItsLockFile) {
    legeBestand();
    const std::string liste = sperre();
    const std::string ordner = ort_.pfad("p");
    for (const auto& [a, b] : {std::pair(liste, ordner), std::pair(ordner, liste), std::pair(liste, liste)}) {
        const Ergebnis ergebnis = rufe({"diff", a, b});
        EXPECT_EQ(ergebnis.ausgang, 0) << ergebnis.ausgabe << ergebnis.fehler;
        EXPECT_THAT(ergebnis.ausgabe,
                    AllOf(HasSubstr("A lock file does not say"), EndsWith("No difference.\n")));
    }
}
TEST_F(Lock, DiffComparesKeysAndVersionsWithALockFile) {
    legeBestand();
    const std::string liste = sperre();
    lege("p/libsteuer.dylib", "produktversion 17.1\ncheck 10 2009\ncheck 12 2010\n");
    EXPECT_EQ(rufe({"diff", liste, ort_.pfad("p")}).ausgang, 1);
    const Ergebnis alsJson = rufe({"diff", liste, ort_.pfad("p"), "--json"});
    EXPECT_EQ(vergleicheMitMuster("diff-lock.json", ohneWechselndes(alsJson.ausgabe)), "");
}
TEST_F(Lock, DiffRefusesALockFileWhereItNeedsDirectories) {
    const std::string liste = sperre();
    for (const char* const option : {"--merge", "--html=x.html"}) {
        const Ergebnis ergebnis = rufe({"diff", ort_.pfad("p"), liste, option});
        EXPECT_EQ(ergebnis.ausgang, 2);
        EXPECT_THAT(ergebnis.fehler, HasSubstr("two directories only, and @DIR@/lock.json is a file"));
    }
    EXPECT_EQ(rufe({"diff", ort_.schreibe("falsch.json", "{}"), ort_.pfad("p")}).ausgang, 3);
}
