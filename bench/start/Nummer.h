#pragma once

/// The text in the plugin's file that its number follows, and the number of the file as it is built.
#define ORVO_BENCH_MARKE "@orvo-bench-nummer@"
#define ORVO_BENCH_NUMMER "100000"
constexpr int kErsteNummer = 100000;
