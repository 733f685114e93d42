// Loads, uses, releases and reloads plugins repeatedly, and checks the process's resources.
//
//     soak [CYCLES]
//
// Each cycle looks up and uses a service of a plugin, checks that its library is opened and closed, and reloads: every
// other time by changing the home directory, which swaps the set. Each set has healthy plugins and files that are
// refused.

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>

#include "TestPlugins.h"
#include "support/Prozess.h"
#include "support/Verzeichnis.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>

namespace {

struct Stand {
    long speicher;    // resident memory in KiB
    int abbildungen;  // entries of the memory map
    int deskriptoren; // open files
};

Stand jetzt() {
    long seiten = 0, residente = 0;
    std::ifstream("/proc/self/statm") >> seiten >> residente;
    std::ifstream karte("/proc/self/maps");
    const auto zeilen =
        std::count(std::istreambuf_iterator<char>(karte), std::istreambuf_iterator<char>(), '\n');
    return {residente * (sysconf(_SC_PAGESIZE) / 1024), static_cast<int>(zeilen), offeneDeskriptoren()};
}

void legeAus(const Verzeichnis& home, const std::string& version) {
    for (const char* const name : {"plugins/libeins.dylib", "plugins/unter/libzwei.dylib"}) {
        home.kopiere(test_plugins::DescribedByFile, name);
        home.schreibe(std::string(name) + ".txt",
                      "produktversion " + version + "\nloeschen\ncheck 10 2008,2009\nfinanzamt\n");
    }
    home.kopiere(test_plugins::ThrowsOwnClassFromInitialize, "plugins/libdrei.dylib");
    home.kopiere(test_plugins::DeclaresTypeTwo, "plugins/libvier.dylib");
    home.schreibe("plugins/libtext.dylib", "no library at all");
    home.schreibe("plugins/libfrendolin.dylib", "blocked");
}

void verlange(bool bedingung, const char* was) {
    if (!bedingung)
        throw std::runtime_error(was);
}

void benutze(const std::string& bibliothek) {
    const auto* const registry = OrvoErweiterungsManager::getInstanz();
    auto* const erweiterung =
        registry->findeValidierungsServiceErweiterung(10, Veranlagungszeitraum(2009, "YYYY"));
    verlange(erweiterung, "the look-up misses");
    auto* const service = erweiterung->holeService();
    verlange(service, "no service");
    verlange(istEingeblendet(bibliothek), "the library is not there while it is in use");
    erweiterung->release(service);
    verlange(!istEingeblendet(bibliothek), "the library is still there after its use");
}

bool istEben(const Stand& anfang, const Stand& ende) {
    constexpr long kSpielraum = 1024; // KiB for the allocator, not per cycle
    return ende.speicher <= anfang.speicher + kSpielraum && ende.abbildungen <= anfang.abbildungen + 2 &&
           ende.deskriptoren == anfang.deskriptoren;
}

int laufe(int runden) {
    const Verzeichnis erste, zweite;
    legeAus(erste, "1.0");
    legeAus(zweite, "2.0");
    const orvo::orvoutil::Einstellungen einstellungen;
    einstellungen.setze("basis.home_dir", erste.pfad());

    const int warm = std::max(20, runden / 20); // the allocator and the loader settle
    const int abstand = std::max(1, runden / 10);
    Stand anfang{};
    std::cout << "cycle   resident KiB   mappings   descriptors\n";
    for (int runde = 0; runde <= warm + runden; ++runde) {
        const Verzeichnis& home = runde / 2 % 2 == 0 ? erste : zweite;
        if (runde % 2 == 0)
            einstellungen.setze("basis.home_dir", home.pfad());
        else
            OrvoPluginManager::getInstanz(nullptr)->reload();
        benutze(home.pfad("plugins/libeins.dylib"));
        if (runde == warm)
            anfang = jetzt();
        if (runde >= warm && (runde - warm) % abstand == 0) {
            const Stand stand = jetzt();
            std::cout << runde - warm << "\t" << stand.speicher << "\t" << stand.abbildungen << "\t"
                      << stand.deskriptoren << "\n";
        }
    }
    const Stand ende = jetzt();
    const bool eben = istEben(anfang, ende);
    std::cout << (eben ? "level" : "NOT level") << ": resident " << ende.speicher - anfang.speicher
              << " KiB, mappings " << ende.abbildungen - anfang.abbildungen << ", descriptors "
              << ende.deskriptoren - anfang.deskriptoren << " more than at the start\n";
    return eben ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return laufe(argc > 1 ? std::stoi(argv[1]) : 20000);
    } catch (const std::exception& ausnahme) {
        std::cerr << "soak: " << ausnahme.what() << "\n";
        return EXIT_FAILURE;
    }
}
