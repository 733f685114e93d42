// Why a file is refused, and where its code ended the process: each cause has its own code and advice.

#include "Heim.h"

#include "TestPlugins.h"
#include "kern/Gruende.h"
#include "kern/Sammler.h"
#include "support/Sanitizer.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>

using namespace testing;
using namespace werkzeug;
using Dokument = nlohmann::json;

namespace {

class Ursachen : public Test {
protected:
    /// The reason of the one file.
    Dokument grund(const std::vector<std::string>& weitere = {}) const {
        std::vector<std::string> argumente{"list", "--json"};
        argumente.insert(argumente.end(), weitere.begin(), weitere.end());
        return Dokument::parse(heim_.rufe(argumente).ausgabe)["files"][0]["reason"];
    }
    /// "code/cause" of the file, whose advice has to be its own.
    std::string kennung(const std::vector<std::string>& weitere = {}) {
        const Dokument dieser = grund(weitere);
        const std::string ursache = dieser["cause"].is_null() ? "" : dieser["cause"].get<std::string>();
        EXPECT_TRUE(raete_.emplace(dieser["advice"].get<std::string>()).second) << ursache;
        return dieser["code"].get<std::string>() + "/" + ursache;
    }
    std::string schreibe(const std::string& inhalt) const {
        return heim_.verzeichnis.schreibe("plugins/liba.dylib", inhalt);
    }
    /// Changes a byte of a good plugin.
    void verfaelsche(std::size_t stelle, char byte) const {
        heim_.lege(test_plugins::DescribedByFile, "liba.dylib");
        std::fstream(heim_.plugins() + "/liba.dylib", std::ios::in | std::ios::out | std::ios::binary)
            .seekp(static_cast<std::streamoff>(stelle))
            .put(byte);
    }
    Dokument schritt(const std::string& untat) const {
        heim_.lege(test_plugins::DoesHarm, "liba.dylib", untat);
        return grund()["step"];
    }

    const Heim heim_;
    std::set<std::string> raete_;
};

constexpr std::size_t kArt = 16, kMaschine = 18; // in the file's header

} // namespace

TEST(Gruende, EveryValueHasACodeOfItsOwn) {
    std::set<std::string> codes;
    const auto einmalig = [&](const char* code) { return *code && codes.insert(code).second; };
    for (auto i = static_cast<int>(Ursache::RECHTE); i <= static_cast<int>(Ursache::BESCHAEDIGTE_HILFE); ++i)
        EXPECT_TRUE(einmalig(code(static_cast<Ursache>(i)))) << i;
    codes.clear();
    for (auto i = static_cast<int>(Schritt::OEFFNEN); i <= static_cast<int>(Schritt::DANACH); ++i)
        EXPECT_TRUE(einmalig(code(static_cast<Schritt>(i)))) << i;
    codes.clear();
    for (int i = 0; i <= static_cast<int>(ServiceFakt::Art::ZEIT); ++i) {
        ErweiterungFakt erweiterung;
        erweiterung.service.art = static_cast<ServiceFakt::Art>(i);
        EXPECT_TRUE(einmalig(servicecode(erweiterung))) << i;
    }
    codes.clear();
    for (int i = 0; i <= static_cast<int>(Zustand::ZEIT); ++i)
        EXPECT_TRUE(einmalig(code(static_cast<Zustand>(i)))) << i;
}

TEST_F(Ursachen, AFileThatIsNoGoodLibraryIsToldApart) {
    schreibe("kein Plugin");
    EXPECT_EQ(kennung(), "file_not_loadable/format");
    verfaelsche(kMaschine, 3);
    EXPECT_EQ(kennung(), "file_not_loadable/machine");
    verfaelsche(kArt, 1); // an object file
    EXPECT_EQ(kennung(), "file_not_loadable/program");
    const std::string ganz = heim_.lege(test_plugins::DescribedByFile, "liba.dylib");
    std::filesystem::resize_file(ganz, std::filesystem::file_size(ganz) / 3);
    EXPECT_EQ(kennung(), "file_not_loadable/cut");
    heim_.lege(NEEDS_ANOTHER_PLUGIN_RELEASE, "liba.dylib");
    EXPECT_EQ(kennung(), "file_not_loadable/release");
    heim_.lege(test_plugins::NeedsALibraryBesideIt, "liba.dylib");
    const std::string hilfe = heim_.verzeichnis.kopiere(test_plugins::hilft, "plugins/libhilft.so");
    std::filesystem::resize_file(hilfe, std::filesystem::file_size(hilfe) / 3);
    EXPECT_EQ(kennung(), "file_not_loadable/needed_library_damaged");
}

