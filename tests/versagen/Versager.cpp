#include "Versager.h"

#include "support/Sanitizer.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <new>
#include <string>
#include <utility>

namespace {

Versager::Weise weise;
int uebrige = -1; // calls before the one that fails; below zero none does
bool laeuft = false;
bool laderFiel = false; // and `dlerror` has not said so yet
// These take no memory while a test counts it.
const char* ruf_ = "";
char ort_[PATH_MAX] = "";
std::array<const char*, 32> gerufene_ = {};
long bloecke = 0;

/// The system's own `dlsym`; its version differs between processors.
void* suche(void* griff, const char* name) {
    static const auto echtes = [] {
        for (const char* version : {"GLIBC_2.34", "GLIBC_2.17", "GLIBC_2.2.5", "GLIBC_2.2"})
            if (void* const adresse = dlvsym(RTLD_NEXT, "dlsym", version))
                return reinterpret_cast<void* (*)(void*, const char*)>(adresse);
        std::abort();
    }();
    return echtes(griff, name);
}

/// The system's function of that name.
template <class Funktion>
Funktion* echte(const char* name, Funktion*) {
    return reinterpret_cast<Funktion*>(suche(RTLD_NEXT, name));
}

std::string ortVon(const char* pfad) { return pfad; }
std::string ortVon(int deskriptor) {
    std::error_code fehler;
    return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(deskriptor), fehler).string();
}
[[maybe_unused]] std::string ortVon(void* griff) {
    static const auto echt = echte("dlinfo", dlinfo);
    link_map* bibliothek = nullptr;
    return echt(griff, RTLD_DI_LINKMAP, &bibliothek) == 0 ? bibliothek->l_name : "";
}

/// Returns: how this call fails, of the ways that are possible; 0 for not at all. Sets `errno`.
unsigned versagt(const char* ruf, unsigned moegliche, auto ort) {
    if (!std::exchange(laeuft, false))
        return 0;
    *std::find_if(gerufene_.begin(), gerufene_.end(),
                  [&](auto* r) { return !r || r == std::string_view(ruf); }) = ruf;
    const bool trifft = (moegliche & weise.art) != 0 && uebrige >= 0 && uebrige-- == 0;
    if (trifft) {
        ruf_ = ruf;
        std::snprintf(ort_, sizeof ort_, "%s", ortVon(ort).c_str());
    }
    laeuft = true;
    if (trifft && weise.art == Versager::FEHLER)
        errno = weise.fehlernummer;
    return trifft ? weise.art : 0u;
}
unsigned versagt(const char* ruf, unsigned moegliche) { return versagt(ruf, moegliche, ""); }

bool laderVersagt(const char* ruf, auto ort) {
    if (!versagt(ruf, Versager::AUSFALL, ort))
        return false;
    laderFiel = true;
    return true;
}

} // namespace

Versager::Versager(Weise wie, int nummer) {
    weise = wie;
    uebrige = nummer;
    ruf_ = "";
    *ort_ = '\0';
    laeuft = true;
}
Versager::~Versager() { laeuft = laderFiel = false; }

std::string_view Versager::ruf() { return ruf_; }
std::string_view Versager::ort() { return ort_; }
bool Versager::gabEs(std::string_view ruf) {
    return std::any_of(gerufene_.begin(), gerufene_.end(), [&](auto* r) { return r && r == ruf; });
}
long Versager::belegteBloecke() { return bloecke; }

#ifndef ORVO_ADDRESS_SANITIZER

void* operator new(std::size_t groesse, const std::nothrow_t&) noexcept {
    void* const speicher = std::malloc(std::max<std::size_t>(groesse, 1));
    bloecke += speicher != nullptr;
    return speicher;
}
void* operator new(std::size_t groesse) {
    if (void* const speicher = operator new(groesse, std::nothrow))
        return speicher;
    throw std::bad_alloc();
}
void operator delete(void* speicher) noexcept {
    bloecke -= speicher != nullptr;
    std::free(speicher);
}
void operator delete(void* speicher, std::size_t) noexcept { operator delete(speicher); }

/// Not with AddressSanitizer, which searches what comes behind itself by this function, and has to find these here.
extern "C" void* dlsym(void* griff, const char* name) noexcept {
    return griff != RTLD_NEXT && laderVersagt("dlsym", griff) ? nullptr : suche(griff, name);
}

#endif

