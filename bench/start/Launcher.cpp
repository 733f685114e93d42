// Runs floor and product in turn, and prints the tables of docs/benchmarks.md.
//
//     orvo_bench_start [--quick] <directory for plugins> <chart> <results of orvo_bench as JSON>

#include "Diagramm.h"
#include "Heime.h"
#include "Lauf.h"
#include "Vergleich.h"

#include <nlohmann/json.hpp>

#include <sys/utsname.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace std::literals;

constexpr double kMikro = 1000; // nanoseconds

constexpr int kWenige[] = {10, 100};
constexpr int kViele[] = {0, 1, 10, 100, 500, 5000};
constexpr Sorte kSorten[] = {
    {"18 KB", PLUGIN_18_KB, kViele}, {"60 KB", PLUGIN_60_KB, kWenige}, {"4 MB", PLUGIN_4_MB, kWenige}};
constexpr const Sorte& kKlein = kSorten[0];

/// The start-ups that are measured, with their targets.
constexpr struct {
    const Sorte& sorte;
    int plugins;
    const char *ziel, *zielKalt;
    const char *zielBeschrieben = nullptr, *zielBeschriebenKalt = "";
} kStarts[] = {{kSorten[0], 1, "", ""},
               {kSorten[0], 10, "", ""},
               {kSorten[0], 100, "1.15", "", "0.25"},
               {kSorten[0], 500, "1.15", "", "0.25"},
               {kSorten[0], 5000, "", nullptr}, // in memory only
               {kSorten[1], 100, "1.12", "0.60", "0.25"},
               {kSorten[2], 100, "1.05", "0.75", "0.03", "0.15"}};

Vergleich einmal(double boden, double produkt) { return {boden, produkt, produkt / boden}; }

std::string mitKomma(int n) {
    std::string ziffern = std::to_string(n);
    return ziffern.size() > 3 ? ziffern.insert(ziffern.size() - 3, 1, ',') : ziffern;
}

std::string anzahl(const Sorte& sorte, int n) {
    return std::string(sorte.groesse) + ", " + mitKomma(n) + (n == 1 ? " plugin" : " plugins");
}

void kopf(const char* titel) {
    std::printf("\n| %s | floor | product | ratio | target |\n|---|---:|---:|---:|---:|\n", titel);
}

/// One row; values divided by `teiler` are in the unit given.
void zeile(const std::string& was, const Vergleich& v, double teiler, const std::string& einheit,
           const char* ziel = "") {
    const double boden = v.boden / teiler, produkt = v.produkt / teiler;
    const int stellen = produkt < 10 ? 2 : produkt < 1000 ? 1 : 0;
    std::printf("| %s | %.*f%s | %.*f%s | %.2f | %s |\n", was.c_str(), stellen, boden, einheit.c_str(),
                stellen, produkt, einheit.c_str(), v.verhaeltnis, ziel);
    std::fflush(stdout);
}

/// How each grows from one comparison to the other, both per piece.
void wachstum(const std::string& was, const Vergleich& von, const Vergleich& bis, const char* ziel) {
    zeile(was, einmal(bis.boden / von.boden, bis.produkt / von.produkt), 1, "-fold", ziel);
}

using Messung = std::function<double()>;

/// Alternates floor and product; the first round is discarded.
Vergleich imWechsel(int runden, const Messung& boden, const Messung& produkt) {
    std::vector<double> b, p;
    for (int i = 0; i <= runden; ++i) {
        const double bodenwert = boden(), produktwert = produkt();
        if (i == 0)
            continue;
        b.push_back(bodenwert);
        p.push_back(produktwert);
    }
    return vergleiche(b, p);
}

/// What Google Benchmark has measured, in nanoseconds: each operation in several repetitions.
class Operationen {
public:
    explicit Operationen(const char* datei) {
        std::ifstream strom(datei);
        const auto ergebnisse = nlohmann::json::parse(strom);
        for (const auto& lauf : ergebnisse.at("benchmarks"))
            if (lauf.at("run_type") == "iteration")
                zeiten_[lauf.at("run_name")].push_back(lauf.at("cpu_time"));
    }

    double eine(const std::string& name) const { return median(zeiten_.at(name)); }

    /// Of one of `stueck` pieces, where the operation handles that many.
    Vergleich paar(const std::string& name, int groesse, double stueck = 1) const {
        const auto zeit = [&](const char* art) { return zeiten_.at(name + art + std::to_string(groesse)); };
        const Vergleich v = vergleiche(zeit("/floor/"), zeit("/product/"));
        return {v.boden / stueck, v.produkt / stueck, v.verhaeltnis};
    }

private:
    std::map<std::string, std::vector<double>> zeiten_;
};

class Tabellen {
public:
    Tabellen(int runden, const char* verzeichnis, const char* operationen)
        : runden_(runden),
          operationen_(operationen),
          heime_(verzeichnis, kSorten, [](const std::string& home) {
              fuehreAus({PRODUCT, home, "describe"});
          }) {}

