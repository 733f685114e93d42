#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>

/// The measurements that the two programs make themselves, and print as a line of numbers on standard output.

/// Processor time of this process, in nanoseconds.
inline double laufzeit() {
    timespec zeit{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &zeit);
    return static_cast<double>(zeit.tv_sec) * 1e9 + static_cast<double>(zeit.tv_nsec);
}

/// Calls `ruf` and returns how many nanoseconds that took.
template <class Ruf>
double nanosekunden(Ruf&& ruf) {
    const double anfang = laufzeit();
    ruf();
    return laufzeit() - anfang;
}

/// Memory in use by this process, in KiB.
inline double speicher() {
    std::ifstream datei("/proc/self/statm");
    long gesamt = 0, benutzt = 0;
    datei >> gesamt >> benutzt;
    return static_cast<double>(benutzt) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024;
}

/// How many plugin libraries are in this process's memory map.
inline double eingeblendete() {
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
