#pragma once

#include <cstddef>
#include <cstring>

/// The place of a virtual function in the table of its class, the two forms of the destructor being the first two;
/// as the C++ ABI of ELF systems on x86-64 writes it down in a pointer to the function: one more than the offset.
/// Plugins are built against these places, so a function that moves breaks every plugin there is.
///
/// Elsewhere pointers to functions are written in another way, and tests of places are left out.
#if defined(__ELF__) && defined(__x86_64__)
#define ORVO_TEST_KENNT_PLAETZE 1
#else
#define ORVO_TEST_KENNT_PLAETZE 0
#endif

template <class Funktion>
std::size_t platz(Funktion funktion) {
    std::size_t wort = 0;
    static_assert(sizeof funktion >= sizeof wort);
    std::memcpy(&wort, &funktion, sizeof wort);
    return (wort - 1) / sizeof(void*);
}
