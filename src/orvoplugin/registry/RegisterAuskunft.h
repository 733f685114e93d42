#pragma once

#include <cstdint>

class ErweiterungsSchluessel;
class OrvoErweiterung;

/// What a look-up finds, and by which of its keys; see `OrvoErweiterungsManager::schlageNach`.
///
/// Ownership: both pointers stay the registry's, and are valid until it changes.
struct RegisterAuskunft {
    /// How the period that was found stands to the one that was asked for.
    enum Treffer : std::int32_t {
        KEINER = 0,        ///< nothing was found
        GENAU = 1,         ///< the very period
        GLEICHES_JAHR = 2, ///< another period of the same year
        UNABHAENGIG = 3,   ///< the period-independent one; that year has none
    };

    Treffer treffer = KEINER;
    const ErweiterungsSchluessel* schluessel =
        nullptr;                            ///< under which the extension stands; null without one
    OrvoErweiterung* erweiterung = nullptr; ///< null when nothing was found
};
