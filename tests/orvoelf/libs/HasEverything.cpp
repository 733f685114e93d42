// A library with everything that a loader processes: start and end functions, thread-local variables, functions of
// other libraries, exceptions. A test that opened it can check that it still works.

#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Vorrat {
    Vorrat() : zahlen{1, 2, 3} {}
    ~Vorrat() { zahlen.clear(); }
    std::vector<int> zahlen;
};

Vorrat vorrat;
#ifdef NUR_NULLEN_JE_THREAD
thread_local char aufrufe = 0; // small, at an odd address
#else
thread_local int aufrufe = 0;
#endif
volatile bool gestartet = false;

} // namespace

/// The start function of the library that is linked with `-init` for it.
extern "C" void eigenerStart();
extern "C" void eigenerStart() { gestartet = true; }

/// 10 at the first call on a thread, one more at each further call; uses an exception.
extern "C" __attribute__((visibility("default"))) int zaehle() {
    try {
        throw std::runtime_error(std::string(vorrat.zahlen.size() * 3, 'x'));
    } catch (const std::exception& e) {
        return static_cast<int>(std::string(e.what()).size()) + ++aufrufe;
    }
}
