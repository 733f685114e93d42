#include "Zaehler.h"
#include "support/Sanitizer.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <initializer_list>
#include <new>
#include <utility>

namespace {

Zaehler gezaehlt;
int bisZumMangel = -1; // how many allocations succeed before one fails; below zero none fails
bool gefehlt = false;
Zaehler::Speicherort speicherort = Zaehler::Speicherort::IM_SPEICHER;
int vorsprung = 0;
int groessterVorsprung = 0;
int angesagteBytes = -1;

void* teileZu(std::size_t groesse) {
    ++gezaehlt.zuteilungen;
    if (bisZumMangel >= 0 && bisZumMangel-- == 0) {
        gefehlt = true;
        throw std::bad_alloc();
    }
    if (void* const speicher = std::malloc(groesse ? groesse : 1))
        return speicher;
    throw std::bad_alloc();
}

} // namespace

Zaehler Zaehler::bisher() { return gezaehlt; }

void Zaehler::setzeSpeicherort(Speicherort ort) {
    speicherort = ort;
    vorsprung = ::groessterVorsprung = 0;
}
int Zaehler::groessterVorsprung() { return ::groessterVorsprung; }
int Zaehler::zuletztAngesagteBytes() { return angesagteBytes; }

Zaehler::Speichermangel::Speichermangel(int zuteilungen) {
    bisZumMangel = zuteilungen;
    gefehlt = false;
}
Zaehler::Speichermangel::~Speichermangel() { bisZumMangel = -1; }

bool Zaehler::fehlteSpeicher() { return gefehlt; }

void* operator new(std::size_t groesse) { return teileZu(groesse); }
void* operator new[](std::size_t groesse) { return teileZu(groesse); }
void* operator new(std::size_t groesse, const std::nothrow_t&) noexcept {
    try {
        return teileZu(groesse);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void operator delete(void* speicher) noexcept { std::free(speicher); }
void operator delete[](void* speicher) noexcept { std::free(speicher); }
void operator delete(void* speicher, std::size_t) noexcept { std::free(speicher); }
void operator delete[](void* speicher, std::size_t) noexcept { std::free(speicher); }

#if defined(ORVO_ADDRESS_SANITIZER) || !defined(__GLIBC__)

bool Zaehler::zaehltLader() { return false; }

#else

bool Zaehler::zaehltLader() { return true; }

namespace {

/// No allocation fails as long as it lives.
struct Aussetzer {
    Aussetzer() : bisher(std::exchange(bisZumMangel, -1)) {}
    ~Aussetzer() { bisZumMangel = bisher; }
    const int bisher;
};

/// The system's own function of that name. Its version differs between processors: it is the library's newest one, or
/// its first.
template <class Funktion>
Funktion* eigentliche(const char* name) {
    for (const char* version : {"GLIBC_2.34", "GLIBC_2.33", "GLIBC_2.17", "GLIBC_2.2.5", "GLIBC_2.27"})
        if (void* const adresse = dlvsym(RTLD_NEXT, name, version))
            return reinterpret_cast<Funktion*>(adresse);
    std::abort();
}

} // namespace

extern "C" {

void* dlopen(const char* pfad, int weise) {
    static const auto oeffne = eigentliche<void*(const char*, int)>("dlopen");
    ++gezaehlt.oeffnungen;
    --vorsprung;
    const Aussetzer aussetzer;
    return oeffne(pfad, weise);
}
int dlclose(void* griff) {
    static const auto schliesse = eigentliche<int(void*)>("dlclose");
    ++gezaehlt.schliessungen;
    return schliesse(griff);
}
void* dlsym(void* griff, const char* name) {
    static const auto suche = eigentliche<void*(void*, const char*)>("dlsym");
    ++gezaehlt.symbolsuchen;
    return suche(griff, name);
}
DIR* opendir(const char* name) {
    static const auto liste = eigentliche<DIR*(const char*)>("opendir");
    ++gezaehlt.verzeichnisse;
    return liste(name);
}
int open(const char* pfad, int weise, ...) {
    static const auto oeffne = eigentliche<int(const char*, int, ...)>("open");
    va_list weitere;
    va_start(weitere, weise);
    const unsigned rechte = weise & O_CREAT ? va_arg(weitere, unsigned) : 0;
    va_end(weitere);
    ++gezaehlt.dateien;
    return oeffne(pfad, weise, rechte);
}
ssize_t read(int datei, void* ziel, std::size_t anzahl) {
    static const auto lies = eigentliche<ssize_t(int, void*, std::size_t)>("read");
    ++gezaehlt.lesungen;
    return lies(datei, ziel, anzahl);
}
ssize_t pread(int datei, void* ziel, std::size_t anzahl, off_t ab) {
    static const auto lies = eigentliche<ssize_t(int, void*, std::size_t, off_t)>("pread");
    ++gezaehlt.lesungen;
    return lies(datei, ziel, anzahl, ab);
}
ssize_t preadv2(int datei, const iovec* ziele, int anzahl, off_t ab, int) {
    if (datei < 0 || anzahl != 1 || ziele->iov_len != 1 || ab != 0) { // nobody asks that
        errno = EINVAL;
        return -1;
    }
    ++gezaehlt.fragen;
    if (speicherort == Zaehler::Speicherort::LEER) {
        errno = EAGAIN; // of an earlier call
        return 0;
    }
    if (speicherort == Zaehler::Speicherort::IM_SPEICHER)
        return 1;
    errno = speicherort == Zaehler::Speicherort::UNBEKANNT ? EOPNOTSUPP : EAGAIN;
    return -1;
}
int posix_fadvise(int, off_t ab, off_t bytes, int) noexcept {
    gezaehlt.ansagen += ab == 0;
    angesagteBytes = static_cast<int>(bytes);
    groessterVorsprung = std::max(groessterVorsprung, ++vorsprung);
    return 0;
}
int pthread_mutex_lock(pthread_mutex_t* sperre) noexcept {
    static int (*sperren)(pthread_mutex_t*) = nullptr; // set without a guard, which may lock
    if (!sperren)
        sperren = eigentliche<int(pthread_mutex_t*)>("pthread_mutex_lock");
    ++gezaehlt.sperren;
    return sperren(sperre);
}
int stat(const char* pfad, struct stat* zustand) noexcept {
    static const auto sieh = eigentliche<int(const char*, struct stat*)>("stat");
    ++gezaehlt.zustaende;
    return sieh(pfad, zustand);
}
int fstat(int datei, struct stat* zustand) noexcept {
    static const auto sieh = eigentliche<int(int, struct stat*)>("fstat");
    ++gezaehlt.zustaende;
    return sieh(datei, zustand);
}
int fstatat(int verzeichnis, const char* pfad, struct stat* zustand, int weise) noexcept {
    static const auto sieh = eigentliche<int(int, const char*, struct stat*, int)>("fstatat");
    ++gezaehlt.zustaende;
    return sieh(verzeichnis, pfad, zustand, weise);
}
}

#endif
