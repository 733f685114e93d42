// Loads, uses, releases and reloads plugins over and over, with all that may happen to them in years, and checks that
// the process's memory, mappings, descriptors and libraries hold level.
//
//     soak CYCLES [CSV]             so many cycles
//     soak --hours HOURS [CSV]      as many as there is time for
//
// A cycle has 24 loading runs, and ends as it began. The samples go to the file CSV.

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/registry/HoleService.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/StreamLogSink.h>

#include "TestPlugins.h"
#include "soak/Verlauf.h"
#include "support/Beschriftung.h"
#include "support/Prozess.h"
#include "support/Verzeichnis.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>

using namespace orvo::orvoutil;

namespace fs = std::filesystem;

namespace {

void verlange(bool bedingung, const char* was) {
    if (!bedingung)
        throw std::runtime_error(was);
}

const Veranlagungszeitraum& jahr() {
    static const Veranlagungszeitraum vz(2009, "YYYY");
    return vz;
}

// What the sub-case types stand for in the plugins below.
enum Fall : int {
    WIRFT_IM_DIENST = 10,
    HEIL,
    WERFENDE_HOOKS,
    WERFENDE_FACTORY,
    KEIN_SERVICE,
    FALSCHER_SERVICE,
    EIN_OBJEKT
};

class KeineDatensaetze : public orvo::data::SteuerfallListe {
public:
    std::size_t getAnzahl() const override { return 0; }
    const std::string& getDatensatz(std::size_t) const override { throw std::out_of_range("no record"); }
};

/// A home directory with healthy plugins, misbehaving ones, and files that are refused.
class Heim {
public:
    explicit Heim(const std::string& version) : version_(version), andere_(version + ".1") {
        lege(kHeil, "produktversion " + version_ + "\nloeschen\ncheck 11 2009\nfinanzamt\n");
        lege(kAndere, "produktversion " + andere_ + "\nloeschen\ncheck 11 2008,2009\nfinanzamt\n");
        lege("plugins/unter/libboese.dylib",
             "onload werfenderHook\nonunload werfenderHook\nloeschen\ncheck 12 2009\n"
             "factory werfenderService\ncheck 13 2009\n"
             "factory keinService\ncheck 14 2009\n"
             "factory falscherService\ncheck 15 2009\n");
        lege("plugins/libobjekt.dylib", "factory gleicherService\ncheck 16 2009\n");
        ort_.kopiere(test_plugins::ThrowsFromItsService, "plugins/libdienst.dylib");
        ort_.kopiere(test_plugins::ThrowsOwnClassFromInitialize, "plugins/libwirft.dylib");
        ort_.kopiere(test_plugins::DeclaresTypeTwo, "plugins/libzwei.dylib");
        ort_.schreibe("plugins/libtext.dylib", "no library at all");
        ort_.schreibe("plugins/libfrendolin.dylib", "blocked");
        fs::resize_file(ort_.kopiere(test_plugins::DeclaresTypeOneTwice, "plugins/libhalb.dylib"), 5000);
    }

    const std::string& pfad() const { return ort_.pfad(); }
    const std::string& version() const { return version_; }
    std::string heile() const { return ort_.pfad(kHeil); }

    /// The healthy plugin's file goes, or comes back.
    void nimmWeg() const { fs::rename(ort_.pfad(kHeil), ort_.pfad("weg")); }
    void gibZurueck() const { fs::rename(ort_.pfad("weg"), ort_.pfad(kHeil)); }
    /// Another version of the healthy plugin takes its place.
    void ersetze() {
        for (const char* const ende : {"", ".txt"}) {
            fs::rename(ort_.pfad(kHeil) + ende, ort_.pfad("tausch"));
            fs::rename(ort_.pfad(kAndere) + ende, ort_.pfad(kHeil) + ende);
            fs::rename(ort_.pfad("tausch"), ort_.pfad(kAndere) + ende);
        }
        version_.swap(andere_);
    }

private:
    static constexpr char kHeil[] = "plugins/libheil.dylib";
    static constexpr char kAndere[] = "lager/libheil.dylib";

    void lege(const char* datei, const std::string& auftraege) const {
        ort_.schreibe(std::string(datei) + ".txt", auftraege);
        beschrifte(ort_.kopiere(test_plugins::DescribedByFile, datei));
    }

    const Verzeichnis ort_;
    std::string version_, andere_;
};

/// A client, in cycles that leave nothing behind.
class Betrieb {
public:
    ~Betrieb() { Logger::setSink(nullptr); }

    void zyklus() {
        for (const char* const beschreibungen : {"", "eingebettet"}) {
            einstellungen_.setze("basis.plugin_beschreibungen", beschreibungen);
            for (Heim* const heim : {&erstes_, &zweites_}) {
                tauscheSenke();
                einstellungen_.setze("basis.home_dir", heim->pfad());
                nutzeHeile(*heim);
                nutzeBoese();
                verliereGriff();
                verliereDatei(*heim);
                ersetzeDatei(*heim);
                ersetzeDatei(*heim);
            }
        }
    }

    /// The services that are in use, counted by their extensions and their plugins.
    static int dienste() {
        int anzahl = 0;
        for (const OrvoPlugin* const plugin :
             OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins()) {
            anzahl += plugin->getUseCount();
            for (const OrvoErweiterung* const erweiterung :
                 dynamic_cast<const OrvoPluginV1&>(*plugin).listeErweiterungen())
                anzahl += erweiterung->getAusgegeben();
        }
        return anzahl;
    }

private:
    class StummeSenke : public LogSink {
    public:
        void write(const LogEntry&) override {}
    };

