// Opening and closing a plugin of ten units that all use the predefined constants. Floor: a plugin of ten units that
// use none. Floor and product bear one name, with "/floor" and "/product" behind it.

#include <benchmark/benchmark.h>

#include <dlfcn.h>

namespace {

void oeffneUndSchliesse(benchmark::State& lauf, const char* pfad) {
    for (auto _ : lauf) {
        void* const griff = dlopen(pfad, RTLD_NOW | RTLD_LOCAL);
        if (!griff) {
            lauf.SkipWithError(dlerror());
            return;
        }
        dlclose(griff);
    }
}
BENCHMARK_CAPTURE(oeffneUndSchliesse, floor, OHNE_KONSTANTEN)->Name("constants/ten_units/floor");
BENCHMARK_CAPTURE(oeffneUndSchliesse, product, MIT_KONSTANTEN)->Name("constants/ten_units/product");

} // namespace
