// Runs floor and product in turn and prints a table in the form of docs/benchmarks.md.
//
//     orvo_bench_start [--quick] [<results of orvo_bench as JSON>...]

#include "Lauf.h"
#include "Nummer.h"
#include "Vergleich.h"

#include <nlohmann/json.hpp>

#include <sys/utsname.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int kAnzahlen[] = {1, 10, 100, 500};
constexpr double kMikro = 1000; // nanoseconds

std::string inhaltVon(const fs::path& datei) {
    std::ifstream strom(datei, std::ios::binary);
    return {std::istreambuf_iterator<char>(strom), {}};
}

/// Home directories with that many plugins, removed at the end.
class Heime {
public:
    Heime() : pfad_(fs::temp_directory_path() / ("orvo-bench-" + std::to_string(getpid()))) {
        fs::create_directories(fs::path(mit(0)) / "plugins");
        const std::string plugin = inhaltVon(PLUGIN);
        const std::size_t nummer = plugin.find(ORVO_BENCH_MARKE ORVO_BENCH_NUMMER);
        if (nummer == std::string::npos)
            throw std::runtime_error("no number in " PLUGIN);
        for (const int anzahl : kAnzahlen)
            lege(anzahl, plugin, nummer + sizeof(ORVO_BENCH_MARKE) - 1);
    }
    Heime(const Heime&) = delete;
    Heime& operator=(const Heime&) = delete;
    ~Heime() {
        std::error_code fehler;
        fs::remove_all(pfad_, fehler);
    }

    std::string mit(int anzahl) const { return pfad_ / std::to_string(anzahl); }

private:
    void lege(int anzahl, std::string plugin, std::size_t stelle) const {
        const fs::path verzeichnis = fs::path(mit(anzahl)) / "plugins";
        fs::create_directories(verzeichnis);
        for (int i = 0; i < anzahl; ++i) {
            const std::string nummer = std::to_string(kErsteNummer + i);
            plugin.replace(stelle, nummer.size(), nummer);
            std::ofstream(verzeichnis / ("libbench" + nummer + ".dylib"), std::ios::binary) << plugin;
        }
    }

    fs::path pfad_;
};

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

void kopf(const char* titel) {
    std::printf("\n| %s | floor | product | ratio | target |\n|---|---:|---:|---:|---:|\n", titel);
}

/// One row; values divided by `teiler` are in the unit given.
void zeile(const std::string& was, const Vergleich& v, double teiler, const char* einheit,
           const char* ziel = "") {
    const double boden = v.boden / teiler, produkt = v.produkt / teiler;
    const int stellen = produkt < 10 ? 2 : produkt < 1000 ? 1 : 0;
    std::printf("| %s | %.*f %s | %.*f %s | %.3f | %s |\n", was.c_str(), stellen, boden, einheit, stellen,
                produkt, einheit, v.verhaeltnis, ziel);
    std::fflush(stdout);
}

class Tabellen {
public:
    explicit Tabellen(int runden) : runden_(runden) {}

    void start() const {
        kopf("start-up until all plugins are registered, per plugin");
        std::map<int, double> gesamt;
        for (const int n : kAnzahlen) {
            const Vergleich v = imWechsel(runden_, zahl(FLOOR, n, "start"), zahl(PRODUCT, n, "start"));
            gesamt[n] = v.produkt;
            zeile(anzahl(n), v, kMikro * n, "us", n >= 100 ? "1.08" : "");
        }
        for (const int n : {100, 500})
            zeile(anzahl(n) + ", floor without \"initialize\"",
                  imWechsel(runden_, zahl(FLOOR, n, "types"), zahl(PRODUCT, n, "start")), kMikro * n, "us");
        std::printf("| growth from 100 to 500 plugins | | | %.2f | 5.3 |\n", gesamt[500] / gesamt[100]);
        zeile("system calls", jePlugin(systemaufrufe), 1, "", "product 10.2");
        zeile("instructions", jePlugin(instruktionen), 1, "");
    }

    void prozess() const {
        kopf("whole process");
        zeile("no plugin, floor linked to nothing of ours",
              imWechsel(runden_, dauer(BARE, 0, "types"), dauer(PRODUCT, 0, "start")), 1, "us", "1.2");
        zeile("no plugin, floor linked to the libraries",
              imWechsel(runden_, dauer(FLOOR, 0, "start"), dauer(PRODUCT, 0, "start")), 1, "us");
        zeile("100 plugins, floor linked to the libraries",
              imWechsel(runden_, dauer(FLOOR, 100, "start"), dauer(PRODUCT, 100, "start")), 1, "us", "1.10");
        zeile("no plugin, instructions, floor linked to nothing of ours",
              einmal(instruktionen(befehl(BARE, 0, "types")), instruktionen(befehl(PRODUCT, 0, "start"))), 1,
              "");
        zeile(
            "100 plugins, instructions, floor linked to the libraries",
            einmal(instruktionen(befehl(FLOOR, 100, "start")), instruktionen(befehl(PRODUCT, 100, "start"))),
            1, "");
    }

    void werkzeug() const {
        kopf("`orvoplugin list` (product), a whole process that only starts the library (floor)");
        for (const int n : {100, 500}) {
            const Befehl liste{TOOL, "list", "--home", heime_.mit(n)};
            zeile(anzahl(n),
                  imWechsel(runden_, dauer(PRODUCT, n, "start"), [&] { return fuehreAus(liste).dauer; }), 1,
                  "us", n == 500 ? "3" : "");
        }
    }

