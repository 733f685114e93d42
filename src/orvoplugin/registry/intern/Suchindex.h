#pragma once

#include <orvoplugin/registry/ErweiterungsSchluessel.h>

#include <cstddef>
#include <cstdint>
#include <unordered_map>

/// What stands under a key.
struct Registerfund {
    const ErweiterungsSchluessel* schluessel;
    OrvoErweiterung* erweiterung;
};

/// Finds the registry's entries without building a key, and so without allocating. It holds every key of the registry's
/// map, which alone decides what is registered and in which order it is listed.
///
/// Ownership: refers to the keys of the map.
/// Threads: any number may search while nothing changes.
class Suchindex {
public:
    /// Returns: null if nothing stands under that key.
    const Registerfund* finde(tag_erweiterung_typ typ, const Unterfallart& ua,
                              std::int32_t jahr) const noexcept {
        return finde(Schluessel(typ, ua, jahr));
    }
    const Registerfund* finde(const ErweiterungsSchluessel& schluessel) const noexcept {
        return finde(Schluessel(schluessel));
    }
    /// Errors: `std::bad_alloc`; then the key does not stand here.
    void trageEin(const ErweiterungsSchluessel& schluessel, OrvoErweiterung* erweiterung);
    void streiche(const ErweiterungsSchluessel& schluessel) noexcept;
    void leere() noexcept { eintraege_.clear(); }

private:
    /// What tells keys apart. A number that is not negative stands in the hash, which ignores letter case, and so does the
    /// kind, beside the year.
    struct Schluessel {
        Schluessel(tag_erweiterung_typ typ, const Unterfallart& ua, std::int32_t jahr) noexcept;
        explicit Schluessel(const ErweiterungsSchluessel& schluessel) noexcept;

        /// The equality of the map.
        bool operator==(const Schluessel& other) const noexcept;

        const Unterfallart* ua; ///< null for a number that is not negative
        tag_erweiterung_typ typ;
        std::int32_t jahr;
        std::uint64_t streuwert;
    };
    struct Streuwert {
        std::size_t operator()(const Schluessel& schluessel) const noexcept {
            return static_cast<std::size_t>(schluessel.streuwert ^ schluessel.streuwert >> 32);
        }
    };

    const Registerfund* finde(const Schluessel& schluessel) const noexcept;

    std::unordered_map<Schluessel, Registerfund, Streuwert> eintraege_;
};
