// Calls that fail outside a plugin's life: where the process is, where the library lies, and what a log line needs.

#include "Versager.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/Logger.h>
#include <orvoutil/ObjectLifetimeManager.h>
#include <orvoutil/PathUtil.h>
#include <orvoutil/SharedLib.h>
#include <orvoutil/StreamLogSink.h>

#include "TestPlugins.h"
#include "support/Mitschnitt.h"
#include "support/Verzeichnis.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <thread>

namespace {

namespace fs = std::filesystem;
using namespace orvo::orvoutil;

/// Does `tu` once for each call that can fail so, and once without a failure. Returns: how many failed.
template <class Tu>
int fuerJedesVersagen(Versager::Weise weise, Tu&& tu) {
    for (int n = 0;; ++n) {
        const Versager versager(weise, n);
        tu();
        if (Versager::ruf().empty() || testing::Test::HasFailure())
            return n;
    }
}

/// A process that is started so only says its home.
[[maybe_unused]] const bool wirdGeprueft = [] {
    if (!std::getenv(Versager::kBeimLaden))
        return true;
    std::printf("%s", Einstellungen().basisHomeDir().c_str());
    std::exit(0);
}();

/// The home in a process in which that function fails while the libraries are loaded.
std::string homeEinesProzesses(const char* versagend) {
    setenv(Versager::kBeimLaden, versagend, 1);
    FILE* const kind = popen(("'" + fs::read_symlink("/proc/self/exe").string() + "'").c_str(), "r");
    unsetenv(Versager::kBeimLaden);
    std::string text;
    for (int c; kind && (c = std::fgetc(kind)) != EOF;)
        text += static_cast<char>(c);
    return pclose(kind) == 0 ? text : "the process failed";
}

} // namespace

TEST(EinzelnesVersagen, OfTheCurrentDirectorysNameLeavesARelativeHomeUsable) {
    const Verzeichnis verzeichnis;
    verzeichnis.kopiere(test_plugins::OffersSubcase1, "heim/plugins/liba.dylib");
    const fs::path hier = fs::current_path();
    fs::current_path(verzeichnis.pfad());
    Einstellungen().setze("basis.home_dir", "heim");
    for (const int fehler : {EACCES, ENOENT, ENOMEM, ERANGE}) {
        OrvoPluginManager& manager = *OrvoPluginManager::getInstanz(nullptr);
        fuerJedesVersagen({Versager::FEHLER, fehler}, [&] {
            manager.initPluginSuchPfad();
            EXPECT_EQ(manager.getPluginSuchPfad(),
                      Versager::ruf() == "getcwd" ? "heim/plugins" : verzeichnis.pfad("heim/plugins"));
        });
        EXPECT_TRUE(Versager::gabEs("getcwd"));
        manager.setPluginSuchPfad("heim/plugins");
        manager.reload();
        EXPECT_EQ(manager.getRegistriertePlugins().size(), 1u);
    }
    ObjectLifetimeManager::instance().destroyAll();
    Einstellungen().setze("basis.home_dir", "");
    fs::current_path(hier);
}

TEST(EinzelnesVersagen, OfTheQuestionForALibraryHoldsNoAddress) {
    SharedLib bibliothek(test_plugins::OffersSubcase1, true);
    const void* const adresse = bibliothek.getSymbol("orvo_plugin_initialize");
    ASSERT_NE(adresse, nullptr);
    const int versagen = fuerJedesVersagen({Versager::AUSFALL}, [&] {
        const bool enthalten = bibliothek.enthaelt(adresse);
        EXPECT_EQ(enthalten, Versager::ruf().empty()) << Versager::ruf();
    });
    EXPECT_EQ(versagen, 3);
    EXPECT_TRUE(Versager::gabEs("dlinfo"));
}

TEST(EinzelnesVersagen, OfTheLocalTimeKeepsTheLine) {
    std::ostringstream ausgabe;
    Logger::setSink(std::make_shared<StreamLogSink>(ausgabe));
    const auto warne = [] { Logger::getInstance("orvo.probe")->warn("eine Warnung"); };
    warne(); // makes what is kept
    fuerJedesVersagen({Versager::FEHLER, EOVERFLOW}, [&] {
        ausgabe.str("");
        warne();
        EXPECT_NE(ausgabe.str().find(" WARN  orvo.probe: eine Warnung\n"), std::string::npos)
            << ausgabe.str();
    });
    Logger::setSink(nullptr);
    EXPECT_TRUE(Versager::gabEs("localtime_r"));
}

// Each thread keeps an entry for its lines.
TEST(EinzelnesVersagen, OfAThreadsMemoryKeepsTheLine) {
    const Mitschnitt mitschnitt;
    const auto warne = [] { Logger::getInstance("orvo.probe")->warn("eine Warnung"); };
    warne();
    for (const int fehler : {ENOMEM, EINVAL})
        std::thread([&] { EXPECT_EQ(fuerJedesVersagen({Versager::FEHLER, fehler}, warne), 1); }).join();
    EXPECT_TRUE(Versager::gabEs("pthread_setspecific"));
    EXPECT_EQ(mitschnitt.anzahl("W eine Warnung"), 5);
}

// It is made once, so nothing fails if the process has logged before.
TEST(EinzelnesVersagen, OfTheKeyOfThatMemoryKeepsTheLine) {
    const Mitschnitt mitschnitt;
    const int versagen = fuerJedesVersagen({Versager::FEHLER, EAGAIN},
                                           [] { Logger::getInstance("orvo.probe")->warn("eine Warnung"); });
    EXPECT_EQ(mitschnitt.anzahl("W eine Warnung"), versagen + 1);
}

TEST(EinzelnesVersagen, OfTheSearchForItsOwnFileNeverMakesTheCurrentDirectoryTheHome) {
    const std::string heimat = Einstellungen().basisHomeDir();
    EXPECT_NE(heimat, "/");
    EXPECT_EQ(homeEinesProzesses("nichts"), heimat);
    EXPECT_EQ(homeEinesProzesses("dladdr"), "/");
}
