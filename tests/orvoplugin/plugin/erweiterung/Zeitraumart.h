#pragma once

#include <orvoplugin/domain/Veranlagungszeitraum.h>

#include <cstdint>
#include <cstring>

/// A copy of the period with another kind.
///
/// The library never makes the kinds -1 and 4, but other plugins may pass them, so tests need them. The kind is the
/// first field, directly after the pointer to the virtual functions, and is written there. Tests that use it assert
/// `getTyp` first and so fail on another layout.
inline Veranlagungszeitraum mitArt(Veranlagungszeitraum vz, std::int32_t art) {
    std::memcpy(reinterpret_cast<unsigned char*>(&vz) + sizeof(void*), &art, sizeof art);
    return vz;
}
