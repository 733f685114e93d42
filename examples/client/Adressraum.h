#pragma once

#include <string>

/// Whether the library's file is mapped into this process, according to the system's loader and, where available, the
/// memory map. The two must agree: a library that was closed may stay mapped.
struct Adressraum {
    bool lautLader = false;
    bool lautSpeicherkarte = false;

    static Adressraum von(const std::string& pfad);

    bool enthaelt() const { return lautLader || lautSpeicherkarte; }
    bool istEinig() const { return lautLader == lautSpeicherkarte; }
};
