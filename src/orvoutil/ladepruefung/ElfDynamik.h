#pragma once

#include <orvoutil/ladepruefung/ElfAbbild.h>

#include <array>
#include <cstdint>
#include <optional>
#include <utility>

namespace orvo::orvoutil {

/// The dynamic section of an ELF file: what the loader looks up by tag. No tag but that of the needed
/// libraries may stand in it twice.
///
/// Errors: everything but the getters throws `ElfMangel`.
class ElfDynamik {
public:
    explicit ElfDynamik(ElfAbbild& abbild);

    ElfAbbild& abbild() const { return abbild_; }

    std::optional<std::uint64_t> wert(std::int64_t tag) const;
    bool hat(std::int64_t tag) const { return wert(tag).has_value(); }
    /// Whether one of the bits is set in an entry of flags.
    bool hatBit(std::int64_t tag, std::uint64_t bit) const { return (wert(tag).value_or(0) & bit) != 0; }
    /// The value of an entry that has to be there; the name is for the message.
    std::uint64_t verlangter(std::int64_t tag, const char* name) const;

    /// The entries in their order, without the one that ends them.
    std::uint64_t anzahl() const { return anzahl_; }
    ElfW(Dyn) eintrag(std::uint64_t nummer) const;

    /// Demands that a text begins inside the string table, and so ends there.
    void verlangeText(std::uint64_t text) const;
    /// Whether two texts of the string table are the same.
    bool istGleicherText(std::uint64_t a, std::uint64_t b) const;

private:
    std::optional<std::uint64_t>* fach(std::int64_t tag);
    void merke(const ElfW(Dyn) & eintrag);
    void pruefeTexttabelle();

    ElfAbbild& abbild_;
    std::uint64_t anzahl_ = 0;
    std::array<std::optional<std::uint64_t>, 38> werte_; // by tag
    std::array<std::pair<std::int64_t, std::optional<std::uint64_t>>, 7> weitere_;
    std::uint64_t texte_ = 0, textlaenge_ = 0;
};

} // namespace orvo::orvoutil