    void start() {
        kopf("the program starts, plugin files in memory");
        std::map<int, Vergleich> klein; // per plugin
        for (const auto& [sorte, n, ziel, zielKalt, zielBeschrieben, kalt] : kStarts) {
            const Vergleich v = paar(sorte, n, "start");
            zeile(anzahl(sorte, n) + ", per plugin", v, kMikro * n, " us", ziel);
            merke(sorte, n, false, v);
            if (&sorte == &kKlein)
                klein[n] = je(v, n);
        }
        wachstum("18 KB, growth from 500 to 5,000 plugins, per plugin", klein[500], klein[5000],
                 "product 1.3");
        static constexpr const char* kZiele[] = {"product 11", "product 13", "product 13"};
        for (std::size_t i = 0; i < std::size(kSorten); ++i)
            zeile(kSorten[i].groesse + ", system calls per plugin"s, jePlugin(kSorten[i], systemaufrufe), 1,
                  "", kZiele[i]);
        for (const Sorte& sorte : kSorten)
            zeile(sorte.groesse + ", instructions per plugin"s, jePlugin(sorte, instruktionen), 1, "");
        zeile("whole process without plugins", imWechsel(runden_, prozess(BARE, 0), prozess(PRODUCT, 0)), 1,
              " us", "1.15");
        zeile("whole process, " + anzahl(kKlein, 100),
              imWechsel(runden_, prozess(FLOOR, 100), prozess(PRODUCT, 100)), 1, " us", "1.12");
    }

    void kalterStart() {
        kopf("the program starts, plugin files on disk");
        for (const auto& [sorte, n, ziel, zielKalt, zielBeschrieben, beschriebenKalt] : kStarts)
            if (zielKalt) {
                const auto v = zeileKalt(sorte, n, "start", zielKalt);
                if (v)
                    merke(sorte, n, true, *v);
            }
    }

    /// The product takes the descriptions, the floor opens the libraries.
    void beschrieben() const {
        kopf("the program starts from descriptions, plugin files in memory");
        for (const auto& [sorte, n, z, k, ziel, zielKalt] : kStarts)
            if (ziel)
                zeile(
                    anzahl(sorte, n) + ", per plugin",
                    imWechsel(runden_, lauf(FLOOR, sorte, n, "start"), lauf(PRODUCT, sorte, n, "described")),
                    kMikro * n, " us", ziel);
        zeile("18 KB, system calls per plugin", jePlugin(kKlein, systemaufrufe, "start", "described"), 1, "",
              "product 4");
        kopf("the program starts from descriptions, plugin files on disk");
        for (const auto& [sorte, n, z, k, ziel, zielKalt] : kStarts)
            if (ziel)
                zeileKalt(sorte, n, "described", zielKalt);
    }

    void lookup() const {
        kopf("a look-up, with `getInstanz()` each time");
        zeile("300 keys, found", operationen_.paar("lookup/hit", 300), 1, " ns", "1.0");
        zeile("3,000 keys, found", operationen_.paar("lookup/hit", 3000), 1, " ns", "1.0");
        zeile("300 keys, not found", operationen_.paar("lookup/miss", 300), 1, " ns");
        zeile("19 types known by name only, found", operationen_.paar("lookup/names", 19), 1, " ns");
    }

    void service() const {
        kopf("a service, got and released");
        zeile("its library in use", paar(kKlein, 1, "use"), 1, " ns", "0.80");
        zeile("its library opened and closed", paar(kKlein, 1, "open"), kMikro, " us", "1.05");
    }

