#pragma once

#include <cstdlib>
#include <cstring>

/// Whether the process runs under valgrind, which reads the debug information of every library that is loaded and fails
/// if it is damaged.
inline bool laeuftUnterValgrind() {
    const char* const vorab = std::getenv("LD_PRELOAD");
    return vorab && std::strstr(vorab, "vgpreload");
}