    static void ladeNeu() { OrvoPluginManager::getInstanz(nullptr)->reload(); }

    static void nutzeHeile(const Heim& heim) {
        const auto griff = holeValidierungsService(HEIL, jahr());
        verlange(static_cast<bool>(griff), "no service");
        verlange(griff.getErweiterung()->getPlugin()->getProduktVersion() == heim.version(),
                 "another version");
        verlange(istEingeblendet(heim.heile()), "the library is not there while it is in use");
        PruefErgebnis ergebnis;
        verlange(griff->pruefe(KeineDatensaetze(), HEIL, jahr(), ergebnis) == 0,
                 "the service does not check");
    }

    static void nutzeBoese() {
        const auto dienst = holeValidierungsService(WIRFT_IM_DIENST, jahr());
        for (const int wurf : {1, 2, 3, 4}) {
            bool gefangen = false;
            try {
                PruefErgebnis ergebnis;
                dienst->pruefe(KeineDatensaetze(), wurf, jahr(), ergebnis);
            } catch (...) {
                gefangen = true;
            }
            verlange(gefangen, "the service does not throw");
        }
        verlange(static_cast<bool>(holeValidierungsService(WERFENDE_HOOKS, jahr())),
                 "no service with such hooks");
        for (const Fall fall : {WERFENDE_FACTORY, KEIN_SERVICE, FALSCHER_SERVICE})
            verlange(!holeValidierungsService(fall, jahr()), "a service of a bad factory");
    }

    static void verliereGriff() {
        const auto griff = holeValidierungsService(EIN_OBJEKT, jahr());
        verlange(static_cast<bool>(griff), "no service that is one object");
        ladeNeu();
        verlange(griff.istVerwaist(), "a handle outlives its plugin");
    }

    static void verliereDatei(const Heim& heim) {
        heim.nimmWeg();
        verlange(!holeValidierungsService(HEIL, jahr()), "a service without its library");
        ladeNeu();
        verlange(!OrvoErweiterungsManager::getInstanz()->findeValidierungsServiceErweiterung(HEIL, jahr()),
                 "an extension without its library");
        heim.gibZurueck();
        ladeNeu();
        nutzeHeile(heim);
    }

    static void ersetzeDatei(Heim& heim) {
        heim.ersetze();
        verlange(static_cast<bool>(holeValidierungsService(HEIL, jahr())), "no service of the new file");
        ladeNeu();
        nutzeHeile(heim);
    }

    /// Each sink and each level in turn.
    void tauscheSenke() {
        const std::shared_ptr<LogSink> senken[] = {nullptr, std::make_shared<StummeSenke>(),
                                                   std::make_shared<StreamLogSink>(nichts_)};
        Logger::setSink(senken[senke_++ % std::size(senken)]);
        Logger::setLevel(static_cast<LogLevel>(senke_ % 4));
    }

    std::ofstream nichts_{"/dev/null"};
    const Einstellungen einstellungen_;
    Heim erstes_{"1.0"}, zweites_{"2.0"};
    std::size_t senke_ = 0;
};

/// How far a run is, from 0 to 1, after so many cycles.
class Ziel {
public:
    Ziel(bool stunden, double menge) : stunden_(stunden), menge_(menge) {}

    double erreicht(long zyklus) const {
        const std::chrono::duration<double, std::ratio<3600>> vergangen =
            std::chrono::steady_clock::now() - beginn_;
        return (stunden_ ? vergangen.count() : static_cast<double>(zyklus)) / menge_;
    }

private:
    bool stunden_;
    double menge_;
    std::chrono::steady_clock::time_point beginn_ = std::chrono::steady_clock::now();
};

int laufe(const Ziel& ziel, std::ostream& csv) {
    constexpr int kProben = 200;
    constexpr int kTakt = 3; // cycles until the sinks come in the same order again
    Betrieb betrieb;
    Verlauf verlauf(csv);
    betrieb.zyklus(); // makes what stays
    int proben = 0;
    long zyklus = 0;
    for (double erreicht = 0; erreicht < 1; erreicht = ziel.erreicht(zyklus)) {
        if (erreicht * kProben >= proben) {
            verlauf.nimmAuf(zyklus, jetzigeMessung(Betrieb::dienste()));
            ++proben;
        }
        for (int i = 0; i < kTakt; ++i, ++zyklus)
            betrieb.zyklus();
    }
    verlauf.nimmAuf(zyklus, jetzigeMessung(Betrieb::dienste()));
    std::cout << zyklus << " cycles, " << zyklus * 24 << " loading runs\n";
    return verlauf.urteile(std::cout) ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv) {
    try {
        const bool stunden = argc > 2 && argv[1] == std::string("--hours");
        const int erstes = stunden ? 2 : 1;
        if (argc <= erstes || argc > erstes + 2 || !(std::stod(argv[erstes]) > 0))
            throw std::invalid_argument("soak CYCLES [CSV], or soak --hours HOURS [CSV]");
        const Ziel ziel(stunden, std::stod(argv[erstes]));
        std::ofstream csv(argc > erstes + 1 ? argv[erstes + 1] : "/dev/null");
        return laufe(ziel, csv);
    } catch (const std::exception& ausnahme) {
        std::cerr << "soak: " << ausnahme.what() << "\n";
        return EXIT_FAILURE;
    }
}