TEST_F(Ursachen, AFileThatMayNotBeReadIsToldApart) {
    const std::string datei = heim_.lege(test_plugins::DescribedByFile, "liba.dylib");
    chmod(datei.c_str(), 0);
    chmod(heim_.verzeichnis.pfad().c_str(), 0755);
    constexpr uid_t kNiemand = 65534;
    const bool istRoot = geteuid() == 0; // who may read everything
    ASSERT_EQ(istRoot ? seteuid(kNiemand) : 0, 0);
    Optionen optionen;
    optionen.home = heim_.verzeichnis.pfad();
    optionen.quiet = true;
    const Bestand bestand = sammle(optionen);
    ASSERT_EQ(istRoot ? seteuid(0) : 0, 0);
    ASSERT_EQ(bestand.dateien.size(), 1u);
    EXPECT_STREQ(code(bestand.dateien[0].ursache), "permission");
}

TEST_F(Ursachen, AnUpperCaseSuffixIsNamed) {
    heim_.lege(test_plugins::DescribedByFile, "liba.DYLIB");
    EXPECT_EQ(kennung(), "file_not_loadable/suffix_case");
}

TEST_F(Ursachen, WhatTheLoaderMissesIsToldApart) {
    heim_.lege(test_plugins::NeedsAMissingLibrary, "liba.dylib");
    EXPECT_EQ(kennung(), "loader_refused/needed_library");
    heim_.lege(test_plugins::CallsAMissingFunction, "liba.dylib");
    EXPECT_EQ(kennung(), "loader_refused/symbol");
}

TEST_F(Ursachen, ADescriptionThatIsMissingOrDamagedIsToldApart) {
    heim_.lege(test_plugins::DescribedByFile, "liba.dylib");
    EXPECT_EQ(kennung({"--described"}), "not_described/absent");
}

TEST_F(Ursachen, TheStepOfACrashIsNamed) {
    EXPECT_EQ(schritt("tu start segv\n"), "open");
    EXPECT_EQ(schritt("tu types abort\n"), "types");
    EXPECT_EQ(schritt("tu initialize exit 3\n"), "describe");
    EXPECT_EQ(schritt("tu ende segv\n"), "close");
}

TEST_F(Ursachen, TheStepOfAHangIsNamed) {
    heim_.lege(test_plugins::DoesHarm, "liba.dylib", "tu types haenge\n");
    EXPECT_EQ(grund({"--timeout", "0.5"})["step"], "types");
}

TEST_F(Ursachen, AThreadLeftBehindIsNamedAsTheCause) {
#ifdef ORVO_ADDRESS_SANITIZER
    GTEST_SKIP() << "the sanitizer handles the thread's signal first";
#endif
    heim_.lege(test_plugins::DoesHarm, "liba.dylib", "tu initialize faden\n");
    heim_.lege(test_plugins::DoesHarm, "libb.dylib", "tu initialize schlafe 300\n"); // it crashes meanwhile
    const Dokument dieser = grund();
    EXPECT_EQ(dieser["cause"], "thread");
    EXPECT_THAT(dieser["step"], AnyOf("close", "after"));
}

TEST_F(Ursachen, AProcessThatTheSystemEndsIsNamed) {
    heim_.lege(test_plugins::DoesHarm, "liba.dylib", "tu initialize kill\n");
    EXPECT_EQ(grund()["cause"], "killed");
}

TEST_F(Ursachen, TheTextHasCodeCauseMeaningAndTheLibrarysWords) {
    schreibe("kein Plugin");
    EXPECT_THAT(heim_.rufe({"list"}).ausgabe,
                AllOf(HasSubstr("file_not_loadable/format: The file is no library of this system. ["),
                      HasSubstr("keine ELF-Datei")));
}
