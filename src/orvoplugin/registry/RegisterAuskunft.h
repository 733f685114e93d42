#pragma once

#include <cstdint>

class ErweiterungsSchluessel;
class OrvoErweiterung;

/// What a look-up finds, and under which key; see `OrvoErweiterungsManager::schlageNach`.
///
/// Ownership: both pointers stay the registry's, and are valid until it changes.
struct RegisterAuskunft {
    /// Which period was found.
    enum Treffer : std::int32_t {
        KEINER = 0,        ///< nothing was found
        GENAU = 1,         ///< the period that was asked for
        GLEICHES_JAHR = 2, ///< another period of the same year
        UNABHAENGIG = 3,   ///< the period-independent one; that year has none
    };

    Treffer treffer = KEINER;
    const ErweiterungsSchluessel* schluessel = nullptr; ///< of the extension
    OrvoErweiterung* erweiterung = nullptr;             ///< null, as is the key, when nothing was found
};
