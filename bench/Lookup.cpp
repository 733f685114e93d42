// Look-ups, against the plain way of doing one: build a key, hash its text form made with a stream, fetch a logger.

#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Logger.h>
#include <orvoutil/ObjectLifetimeManager.h>

#include "Home.h"

#include <benchmark/benchmark.h>

#include <sstream>
#include <unordered_map>

namespace {

const OrvoErweiterungsManager& gefuellteRegistry() {
    static const Home& home = *new Home(10);
    home.waehle();
    return *OrvoErweiterungsManager::getInstanz();
}

void sucheMit(benchmark::State& lauf, const Unterfallart& ua, const Veranlagungszeitraum& vz) {
    const OrvoErweiterungsManager& registry = gefuellteRegistry();
    for (auto _ : lauf)
        benchmark::DoNotOptimize(registry.findeValidierungsServiceErweiterung(ua, vz));
}

void Lookup_Hit(benchmark::State& lauf) { sucheMit(lauf, 105, {2009, "YYYY"}); }
BENCHMARK(Lookup_Hit);

void Lookup_HitByLongName(benchmark::State& lauf) {
    sucheMit(lauf, "ANTRAEGERECHTELOESCHEN5", {2009, "YYYY"});
}
BENCHMARK(Lookup_HitByLongName);

void Lookup_Fallback(benchmark::State& lauf) { sucheMit(lauf, "AntraegeRechteLoeschen5", {2015, "YYYY"}); }
BENCHMARK(Lookup_Fallback);

void Lookup_Miss(benchmark::State& lauf) { sucheMit(lauf, 999, {2009, "YYYY"}); }
BENCHMARK(Lookup_Miss);

std::string schluesseltext(const ErweiterungsSchluessel& s) {
    std::ostringstream text;
    text << s.getTyp() << "#" << s.getUnterfallart().getNummer() << "#"
         << s.getVeranlagungszeitraum().getJahr();
    return text.str();
}

struct StromHash {
    std::size_t operator()(const ErweiterungsSchluessel& s) const {
        std::uint32_t h = 0;
        for (const char c : schluesseltext(s))
            h ^= static_cast<std::uint32_t>(static_cast<signed char>(c)) + 0x9E3779B9u + (h << 6) + (h >> 2);
        return h;
    }
};

/// The plain way: the ratio to Lookup_Hit is what the search key and the hash without a stream bring.
void Lookup_PlainWay(benchmark::State& lauf) {
    std::unordered_map<ErweiterungsSchluessel, OrvoErweiterung*, StromHash> tabelle;
    for (int i = 100; i < 110; ++i)
        for (int jahr = 2008; jahr < 2011; ++jahr)
            tabelle.emplace(ErweiterungsSchluessel(ORVO_CHECK_SERVICE_ERWEITERUNG, i, {jahr, "YYYY"}),
                            nullptr);
    const Unterfallart ua(105);
    const Veranlagungszeitraum vz(2009, "YYYY");
    for (auto _ : lauf) {
        const ErweiterungsSchluessel schluessel(ORVO_CHECK_SERVICE_ERWEITERUNG, ua, vz);
        benchmark::DoNotOptimize(orvo::orvoutil::Logger::getInstance("orvo.plugin.ErweiterungsSchluessel"));
        benchmark::DoNotOptimize(tabelle.find(schluessel));
    }
}
BENCHMARK(Lookup_PlainWay);

void Lookup_GetInstanz(benchmark::State& lauf) {
    gefuellteRegistry();
    for (auto _ : lauf)
        benchmark::DoNotOptimize(OrvoErweiterungsManager::getInstanz());
}
BENCHMARK(Lookup_GetInstanz);

} // namespace
