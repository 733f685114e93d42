// Look-ups and the filing of extensions, each with its floor: a hash map of the standard library with the same keys,
// equality and hash. Floor and product of a pair have the same name, followed by "/floor" and "/product".

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using Check = OrvoValidierungsServiceErweiterung;
using Boden = std::unordered_map<ErweiterungsSchluessel, OrvoErweiterung*, ErweiterungsSchluessel>;

constexpr tag_erweiterung_typ kCheck = ORVO_CHECK_SERVICE_ERWEITERUNG;
constexpr int kErstesJahr = 2008;
constexpr int kJahre = 3;

Veranlagungszeitraum jahr(int zahl) { return {zahl, "YYYY"}; }

/// A plugin with a check service for each of its sub-case types, which have `jahre` keys each.
class Angebot {
public:
    Angebot(const std::vector<Unterfallart>& uas, int jahre) {
        plugin_.setProduktVersion("1.0");
        std::list<Veranlagungszeitraum> vzs;
        for (int i = 0; i < jahre; ++i)
            vzs.push_back(jahr(kErstesJahr + i));
        for (const Unterfallart& ua : uas)
            plugin_.addErweiterung(Check(ua, vzs));
    }

    void registriere() { registry().pluginErzeugt(&plugin_); }
    void entferne() { registry().pluginZerstoert(&plugin_); }

    /// The same for the floor.
    Boden trageEin() const {
        Boden boden;
        for (OrvoErweiterung* const e : plugin_.listeErweiterungen())
            for (const auto& [ua, vzs] :
                 static_cast<const Check*>(e)->getVeranlagungszeitraumUnterfallartMap())
                for (const Veranlagungszeitraum& vz : vzs)
                    boden.emplace(ErweiterungsSchluessel(kCheck, ua, vz), e);
        return boden;
    }

private:
    /// The process's registry, without plugins from files.
    static OrvoErweiterungsManager& registry() {
        orvo::orvoutil::Einstellungen().setze("basis.home_dir", "/nonexistent");
        return *OrvoErweiterungsManager::getInstanz();
    }

    OrvoPluginV1 plugin_{nullptr};
};

std::vector<Unterfallart> nummern(std::int64_t anzahl) {
    std::vector<Unterfallart> uas;
    for (int i = 0; i < anzahl; ++i)
        uas.emplace_back(1000 + i);
    return uas;
}

/// Sub-case types that are known by name only: by contract all have one hash.
std::vector<Unterfallart> namen(std::int64_t anzahl) {
    std::vector<Unterfallart> uas;
    for (int i = 0; i < anzahl; ++i)
        uas.emplace_back(("Anmeldung_" + std::to_string(1000 + i)).c_str());
    return uas;
}

/// A query; the floor's keys are prepared.
struct Frage {
    Frage(const Unterfallart& u, const Veranlagungszeitraum& v)
        : ua(u), vz(v), schluessel(kCheck, ua, vz), unabhaengig(kCheck, ua, Veranlagungszeitraum()) {}

    Unterfallart ua;
    Veranlagungszeitraum vz;
    ErweiterungsSchluessel schluessel;
    ErweiterungsSchluessel unabhaengig;
};

std::vector<Frage> fragen(const std::vector<Unterfallart>& uas, int erstesJahr, int jahre) {
    std::vector<Frage> fragen;
    for (const Unterfallart& ua : uas)
        for (int i = 0; i < jahre; ++i)
            fragen.emplace_back(ua, jahr(erstesJahr + i));
    std::shuffle(fragen.begin(), fragen.end(), std::mt19937(42));
    return fragen;
}

/// Repeats the queries.
template <class Antworte>
void frage(benchmark::State& lauf, const std::vector<Frage>& fragen, Antworte&& antworte) {
    std::size_t i = 0;
    for (auto _ : lauf) {
        benchmark::DoNotOptimize(antworte(fragen[i]));
        i = i + 1 == fragen.size() ? 0 : i + 1;
    }
}

using Ablauf = void (*)(benchmark::State&, Angebot&, const std::vector<Frage>&);

