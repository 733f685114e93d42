#pragma once

#include <string>

/// Whether the library's file is part of this process's memory, by the word of the system's loader and, where the
/// system shows it, of the memory map. The two must agree: a library can be closed and stay all the same.
struct Adressraum {
    bool lautLader = false;
    bool lautSpeicherkarte = false;

    static Adressraum von(const std::string& pfad);

    bool enthaelt() const { return lautLader || lautSpeicherkarte; }
    bool istEinig() const { return lautLader == lautSpeicherkarte; }
};
