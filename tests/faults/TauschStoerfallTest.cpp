// Faults that occur between the library's look at a file and the loader's opening of it.
//
// Nothing can be done against them, so these tests show what then happens, as the page on security says it.

#include "faults/Stoerfall.h"
#include "support/Sanitizer.h"

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

#include "TestPlugins.h"

// A sanitizer replaces the loader's functions and handles the signals itself.
#if defined(__GLIBC__) && !defined(ORVO_ADDRESS_SANITIZER)

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <thread>
#include <utility>

namespace fs = std::filesystem;

namespace {

std::string getauschte;        // the file that is about to be opened
std::function<void()> tausche; // runs before that, once

} // namespace

/// The libraries call this one instead of the loader's.
extern "C" void* dlopen(const char* pfad, int weise) {
    static const auto oeffne = reinterpret_cast<void* (*)(const char*, int)>(dlsym(RTLD_NEXT, "dlopen"));
    if (pfad && tausche && pfad == getauschte)
        std::exchange(tausche, nullptr)();
    return oeffne(pfad, weise);
}

namespace {

class TauschStoerfall : public Stoerfall {
protected:
    /// Loads with a healthy plugin in the bad one's place, which is removed when the loader is about to open it.
    bool ladeMit(const std::function<void()>& tat) {
        legeSchlechtes(test_plugins::DescribedByFile, kEinCheck);
        getauschte = schlechtes;
        tausche = [&] {
            fs::remove(schlechtes);
            tat();
        };
        const bool erfolg = starte();
        EXPECT_FALSE(tausche) << "the file was never opened";
        return erfolg;
    }

    void erwarteVomLaderAbgelehnt(const std::function<void()>& tat, const std::string& grund) {
        EXPECT_FALSE(ladeMit(tat));
        EXPECT_EQ(ablehnungen(), Zeilen{ablehnung("BIBLIOTHEK_FEHLER: " + schlechtes + ": " + grund)});
        EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libzzz.dylib"}));
        erwarteSpurlos();
        erwarteHeileBrauchbar();
    }
};

} // namespace

TEST_F(TauschStoerfall, AFileThatIsGoneIsRefusedByTheLoader) {
    erwarteVomLaderAbgelehnt([] {}, "cannot open shared object file: No such file or directory");
}

TEST_F(TauschStoerfall, ADirectoryIsRefusedByTheLoader) {
    erwarteVomLaderAbgelehnt([&] { home.legeAn("plugins/libmmm.dylib"); },
                             "cannot read file data: Is a directory");
}

TEST_F(TauschStoerfall, ATextIsRefusedByTheLoader) {
    erwarteVomLaderAbgelehnt([&] { home.schreibe("plugins/libmmm.dylib", std::string(5000, 'x')); },
                             "invalid ELF header");
}

TEST_F(TauschStoerfall, AnotherPluginIsLoaded) {
    EXPECT_TRUE(ladeMit([&] {
        legeSchlechtes(test_plugins::DescribedByFile, "produktversion 2.0\nloeschen\ncheck 50 2009\n");
    }));
    ASSERT_NE(geladenes(schlechtes), nullptr);
    EXPECT_EQ(geladenes(schlechtes)->getProduktVersion(), "2.0");
    erwarteBrauchbar(kDazwischen, schlechtes);
}

TEST_F(TauschStoerfall, TheLoaderWaitsForTheWriterOfAFifo) {
    std::thread schreiber;
    erwarteVomLaderAbgelehnt(
        [&] {
            ASSERT_EQ(mkfifo(schlechtes.c_str(), 0600), 0);
            schreiber = std::thread([this] { // its `open` and the loader's wait for each other
                close(open(schlechtes.c_str(), O_WRONLY | O_CLOEXEC));
            });
        },
        "file too short");
    schreiber.join();
}

TEST_F(TauschStoerfall, AFileThatIsCutEndsTheProcess) {
    const auto kuerze = [&] {
        legeSchlechtes(test_plugins::DescribedByFile);
        fs::resize_file(schlechtes, 8192); // its headers
    };
    EXPECT_EXIT(ladeMit(kuerze), testing::KilledBySignal(SIGBUS), "");
}

TEST_F(TauschStoerfall, AFileThatIsCutInPlaceWhileItIsOpenEndsTheProcess) {
    legeSchlechtes(test_plugins::DescribedByFile, kEinCheck);
    ASSERT_TRUE(starte());
    const auto kuerze = [&] {
        auto* const service = finde(kDazwischen)->holeService();
        fs::resize_file(schlechtes, 0);
        finde(kDazwischen)->release(service); // runs its destructor
    };
    EXPECT_EXIT(kuerze(), testing::KilledBySignal(SIGBUS), "");
}

#endif