/// The floor: the key, then the period-independent one.
void frageBoden(benchmark::State& lauf, Angebot& angebot, const std::vector<Frage>& fragen) {
    const Boden boden = angebot.trageEin();
    frage(lauf, fragen, [&](const Frage& f) -> OrvoErweiterung* {
        auto gefunden = boden.find(f.schluessel);
        if (gefunden == boden.end())
            gefunden = boden.find(f.unabhaengig);
        return gefunden == boden.end() ? nullptr : gefunden->second;
    });
}

void frageProdukt(benchmark::State& lauf, Angebot& angebot, const std::vector<Frage>& fragen) {
    angebot.registriere();
    frage(lauf, fragen, [&](const Frage& f) {
        return OrvoErweiterungsManager::getInstanz()->findeValidierungsServiceErweiterung(f.ua, f.vz);
    });
    angebot.entferne();
}

void hit(benchmark::State& lauf, Ablauf ablauf) {
    const auto uas = nummern(lauf.range(0) / kJahre);
    Angebot angebot(uas, kJahre);
    ablauf(lauf, angebot, fragen(uas, kErstesJahr, kJahre));
}
void miss(benchmark::State& lauf, Ablauf ablauf) {
    const auto uas = nummern(lauf.range(0) / kJahre);
    Angebot angebot(uas, kJahre);
    ablauf(lauf, angebot, fragen(uas, kErstesJahr + kJahre, kJahre));
}
void names(benchmark::State& lauf, Ablauf ablauf) {
    const auto uas = namen(lauf.range(0));
    Angebot angebot(uas, 1);
    ablauf(lauf, angebot, fragen(uas, kErstesJahr, 1));
}
BENCHMARK_CAPTURE(hit, floor, frageBoden)->Name("lookup/hit/floor")->Arg(300)->Arg(3000);
BENCHMARK_CAPTURE(hit, product, frageProdukt)->Name("lookup/hit/product")->Arg(300)->Arg(3000);
BENCHMARK_CAPTURE(miss, floor, frageBoden)->Name("lookup/miss/floor")->Arg(300);
BENCHMARK_CAPTURE(miss, product, frageProdukt)->Name("lookup/miss/product")->Arg(300);
BENCHMARK_CAPTURE(names, floor, frageBoden)->Name("lookup/names/floor")->Arg(19);
BENCHMARK_CAPTURE(names, product, frageProdukt)->Name("lookup/names/product")->Arg(19);

void fileFloor(benchmark::State& lauf, const Angebot& angebot) {
    for (auto _ : lauf) {
        Boden boden = angebot.trageEin();
        benchmark::DoNotOptimize(boden);
        lauf.PauseTiming(); // not the removal
        boden.clear();
        lauf.ResumeTiming();
    }
}
void fileProduct(benchmark::State& lauf, Angebot& angebot) {
    for (auto _ : lauf) {
        angebot.registriere();
        lauf.PauseTiming();
        angebot.entferne();
        lauf.ResumeTiming();
    }
}

template <class Trage>
void fileKeys(benchmark::State& lauf, Trage trage) {
    Angebot angebot(nummern(lauf.range(0) / kJahre), kJahre);
    trage(lauf, angebot);
}
template <class Trage>
void fileNames(benchmark::State& lauf, Trage trage) {
    Angebot angebot(namen(lauf.range(0)), 1);
    trage(lauf, angebot);
}
BENCHMARK_CAPTURE(fileKeys, floor, fileFloor)->Name("file/keys/floor")->Arg(1000)->Arg(100'000);
BENCHMARK_CAPTURE(fileKeys, product, fileProduct)->Name("file/keys/product")->Arg(1000)->Arg(100'000);
BENCHMARK_CAPTURE(fileNames, floor, fileFloor)->Name("file/names/floor")->Arg(1000)->Arg(8000);
BENCHMARK_CAPTURE(fileNames, product, fileProduct)->Name("file/names/product")->Arg(1000)->Arg(8000);

} // namespace