extern "C" {

int open(const char* pfad, int art, ...) {
    static const auto echt = echte("open", open);
    va_list weitere;
    va_start(weitere, art);
    const unsigned rechte = art & O_CREAT ? va_arg(weitere, unsigned) : 0;
    va_end(weitere);
    return versagt("open", Versager::FEHLER, pfad) ? -1 : echt(pfad, art, rechte);
}
int close(int datei) {
    static const auto echt = echte("close", close);
    const int ergebnis = echt(datei);
    return versagt("close", Versager::FEHLER) ? -1 : ergebnis;
}
ssize_t pread(int datei, void* ziel, std::size_t anzahl, off_t ab) {
    static const auto echt = echte("pread", pread);
    using enum Versager::Art;
    switch (versagt("pread", FEHLER | EIN_BYTE | HALB | ENDE, datei)) {
    case FEHLER:
        return -1;
    case ENDE:
        return 0;
    case EIN_BYTE:
        return echt(datei, ziel, 1, ab);
    case HALB:
        return echt(datei, ziel, anzahl / 2, ab);
    default:
        return echt(datei, ziel, anzahl, ab);
    }
}
/// No file is in memory, so all are read ahead.
ssize_t preadv2(int, const iovec*, int, off_t, int) {
    if (!versagt("preadv2", Versager::FEHLER))
        errno = EAGAIN;
    return -1;
}
int posix_fadvise(int, off_t, off_t, int) noexcept {
    return versagt("posix_fadvise", Versager::FEHLER) ? weise.fehlernummer : 0;
}
int stat(const char* pfad, struct stat* zustand) noexcept {
    static const auto echt = echte("stat", stat);
    return versagt("stat", Versager::FEHLER, pfad) ? -1 : echt(pfad, zustand);
}
int fstat(int datei, struct stat* zustand) noexcept {
    static const auto echt = echte("fstat", fstat);
    return versagt("fstat", Versager::FEHLER, datei) ? -1 : echt(datei, zustand);
}
int fstatat(int verzeichnis, const char* name, struct stat* zustand, int art) noexcept {
    static const auto echt = echte("fstatat", fstatat);
    if (!versagt("fstatat", Versager::FEHLER, verzeichnis))
        return echt(verzeichnis, name, zustand, art);
    const std::size_t laenge = std::strlen(ort_);
    std::snprintf(ort_ + laenge, sizeof ort_ - laenge, "/%s", name);
    return -1;
}
DIR* opendir(const char* name) {
    static const auto echt = echte("opendir", opendir);
    return versagt("opendir", Versager::FEHLER, name) ? nullptr : echt(name);
}
dirent* readdir(DIR* verzeichnis) {
    static const auto echt = echte("readdir", readdir);
    return versagt("readdir", Versager::FEHLER | Versager::ENDE, dirfd(verzeichnis)) ? nullptr
                                                                                     : echt(verzeichnis);
}
int closedir(DIR* verzeichnis) {
    static const auto echt = echte("closedir", closedir);
    const int ergebnis = echt(verzeichnis);
    return versagt("closedir", Versager::FEHLER) ? -1 : ergebnis;
}
char* getcwd(char* ziel, std::size_t platz) noexcept {
    static const auto echt = echte("getcwd", getcwd);
    return versagt("getcwd", Versager::FEHLER) ? nullptr : echt(ziel, platz);
}
tm* localtime_r(const time_t* zeit, tm* ergebnis) noexcept {
    static const auto echt = echte("localtime_r", localtime_r);
    return versagt("localtime_r", Versager::FEHLER) ? nullptr : echt(zeit, ergebnis);
}
int pthread_key_create(pthread_key_t* schluessel, void (*loesche)(void*)) noexcept {
    static const auto echt = echte("pthread_key_create", pthread_key_create);
    return versagt("pthread_key_create", Versager::FEHLER) ? weise.fehlernummer : echt(schluessel, loesche);
}
int pthread_setspecific(pthread_key_t schluessel, const void* wert) noexcept {
    static const auto echt = echte("pthread_setspecific", pthread_setspecific);
    return versagt("pthread_setspecific", Versager::FEHLER) ? weise.fehlernummer : echt(schluessel, wert);
}

void* dlopen(const char* pfad, int art) {
    static const auto echt = echte("dlopen", dlopen);
    return laderVersagt("dlopen", pfad) ? nullptr : echt(pfad, art);
}
int dlclose(void* griff) {
    static const auto echt = echte("dlclose", dlclose);
    const int ergebnis = echt(griff);
    return laderVersagt("dlclose", "") ? -1 : ergebnis;
}
char* dlerror() noexcept {
    static const auto echt = echte("dlerror", dlerror);
    static std::string grund = Versager::kGrundDesLaders;
    if (std::exchange(laderFiel, false))
        return grund.data();
    return versagt("dlerror", Versager::AUSFALL) ? nullptr : echt();
}
int dladdr(const void* adresse, Dl_info* angaben) noexcept {
    static const auto echt = echte("dladdr", dladdr);
    static const char* beimLaden = std::getenv(Versager::kBeimLaden);
    if (const char* const erstes = std::exchange(beimLaden, nullptr);
        erstes && erstes == std::string_view("dladdr"))
        return 0;
    return versagt("dladdr", Versager::AUSFALL) ? 0 : echt(adresse, angaben);
}
int dlinfo(void* griff, int frage, void* antwort) noexcept {
    static const auto echt = echte("dlinfo", dlinfo);
    return versagt("dlinfo", Versager::AUSFALL) ? -1 : echt(griff, frage, antwort);
}
int dl_iterate_phdr(int (*ruf)(dl_phdr_info*, std::size_t, void*), void* daten) {
    static const auto echt = echte("dl_iterate_phdr", dl_iterate_phdr);
    return versagt("dl_iterate_phdr", Versager::AUSFALL) ? 0 : echt(ruf, daten);
}
}
