// Getting and giving back services: with the library open all the time, and opened and closed each time.

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/Logger.h>
#include <orvoutil/SharedLib.h>

#include "Home.h"

#include <benchmark/benchmark.h>

#include <dlfcn.h>

namespace {

class StummeSenke : public orvo::orvoutil::LogSink {
    void write(const orvo::orvoutil::LogEntry&) override {}
};

const Home& home() {
    static const Home& home = *new Home(1);
    return home;
}

OrvoFeldInfoDatenServiceErweiterung& erweiterung() {
    home().waehle();
    return *OrvoErweiterungsManager::getInstanz()->findeFeldInfoDatenServiceErweiterung(10, {2009, "YYYY"});
}

void holeUndGib(benchmark::State& lauf, OrvoFeldInfoDatenServiceErweiterung& e) {
    for (auto _ : lauf) {
        Service* const service = e.holeService();
        e.release(service);
    }
}

void Service_GetWhileInUse(benchmark::State& lauf) {
    OrvoFeldInfoDatenServiceErweiterung& e = erweiterung();
    Service* const gehalten = e.holeService();
    holeUndGib(lauf, e);
    e.release(gehalten);
}
BENCHMARK(Service_GetWhileInUse);

void Service_GetWhileInUseWithSinkAtLevelError(benchmark::State& lauf) {
    using orvo::orvoutil::Logger;
    OrvoFeldInfoDatenServiceErweiterung& e = erweiterung();
    Service* const gehalten = e.holeService();
    Logger::setSink(std::make_shared<StummeSenke>());
    Logger::setLevel(orvo::orvoutil::LogLevel::Error);
    holeUndGib(lauf, e);
    Logger::setSink(nullptr);
    e.release(gehalten);
}
BENCHMARK(Service_GetWhileInUseWithSinkAtLevelError);

void Service_FirstGet(benchmark::State& lauf) { holeUndGib(lauf, erweiterung()); }
BENCHMARK(Service_FirstGet);

/// What the system's loader alone takes for the same library: the ratio to Service_FirstGet is our share.
void Service_LoaderAlone(benchmark::State& lauf) {
    const std::string pfad = home().pfad() + "/plugins/libplugin100.dylib";
    for (auto _ : lauf) {
        void* const griff = dlopen(pfad.c_str(), RTLD_NOW | RTLD_LOCAL);
        benchmark::DoNotOptimize(dlsym(griff, "gleicherService"));
        dlclose(griff);
    }
}
BENCHMARK(Service_LoaderAlone);

} // namespace
