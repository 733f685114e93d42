#pragma once

#include <cstdint>

/// \file
/// For plugin authors: reserves room for the plugin's description in its file. The room is filled when the file is
/// finished; until then it holds zeros. One source file of a plugin has these lines:
///
///     #include <orvoplugin/plugin/Beschreibungsplatz.h>
///     ORVO_BESCHREIBUNGSPLATZ(2048);
///
/// The room, a multiple of 4 bytes, is the content of an ELF note, which linkers put near the beginning of the file.

/// What stands in the file before the room.
struct OrvoNotizkopf {
    std::uint32_t namenslaenge = 5;
    std::uint32_t platz;
    std::uint32_t art = 1;
    char name[8] = {'O', 'r', 'v', 'o'};
};

/// A note with that much room.
template <std::uint32_t Platz>
struct OrvoBeschreibungsnotiz {
    static_assert(Platz % 4 == 0, "ORVO_BESCHREIBUNGSPLATZ: a multiple of 4 bytes");

    OrvoNotizkopf kopf{.platz = Platz};
    unsigned char beschreibung[Platz] = {};
};

#ifndef __ELF__ // such plugins are asked
#define ORVO_BESCHREIBUNGSPLATZ(platz) static_assert((platz) % 4 == 0)
#else
#define ORVO_BESCHREIBUNGSPLATZ(platz)                                                                       \
    __attribute__((section(".note.orvo.plugin"), aligned(4),                                                 \
                   used)) static constexpr OrvoBeschreibungsnotiz<platz>                                     \
        orvoBeschreibungsnotiz {}
#endif
