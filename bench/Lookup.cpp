// Look-ups, each with its floor: a hash map of the standard library with the same keys, equality and hash values,
// queried with a prepared key. Floor and product of a pair have the same name, followed by "/floor" and "/product".

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/LogSink.h>
#include <orvoutil/Logger.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using orvo::orvoutil::Logger;
using orvo::orvoutil::LogLevel;
using Check = OrvoValidierungsServiceErweiterung;

constexpr tag_erweiterung_typ kCheck = ORVO_CHECK_SERVICE_ERWEITERUNG;
constexpr int kErstesJahr = 2008;
constexpr int kJahre = 3;

Veranlagungszeitraum jahr(int zahl) { return {zahl, "YYYY"}; }

/// The hash of a key's whole text, "kind#number#year", each time.
struct VollerText {
    std::size_t operator()(const ErweiterungsSchluessel& s) const {
        std::uint32_t h = 0;
        const auto nimm = [&h](std::string_view text) {
            for (const char c : text)
                h ^= static_cast<std::uint32_t>(static_cast<signed char>(c)) + 0x9E3779B9u + (h << 6) +
                     (h >> 2);
        };
        const auto nimmZahl = [&nimm](std::int32_t zahl) {
            char ziffern[11];
            const auto ende = std::to_chars(std::begin(ziffern), std::end(ziffern), zahl).ptr;
            nimm({ziffern, static_cast<std::size_t>(ende - ziffern)});
        };
        nimm(erweiterungTypName(s.getTyp()));
        nimm("#");
        nimmZahl(s.getUnterfallart().getNummer());
        nimm("#");
        nimmZahl(s.getVeranlagungszeitraum().getJahr());
        return h;
    }
};

using Bodensatz = std::unordered_map<ErweiterungsSchluessel, OrvoErweiterung*, VollerText>;

/// The queries; the floor's keys are prepared.
struct Frage {
    Frage(const Unterfallart& u, const Veranlagungszeitraum& v)
        : ua(u), vz(v), schluessel(kCheck, ua, vz), unabhaengig(kCheck, ua, Veranlagungszeitraum()) {}

    Unterfallart ua;
    Veranlagungszeitraum vz;
    ErweiterungsSchluessel schluessel;
    ErweiterungsSchluessel unabhaengig;
};

/// A registry and a floor with the same entries.
class Bestand {
public:
    Bestand() { plugin_.setProduktVersion("1.0"); }
    Bestand(const Bestand&) = delete;
    Bestand& operator=(const Bestand&) = delete;
    ~Bestand() { registry_.pluginZerstoert(&plugin_); }

    /// Files a check service for a sub-case type and some years.
    void biete(const Unterfallart& ua, int jahre) {
        std::list<Veranlagungszeitraum> vzs;
        for (int i = 0; i < jahre; ++i)
            vzs.push_back(jahr(kErstesJahr + i));
        plugin_.addErweiterung(Check(ua, vzs));
    }

    /// Call once, after the last offer.
    void melde() {
        registry_.pluginErzeugt(&plugin_);
        for (OrvoErweiterung* const e : plugin_.listeErweiterungen())
            for (const auto& [ua, vzs] :
                 static_cast<const Check*>(e)->getVeranlagungszeitraumUnterfallartMap())
                for (const Veranlagungszeitraum& vz : vzs)
                    boden_.emplace(ErweiterungsSchluessel(kCheck, ua, vz), e);
    }

    const OrvoErweiterungsManager& registry() const { return registry_; }
    const Bodensatz& boden() const { return boden_; }

private:
    OrvoPluginV1 plugin_{nullptr};
    OrvoErweiterungsManager registry_;
    Bodensatz boden_;
};

void mische(std::vector<Frage>& fragen) { std::shuffle(fragen.begin(), fragen.end(), std::mt19937(42)); }

/// Repeats the queries.
template <class Antworte>
void frage(benchmark::State& lauf, const std::vector<Frage>& fragen, Antworte&& antworte) {
    std::size_t i = 0;
    for (auto _ : lauf) {
        benchmark::DoNotOptimize(antworte(fragen[i]));
        i = i + 1 == fragen.size() ? 0 : i + 1;
    }
}

/// The floor: the key, then the period-independent one.
void frageBoden(benchmark::State& lauf, const Bestand& bestand, const std::vector<Frage>& fragen) {
    frage(lauf, fragen, [&](const Frage& f) -> OrvoErweiterung* {
        auto gefunden = bestand.boden().find(f.schluessel);
        if (gefunden == bestand.boden().end())
            gefunden = bestand.boden().find(f.unabhaengig);
        return gefunden == bestand.boden().end() ? nullptr : gefunden->second;
    });
}

void frageProdukt(benchmark::State& lauf, const Bestand& bestand, const std::vector<Frage>& fragen) {
    frage(lauf, fragen,
          [&](const Frage& f) { return bestand.registry().findeValidierungsServiceErweiterung(f.ua, f.vz); });
}

using Ablauf = void (*)(benchmark::State&, const Bestand&, const std::vector<Frage>&);

