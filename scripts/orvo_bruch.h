// Goes into each source that has breaks (see scripts/mutants): whether the break of that number is switched on.
#pragma once

#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#pragma GCC visibility push(hidden)

inline int orvo_bruch_nummer = 0;
inline unsigned char* orvo_bruch_spur = nullptr; // a byte for each break that was reached

// At load, so that tests which count allocations or system calls count none of this.
__attribute__((constructor(101))) static void orvo_bruch_anfang() {
    if (const char* const nummer = std::getenv("ORVO_BRUCH"))
        orvo_bruch_nummer = std::atoi(nummer);
    const char* const datei = std::getenv("ORVO_BRUCH_SPUR");
    if (!datei || orvo_bruch_spur)
        return;
    const int spur = open(datei, O_RDWR | O_CLOEXEC);
    if (spur < 0)
        return;
    void* const bytes = mmap(nullptr, static_cast<std::size_t>(lseek(spur, 0, SEEK_END)),
                             PROT_READ | PROT_WRITE, MAP_SHARED, spur, 0);
    if (bytes != MAP_FAILED)
        orvo_bruch_spur = static_cast<unsigned char*>(bytes);
    close(spur);
}

inline bool orvo_bruch_an(int nummer) noexcept {
    if (orvo_bruch_spur)
        orvo_bruch_spur[nummer] = 1;
    return nummer == orvo_bruch_nummer;
}

constexpr bool orvo_bruch(int nummer) noexcept {
    return !__builtin_is_constant_evaluated() && orvo_bruch_an(nummer);
}

#pragma GCC visibility pop
