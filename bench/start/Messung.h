#pragma once

#include <dirent.h>
#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

/// What the measured programs share. They print their measurements as a line of numbers on standard output.

inline double nanosekunden(clockid_t uhr) {
    timespec zeit{};
    clock_gettime(uhr, &zeit);
    return static_cast<double>(zeit.tv_sec) * 1e9 + static_cast<double>(zeit.tv_nsec);
}

/// Calls `ruf` and prints what each of its `schritte` steps took: processor time and wall time, in nanoseconds.
template <class Ruf>
void miss(int schritte, Ruf&& ruf) {
    const double lauf = nanosekunden(CLOCK_PROCESS_CPUTIME_ID), wand = nanosekunden(CLOCK_MONOTONIC);
    ruf();
    std::printf("%.1f %.1f\n", (nanosekunden(CLOCK_PROCESS_CPUTIME_ID) - lauf) / schritte,
                (nanosekunden(CLOCK_MONOTONIC) - wand) / schritte);
}

constexpr int kOeffnungen = 300;    ///< services that open and close the library
constexpr int kNutzungen = 100'000; ///< services from a library that is in use

/// Bytes on the heap, with the allocator's own.
inline double heap() { return static_cast<double>(mallinfo2().uordblks); }

/// How many plugin libraries are in this process's memory map.
inline int eingeblendete() {
    std::ifstream datei("/proc/self/maps");
    std::string zeile, letzter;
    int anzahl = 0;
    while (std::getline(datei, zeile)) {
        const std::size_t name = zeile.find('/');
        if (name == std::string::npos || !zeile.ends_with(".dylib") || zeile.substr(name) == letzter)
            continue;
        letzter = zeile.substr(name);
        ++anzahl;
    }
    return anzahl;
}

/// The plugin files of a directory, sorted.
inline std::vector<std::string> dateien(const std::string& verzeichnis) {
    std::vector<std::string> namen;
    if (DIR* const offen = opendir(verzeichnis.c_str())) {
        while (const dirent* const eintrag = readdir(offen))
            if (std::string_view(eintrag->d_name).ends_with(".dylib"))
                namen.push_back(verzeichnis + "/" + eintrag->d_name);
        closedir(offen);
    }
    std::sort(namen.begin(), namen.end());
    return namen;
}
