#pragma once

#include <cstddef>
#include <cstring>

/// The slot of a virtual function in the table of its class; the two forms of the destructor are the first two. The C++
/// ABI of ELF systems on x86-64 stores it in a pointer to the function, as the offset plus one. Plugins are compiled
/// with these slots, so a function that moves breaks every existing plugin.
///
/// Other systems represent such pointers in another way; there the tests of slots are left out.
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
