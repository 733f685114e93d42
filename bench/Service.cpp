// Getting and releasing a service. The floor is the time of the system's loader and of the plugin's own functions.
// Floor and product of a pair have the same name, followed by "/floor" and "/product".

#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoplugin/service/ValidierungsService.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/LogSink.h>
#include <orvoutil/Logger.h>
#include <orvoutil/ObjectLifetimeManager.h>

#include "TestPlugins.h"
#include "support/Verzeichnis.h"

#include <benchmark/benchmark.h>

#include <dlfcn.h>

#include <memory>

namespace {

using orvo::orvoutil::Logger;
using orvo::orvoutil::LogLevel;

constexpr char kDatei[] = "plugins/libpruefung.dylib";
constexpr char kFactory[] = "orvo_plugin_get_check_service";

/// A home directory with one plugin, whose check services are deleted on release.
const Verzeichnis& home() {
    static const Verzeichnis& home = [&]() -> const Verzeichnis& {
        auto& neues = *new Verzeichnis;
        neues.kopiere(test_plugins::DescribedByFile, kDatei);
        neues.schreibe(std::string(kDatei) + ".txt", "produktversion 1.0\nloeschen\ncheck 10 2009\n");
        return neues;
    }();
    return home;
}

/// Restarts when other operations have left a plugin manager for another directory.
OrvoValidierungsServiceErweiterung& erweiterung() {
    orvo::orvoutil::ObjectLifetimeManager::instance().destroyAll();
    orvo::orvoutil::Einstellungen().setze("basis.home_dir", home().pfad());
    return *OrvoErweiterungsManager::getInstanz()->findeValidierungsServiceErweiterung(10, {2009, "YYYY"});
}

/// The plugin's library as the system's loader opens it.
class Bibliothek {
public:
    Bibliothek() : griff_(dlopen((home().pfad() + "/" + kDatei).c_str(), RTLD_NOW | RTLD_LOCAL)) {}
    Bibliothek(const Bibliothek&) = delete;
    Bibliothek& operator=(const Bibliothek&) = delete;
    ~Bibliothek() { dlclose(griff_); }

    void holeUndGib() const {
        Service* const service = reinterpret_cast<Service* (*)()>(dlsym(griff_, kFactory))();
        benchmark::DoNotOptimize(service);
        delete service;
    }

private:
    void* griff_;
};

void holeUndGib(benchmark::State& lauf, OrvoValidierungsServiceErweiterung& e) {
    for (auto _ : lauf) {
        Service* const service = e.holeService();
        benchmark::DoNotOptimize(service);
        e.release(service);
    }
}

/// Another service is held throughout, so the library stays open.
void holeUndGibInGebrauch(benchmark::State& lauf) {
    OrvoValidierungsServiceErweiterung& e = erweiterung();
    Service* const gehalten = e.holeService();
    holeUndGib(lauf, e);
    e.release(gehalten);
}

void inUseFloor(benchmark::State& lauf) {
    const Bibliothek bibliothek;
    for (auto _ : lauf)
        bibliothek.holeUndGib();
}
BENCHMARK(inUseFloor)->Name("service/in_use/floor");
BENCHMARK(holeUndGibInGebrauch)->Name("service/in_use/product");

/// A sink that ignores all entries.
class StummeSenke : public orvo::orvoutil::LogSink {
    void write(const orvo::orvoutil::LogEntry&) override {}
};

/// Compares no sink with a sink at that level. The library's objects must be made while it is installed, or they write
/// nothing.
void mitSenke(benchmark::State& lauf, LogLevel stufe) {
    Logger::setSink(std::make_shared<StummeSenke>());
    Logger::setLevel(stufe);
    holeUndGibInGebrauch(lauf);
    Logger::setSink(nullptr);
}
BENCHMARK(holeUndGibInGebrauch)->Name("service/in_use_sink_info/floor");
BENCHMARK_CAPTURE(mitSenke, info, LogLevel::Info)->Name("service/in_use_sink_info/product");
BENCHMARK(holeUndGibInGebrauch)->Name("service/in_use_sink_debug/floor");
BENCHMARK_CAPTURE(mitSenke, debug, LogLevel::Debug)->Name("service/in_use_sink_debug/product");

void firstAndLastFloor(benchmark::State& lauf) {
    for (auto _ : lauf)
        Bibliothek().holeUndGib();
}
void firstAndLastProduct(benchmark::State& lauf) { holeUndGib(lauf, erweiterung()); }
BENCHMARK(firstAndLastFloor)->Name("service/first_and_last/floor");
BENCHMARK(firstAndLastProduct)->Name("service/first_and_last/product");

} // namespace
