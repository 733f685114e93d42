// Faults in the depth of the plugin directory: more levels than a small stack has room for, and paths that are too long
// for the system.

#include "faults/Stoerfall.h"
#include "support/Sanitizer.h"

#include <orvoplugin/plugin/OrvoPluginManager.h>

#include "TestPlugins.h"

#include <pthread.h>

#include <climits>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

/// Runs a function on a thread with a stack of 256 KiB.
void aufKleinemStapel(const std::function<void()>& was) {
#ifdef ORVO_ADDRESS_SANITIZER
    constexpr std::size_t kStapel = std::size_t{1} << 20; // its frames are larger
#else
    constexpr std::size_t kStapel = std::size_t{256} << 10;
#endif
    pthread_attr_t art;
    ASSERT_EQ(pthread_attr_init(&art), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&art, kStapel), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(
                  &thread, &art,
                  [](void* daten) -> void* {
                      (*static_cast<const std::function<void()>*>(daten))();
                      return nullptr;
                  },
                  const_cast<std::function<void()>*>(&was)),
              0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&art);
}

class TiefeStoerfall : public Stoerfall {
protected:
    ~TiefeStoerfall() override {
        // From below: the library's own removal keeps every level open, of which there are too many.
        for (std::string pfad = tiefstes_; pfad.size() > plugin("").size(); pfad.resize(pfad.rfind('/'))) {
            for (const auto& eintrag : fs::directory_iterator(pfad))
                fs::remove(eintrag);
            fs::remove(pfad);
        }
    }

    /// Makes so many directories, one in the other. Returns: the path of the last one, below the plugin directory.
    std::string grabe(int ebenen) {
        std::string tief;
        for (int i = 0; i < ebenen; ++i) {
            tief += tief.empty() ? "d" : "/d";
            fs::create_directory(plugin(tief));
        }
        tiefstes_ = plugin(tief);
        return tief;
    }

    /// A directory that a chain of others leads to, all with long names. Returns: its path, of that length.
    std::string lange(const std::string& anfang, std::size_t laenge) const {
        constexpr std::size_t kName = 200;
        std::string pfad = anfang;
        while (pfad.size() < laenge) {
            const std::size_t rest = laenge - pfad.size() - 1;
            pfad += "/" + std::string(rest > 2 * kName ? kName : std::min(rest, kName), 'l');
            if (laenge - pfad.size() == 1)
                pfad += 'l';
        }
        fs::create_directories(pfad);
        return pfad;
    }

private:
    std::string tiefstes_;
};

} // namespace

TEST_F(TiefeStoerfall, AThousandDirectoryLevelsAreWalkedOnASmallStack) {
    const std::string tief = grabe(1000) + "/libmmm.dylib";
    schlechtes = lege(test_plugins::DescribedByFile, tief, kEinCheck);
    aufKleinemStapel([&] {
        erwarteAusgang(true, {"libaaa.dylib", "libzzz.dylib", tief}, {}, {});
        erwarteBrauchbar(kDazwischen, schlechtes);
    });
}

TEST_F(TiefeStoerfall, OfPathsThatAreTooLongEachIsNamedOnceAndTheOthersAreLoaded) {
    constexpr std::size_t kLaengster = PATH_MAX - 1;
    const std::string ordner = lange(plugin("tief"), kLaengster - 30);
    const std::string letzter = ordner + "/lib" + std::string(20, 'm') + ".dylib";
    const std::string zuLanger = ordner + "/lib" + std::string(21, 'n') + ".dylib";
    ASSERT_EQ(letzter.size(), kLaengster);
    fs::copy_file(test_plugins::DescribedByFile, letzter);
    fs::copy_file(test_plugins::DescribedByFile, ordner + "/n");
    const fs::path hier = fs::current_path();
    fs::current_path(ordner);
    fs::rename("n", fs::path(zuLanger).filename());
    // Directories below it, which no path reaches, with a plugin in the last one.
    const std::string unerreichbar = "unerreichbares Verzeichnis, unten";
    lange(home.pfad("unten"), 2000);
    home.kopiere(test_plugins::DescribedByFile, "unten/libooo.dylib");
    fs::rename(home.pfad("unten"), unerreichbar);
    aufKleinemStapel([&] {
        erwarteAusgang(
            false, {"libaaa.dylib", "libzzz.dylib", letzter.substr(plugin("").size())},
            {ablehnung("BIBLIOTHEK_FEHLER: " + zuLanger +
                       ": kann nicht ge\xF6"
                       "ffnet werden: File name too long")},
            {"W Verzeichnis nicht lesbar: " + ordner + "/" + unerreichbar + ": File name too long"});
    });
    fs::rename(unerreichbar, home.pfad("unten"));
    fs::remove(fs::path(zuLanger).filename());
    fs::current_path(hier);
}
