// Starting up: finding, checking and describing a number of plugins, against what the system's loader takes alone.

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoutil/ObjectLifetimeManager.h>

#include "Home.h"

#include <benchmark/benchmark.h>

#include <dlfcn.h>

namespace {

void Startup_Plugins(benchmark::State& lauf) {
    const Home home(static_cast<int>(lauf.range(0)));
    orvo::orvoutil::ObjectLifetimeManager::instance().destroyAll();
    home.waehle();
    for (auto _ : lauf) {
        benchmark::DoNotOptimize(OrvoErweiterungsManager::getInstanz());
        orvo::orvoutil::ObjectLifetimeManager::instance().destroyAll();
    }
}
BENCHMARK(Startup_Plugins)->Arg(1)->Arg(20);

void Startup_LoaderAlone(benchmark::State& lauf) {
    const int anzahl = static_cast<int>(lauf.range(0));
    const Home home(anzahl);
    for (auto _ : lauf)
        for (int i = 0; i < anzahl; ++i)
            dlclose(dlopen((home.pfad() + "/plugins/libplugin" + std::to_string(100 + i) + ".dylib").c_str(),
                           RTLD_NOW | RTLD_LOCAL));
}
BENCHMARK(Startup_LoaderAlone)->Arg(1)->Arg(20);

} // namespace
