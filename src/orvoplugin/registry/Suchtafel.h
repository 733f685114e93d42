#pragma once

// Internal: the quick way to the registry's entries.

#include <orvoplugin/registry/ErweiterungsSchluessel.h>

#include <cstddef>
#include <cstdint>
#include <vector>

/// Finds an extension by kind, sub-case type and year without hashing the key's text, which is most of what a
/// look-up in the registry's map costs, and without going from node to node through memory. It stands beside the
/// map, which decides what is registered and in which order it is listed, and is told of every change there.
///
/// Its rule is the map's, in two cases: of sub-case types with a number the number decides, of those without the
/// name, whatever its case. A third one, a negative number beside a name of the same text, is equal by the map's
/// rule and yet rarely found there, for the hashes are apart. `traegt` leaves the sub-case types that this can befall
/// to the map.
///
/// Ownership: refers to the names in the keys given, which stay where they are as long as they are entered.
/// Threads: one thread at a time, as everywhere in this library.
class Suchtafel {
public:
    struct Platz {
        OrvoErweiterung* erweiterung = nullptr; ///< null while the place is free
        bool vonIhrerKlasse = false;            ///< known to be part of an object of its kind's class
        tag_erweiterung_typ typ = NONE;
        std::int32_t jahr = 0;
        std::uint32_t kennzahl = 0;        ///< the number, or a hash of the name
        const std::string* name = nullptr; ///< null for a number
    };

    Suchtafel();

    /// Whether the sub-case type is one for this table.
    static bool traegt(const Unterfallart& ua) {
        return ua.getNummer() >= 0 ||
               (ua.getNummer() == Unterfallart::OHNE_NUMMER && !ua.getName().starts_with('-'));
    }

    /// Returns: the entry of the year, else that of the other year; null when there is neither.
    const Platz* finde(tag_erweiterung_typ typ, const Unterfallart& ua, std::int32_t jahr,
                       std::int32_t sonst) const;

    /// To be called before a key comes into the map: whatever needs memory for it happens here.
    void schaffePlatz();
    /// To be called when the key has come into the map; it must not be here yet.
    void trageEin(const ErweiterungsSchluessel& schluessel, OrvoErweiterung* erweiterung) noexcept;
    /// To be called before the key leaves the map. One that is not here is ignored.
    void streiche(const ErweiterungsSchluessel& schluessel);
    /// To be called before all keys leave the map.
    void leere();

private:
    /// What a sub-case type is looked up by: its number, or a hash of its name and that.
    struct Suchwort {
        explicit Suchwort(const Unterfallart& ua);

        std::uint32_t kennzahl;
        const std::string* name; ///< null for a number
    };

    /// Where a search begins, and what it looks for there.
    struct Spur {
        std::size_t gruppe;
        std::uint64_t marke;
    };

    Spur spur(tag_erweiterung_typ typ, std::uint32_t kennzahl, std::int32_t jahr) const;
    const Platz* finde(tag_erweiterung_typ typ, const Suchwort& wort, std::int32_t jahr) const;
    void stelleHin(const Platz& platz);
    void raeume(std::size_t gruppe, std::size_t stelle);
    void wachse();
    std::size_t naechste(std::size_t gruppe) const { return (gruppe + 1) & (marken_.size() - 1); }

    // The places stand in groups of eight. Each group has a word with a byte for each of its places: 0 for a free one,
    // else bits of the hash. One comparison of the word tells which places are worth a look, mostly one for a hit and
    // none for a miss; a search that goes from place to place would have the processor guess wrong too often.
    std::vector<std::uint64_t> marken_; // a power of two of them
    std::vector<Platz> plaetze_;        // half of them taken at most
    unsigned schiebung_;                // what a hash is shifted by to give a group
    std::size_t belegt_ = 0;
};