    void neuesVerzeichnis() {
        kopf("an update of the directory");
        zeile("unload and load " + anzahl(kKlein, 100) + ", per plugin", paar(kKlein, 100, "reload"),
              100 * kMikro, " us");
        melde("keys of one plugin", "file/keys", 1000, 100'000, "1.0");
        melde("types of one year known by name only", "file/names", 1000, 8000, "");
    }

    void speicher() const {
        kopf("memory, plugins of three extensions");
        zeile("heap per plugin",
              jePlugin(
                  kKlein, [](const Befehl& b) { return fuehreAus(b).zahlen.at(0); }, "memory", "memory"),
              1000, " KB", "product 2.6");
        const auto eingeblendete = [&](const char* programm) {
            return fuehreAus(befehl(programm, kKlein, 100, "memory")).zahlen.at(1);
        };
        std::printf("| libraries still mapped after use | %.0f | %.0f | | 0 |\n", eingeblendete(FLOOR),
                    eingeblendete(PRODUCT));
    }

    void log() const {
        kopf("the log, with a sink that ignores all entries; floor without a sink");
        for (const char* const art : {"trace", "event"})
            std::printf("| an entry, %s | | %.1f ns | | 20 ns |\n", art, operationen_.eine("log/"s + art));
        for (const char* const stufe : {"info", "debug"})
            zeile("start of 100 plugins at level "s + stufe + ", per plugin",
                  imWechsel(runden_, lauf(PRODUCT, kKlein, 100, "start"), lauf(PRODUCT, kKlein, 100, stufe)),
                  100 * kMikro, " us", "1.15");
    }

    void zeichne(const char* datei) const {
        std::ofstream svg(datei);
        ::zeichne(svg, punkte_);
        if (!svg.flush())
            throw std::runtime_error("cannot write "s + datei);
    }

private:
    static Vergleich je(const Vergleich& v, double stueck) {
        return {v.boden / stueck, v.produkt / stueck, v.verhaeltnis};
    }
    void merke(const Sorte& sorte, int n, bool kalt, const Vergleich& v) {
        punkte_.push_back({sorte.groesse, n, kalt, je(v, kMikro * n)});
    }

    Befehl befehl(const char* programm, const Sorte& sorte, int plugins, const char* was) const {
        return {programm, heime_.mit(sorte, plugins), was};
    }
    /// Processor time that the program measures itself.
    Messung lauf(const char* programm, const Sorte& sorte, int plugins, const char* was) const {
        return [b = befehl(programm, sorte, plugins, was)] { return fuehreAus(b).zahlen.at(0); };
    }
    /// Processor time from the start of the process to its end.
    Messung prozess(const char* programm, int plugins) const {
        return [b = befehl(programm, kKlein, plugins, "start")] { return fuehreAus(b).dauer; };
    }
    Vergleich paar(const Sorte& sorte, int plugins, const char* was) const {
        return imWechsel(runden_, lauf(FLOOR, sorte, plugins, was), lauf(PRODUCT, sorte, plugins, was));
    }

    /// Wall time, the files dropped from memory before each run; nothing when they do not leave it.
    std::optional<Vergleich> zeileKalt(const Sorte& sorte, int n, const char* produkt,
                                       const char* ziel) const {
        bool verdraengt = true;
        const auto wandzeit = [&](const char* programm, const char* was) {
            return [&, b = befehl(programm, sorte, n, was)] {
                verdraengt = verdraengt && verdraenge(heime_.mit(sorte, n));
                return verdraengt ? fuehreAus(b).zahlen.at(1) : 0;
            };
        };
        const std::string was = anzahl(sorte, n) + ", per plugin";
        const Vergleich v = imWechsel(runden_, wandzeit(FLOOR, "start"), wandzeit(PRODUCT, produkt));
        if (!verdraengt) {
            std::printf("| %s | | not measured: the files stay in memory | | %s |\n", was.c_str(), ziel);
            return std::nullopt;
        }
        zeile(was, v, kMikro * n, " us", ziel);
        return v;
    }

    /// What each plugin beyond the tenth adds.
    Vergleich jePlugin(const Sorte& sorte, double (*zaehle)(const Befehl&), const char* boden = "start",
                       const char* produkt = "start") const {
        const auto zuwachs = [&](const char* programm, const char* was) {
            return (zaehle(befehl(programm, sorte, 100, was)) - zaehle(befehl(programm, sorte, 10, was))) /
                   90;
        };
        return einmal(zuwachs(FLOOR, boden), zuwachs(PRODUCT, produkt));
    }

    /// The filing of few and of many.
    void melde(const std::string& was, const char* operation, int wenige, int viele, const char* ziel) const {
        const Vergleich von = operationen_.paar(operation, wenige, wenige),
                        bis = operationen_.paar(operation, viele, viele);
        zeile("register " + mitKomma(wenige) + " " + was + ", per piece", von, 1, " ns");
        zeile("register " + mitKomma(viele) + " " + was + ", per piece", bis, 1, " ns");
        wachstum("growth, per piece", von, bis, ziel);
    }

    int runden_;
    Operationen operationen_;
    Heime heime_;
    std::vector<Messpunkt> punkte_;
};

std::string feld(const char* datei, const std::string& name) {
    std::ifstream strom(datei);
    for (std::string zeile; std::getline(strom, zeile);)
        if (zeile.starts_with(name))
            return zeile.substr(std::min(zeile.find(':') + 2, zeile.size()));
    return "unknown";
}

void maschine(int runden) {
    utsname system{};
    uname(&system);
    std::printf("Machine: %s, %u processors; %s %s; %s; medians of %d rounds.\n",
                feld("/proc/cpuinfo", "model name").c_str(), std::thread::hardware_concurrency(),
                system.sysname, system.release, COMPILER, runden);
}

} // namespace

int main(int anzahl, char** argumente) try {
    const bool kurz = anzahl > 1 && argumente[1] == "--quick"sv;
    const char* const* const pfade = argumente + (kurz ? 2 : 1);
    if (argumente + anzahl != pfade + 3)
        return 2;
    const int runden = kurz ? 5 : 21;
    maschine(runden);
    Tabellen tabellen(runden, pfade[0], pfade[2]);
    tabellen.start();
    tabellen.kalterStart();
    tabellen.beschrieben();
    tabellen.lookup();
    tabellen.service();
    tabellen.neuesVerzeichnis();
    tabellen.speicher();
    tabellen.log();
    tabellen.zeichne(pfade[1]);
} catch (const std::exception& fehler) {
    std::fprintf(stderr, "orvo_bench_start: %s\n", fehler.what());
    return 1;
}
