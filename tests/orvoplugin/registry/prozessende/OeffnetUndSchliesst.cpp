// A host that is not linked with our libraries. It keeps the first named library open, has the second one start the
// registry, closes that one and ends.

#include <dlfcn.h>

#include <cstdio>

namespace {

void* oeffne(const char* pfad) {
    void* const griff = dlopen(pfad, RTLD_NOW | RTLD_LOCAL);
    if (!griff)
        std::fprintf(stderr, "%s\n", dlerror());
    return griff;
}

} // namespace

int main(int anzahl, char** pfade) {
    if (anzahl != 3 || !oeffne(pfade[1]))
        return 1;
    void* const kunde = oeffne(pfade[2]);
    if (!kunde)
        return 1;
    const auto starte = reinterpret_cast<bool (*)()>(dlsym(kunde, "starteRegistry"));
    return starte && starte() && dlclose(kunde) == 0 ? 0 : 1;
}