    void kreis() const {
        kopf("get and release a service, the library opened and closed each time");
        zeile("1 plugin", imWechsel(runden_, zahl(FLOOR, 1, "cycle"), zahl(PRODUCT, 1, "cycle")), kMikro,
              "us", "1.05");
    }

    void speicher() const {
        kopf("memory, 100 plugins");
        const Lauf boden = fuehreAus(befehl(FLOOR, 100, "memory")),
                   produkt = fuehreAus(befehl(PRODUCT, 100, "memory"));
        zeile("grown by, all libraries open", einmal(boden.zahlen.at(0), produkt.zahlen.at(0)), 1, "KiB",
              "floor + 410 KiB");
        zeile("grown by, all closed again", einmal(boden.zahlen.at(1), produkt.zahlen.at(1)), 1, "KiB",
              "1024 KiB");
        std::printf("| libraries still mapped | %.0f | %.0f | | 0 |\n", boden.zahlen.at(2),
                    produkt.zahlen.at(2));
    }

    void senke() const {
        kopf("start-up of 100 plugins with a log sink (product), without one (floor), per plugin");
        zeile("level info", imWechsel(runden_, zahl(PRODUCT, 100, "start"), zahl(PRODUCT, 100, "info")),
              100 * kMikro, "us");
        zeile("level debug", imWechsel(runden_, zahl(PRODUCT, 100, "start"), zahl(PRODUCT, 100, "debug")),
              100 * kMikro, "us", "3");
    }

private:
    static std::string anzahl(int n) { return std::to_string(n) + (n == 1 ? " plugin" : " plugins"); }
    static Vergleich einmal(double boden, double produkt) { return {boden, produkt, produkt / boden}; }

    Befehl befehl(const char* programm, int plugins, const char* was) const {
        return {programm, heime_.mit(plugins), was};
    }
    Messung zahl(const char* programm, int plugins, const char* was) const {
        return [=, b = befehl(programm, plugins, was)] { return fuehreAus(b).zahlen.at(0); };
    }
    Messung dauer(const char* programm, int plugins, const char* was) const {
        return [=, b = befehl(programm, plugins, was)] { return fuehreAus(b).dauer; };
    }

    /// The cost of each plugin beyond the first hundred.
    Vergleich jePlugin(double (*zaehle)(const Befehl&)) const {
        const auto zuwachs = [&](const char* programm) {
            return (zaehle(befehl(programm, 500, "start")) - zaehle(befehl(programm, 100, "start"))) / 400;
        };
        return einmal(zuwachs(FLOOR), zuwachs(PRODUCT));
    }

    int runden_;
    Heime heime_;
};

/// Groups by the beginning of the operation's name.
const char* zielVon(const std::string& operation) {
    static constexpr std::pair<std::string_view, const char*> kZiele[] = {{"lookup/hit/", "1.0"},
                                                                          {"lookup/miss/", "1.0"},
                                                                          {"lookup/hit_sink_debug", "3"},
                                                                          {"lookup/names/", "1.5"},
                                                                          {"service/in_use/", "0.80"},
                                                                          {"service/first_and_last/", "1.05"},
                                                                          {"service/in_use_sink_debug", "3"}};
    for (const auto& [anfang, ziel] : kZiele)
        if (operation.starts_with(anfang))
            return ziel;
    return "";
}

/// Pairs of operations, measured by Google Benchmark in several repetitions: one has "/floor" in its name where the
/// other has "/product".
void operationen(const fs::path& datei) {
    std::map<std::string, std::vector<double>> zeiten;
    const auto ergebnisse = nlohmann::json::parse(inhaltVon(datei));
    for (const auto& lauf : ergebnisse.at("benchmarks")) {
        if (lauf.at("run_type") != "iteration")
            continue;
        zeiten[lauf.at("run_name")].push_back(lauf.at("cpu_time"));
    }
    for (const auto& [name, boden] : zeiten) {
        constexpr std::string_view kBoden = "/floor";
        const std::size_t stelle = name.find(kBoden);
        if (stelle == std::string::npos)
            continue;
        const std::string vorn = name.substr(0, stelle), hinten = name.substr(stelle + kBoden.size());
        zeile(vorn + hinten, vergleiche(boden, zeiten.at(vorn + "/product" + hinten)), 1, "ns",
              zielVon(name));
    }
}

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
    bool kurz = false;
    std::vector<fs::path> ergebnisse;
    for (int i = 1; i < anzahl; ++i)
        if (std::string_view(argumente[i]) == "--quick")
            kurz = true;
        else
            ergebnisse.emplace_back(argumente[i]);
    const int runden = kurz ? 5 : 21;
    maschine(runden);
    const Tabellen tabellen(runden);
    tabellen.start();
    tabellen.prozess();
    tabellen.werkzeug();
    tabellen.kreis();
    tabellen.speicher();
    tabellen.senke();
    if (!ergebnisse.empty())
        kopf("operations, by name and size");
    for (const fs::path& datei : ergebnisse)
        operationen(datei);
} catch (const std::exception& fehler) {
    std::fprintf(stderr, "orvo_bench_start: %s\n", fehler.what());
    return 1;
}
