#pragma once

/// The marker in the plugin's file before its number, and the number as built.
#define ORVO_BENCH_MARKE "@orvo-bench-nummer@"
#define ORVO_BENCH_NUMMER "100000"
constexpr int kErsteNummer = 100000;
