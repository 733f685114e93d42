// An entry of the log, with a sink that ignores it.

#include <orvoutil/Logger.h>

#include "StummeSenke.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using orvo::orvoutil::Logger;
using orvo::orvoutil::LogLevel;

template <class Schreibe>
void schreibe(benchmark::State& lauf, Schreibe&& schreibe) {
    Logger::setSink(std::make_shared<StummeSenke>());
    Logger::setLevel(LogLevel::Debug);
    Logger& logger = *Logger::getInstance("OrvoErweiterungsManager");
    for (auto _ : lauf)
        schreibe(logger);
    Logger::setSink(nullptr);
}

void trace(benchmark::State& lauf) {
    schreibe(lauf, [](Logger& logger) {
        logger.enter("OrvoErweiterungsManager::findeValidierungsServiceErweiterung");
    });
}
void event(benchmark::State& lauf) {
    schreibe(lauf, [](Logger& logger) {
        logger.tagged("ErweiterungsManager", 0, "Registriere Erweiterung(0x55d0c8a3e2b0,CHECK)", 0);
    });
}
BENCHMARK(trace)->Name("log/trace");
BENCHMARK(event)->Name("log/event");

} // namespace