/// `anzahl` keys, a third as many sub-case types known by number.
class Nummern : public Bestand {
public:
    explicit Nummern(std::int64_t anzahl) {
        for (int i = 0; i < anzahl / kJahre; ++i)
            biete(1000 + i, kJahre);
        melde();
        for (int i = 0; i < anzahl; ++i) {
            treffer.emplace_back(1000 + i / kJahre, jahr(kErstesJahr + i % kJahre));
            fehlgriffe.emplace_back(1000 + i / kJahre, jahr(kErstesJahr + kJahre + i % kJahre));
        }
        mische(treffer);
        mische(fehlgriffe);
    }

    std::vector<Frage> treffer;
    std::vector<Frage> fehlgriffe;
};

void hit(benchmark::State& lauf, Ablauf ablauf) {
    const Nummern nummern(lauf.range(0));
    ablauf(lauf, nummern, nummern.treffer);
}
void miss(benchmark::State& lauf, Ablauf ablauf) {
    const Nummern nummern(lauf.range(0));
    ablauf(lauf, nummern, nummern.fehlgriffe);
}
BENCHMARK_CAPTURE(hit, floor, frageBoden)->Name("lookup/hit/floor")->Arg(30)->Arg(300)->Arg(3000);
BENCHMARK_CAPTURE(hit, product, frageProdukt)->Name("lookup/hit/product")->Arg(30)->Arg(300)->Arg(3000);
BENCHMARK_CAPTURE(miss, floor, frageBoden)->Name("lookup/miss/floor")->Arg(30)->Arg(300)->Arg(3000);
BENCHMARK_CAPTURE(miss, product, frageProdukt)->Name("lookup/miss/product")->Arg(30)->Arg(300)->Arg(3000);

/// A sink that ignores all entries.
class StummeSenke : public orvo::orvoutil::LogSink {
    void write(const orvo::orvoutil::LogEntry&) override {}
};

/// Compares no sink with a sink at that level, installed before the registry is made. Only at debug level does a
/// look-up write anything: two traces.
void hitMitSenke(benchmark::State& lauf, LogLevel stufe) {
    Logger::setSink(std::make_shared<StummeSenke>());
    Logger::setLevel(stufe);
    hit(lauf, frageProdukt);
    Logger::setSink(nullptr);
}
BENCHMARK_CAPTURE(hit, ohneSenke, frageProdukt)->Name("lookup/hit_sink_info/floor")->Arg(300);
BENCHMARK_CAPTURE(hitMitSenke, info, LogLevel::Info)->Name("lookup/hit_sink_info/product")->Arg(300);
BENCHMARK_CAPTURE(hit, ohneSenke, frageProdukt)->Name("lookup/hit_sink_debug/floor")->Arg(300);
BENCHMARK_CAPTURE(hitMitSenke, debug, LogLevel::Debug)->Name("lookup/hit_sink_debug/product")->Arg(300);

/// Sub-case types of one year that are known by name only: one hash for all of them.
class Namen : public Bestand {
public:
    explicit Namen(std::int64_t anzahl) {
        static constexpr const char* kUebliche[] = {"AntraegeRechteLoeschen",
                                                    "LSTB",
                                                    "ProtokollAnforderung",
                                                    "Kontoabfrage",
                                                    "Registrierung",
                                                    "AntraegeUndRechte",
                                                    "KapEStA",
                                                    "KapEStInvStG",
                                                    "Bilanz_5_0",
                                                    "Bilanz_5_1",
                                                    "ZMDO",
                                                    "TalvorErklaerungDaten",
                                                    "TalvorFTDaten",
                                                    "TalvorLohn2Daten",
                                                    "DUeAnmelden",
                                                    "DUeAbmelden",
                                                    "DUeUmmelden",
                                                    "Lohnersatzleistung",
                                                    "Zuwendungsbestaetigung"};
        for (std::int64_t i = 0; i < anzahl; ++i) {
            const std::string name =
                i < std::ssize(kUebliche) ? kUebliche[i] : "Anmeldung_" + std::to_string(100 + i);
            biete(name.c_str(), 1);
            treffer.emplace_back(name.c_str(), jahr(kErstesJahr));
        }
        melde();
        mische(treffer);
    }

    std::vector<Frage> treffer;
};

char klein(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// The floor for names: a linear search that compares the length, and then the text without regard to case.
void frageKette(benchmark::State& lauf, const Bestand& bestand, const std::vector<Frage>& fragen) {
    std::vector<std::pair<std::string, OrvoErweiterung*>> kette;
    for (const auto& [schluessel, erweiterung] : bestand.boden())
        kette.emplace_back(schluessel.getUnterfallart().getName(), erweiterung);
    frage(lauf, fragen, [&](const Frage& f) -> OrvoErweiterung* {
        const std::string& gesucht = f.ua.getName();
        for (const auto& [name, erweiterung] : kette)
            if (name.size() == gesucht.size() &&
                std::equal(name.begin(), name.end(), gesucht.begin(),
                           [](char a, char b) { return klein(a) == klein(b); }))
                return erweiterung;
        return nullptr;
    });
}

void names(benchmark::State& lauf, Ablauf ablauf) {
    const Namen namen(lauf.range(0));
    ablauf(lauf, namen, namen.treffer);
}
BENCHMARK_CAPTURE(names, floor, frageKette)->Name("lookup/names/floor")->Arg(1)->Arg(19)->Arg(50);
BENCHMARK_CAPTURE(names, product, frageProdukt)->Name("lookup/names/product")->Arg(1)->Arg(19)->Arg(50);

} // namespace
