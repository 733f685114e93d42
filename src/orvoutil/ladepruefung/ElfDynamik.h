#pragma once

#include <orvoutil/ladepruefung/ElfAbbild.h>

#include <array>
#include <cstdint>
#include <optional>

namespace orvo::orvoutil {

/// The dynamic section of an ELF file: what the loader looks up by tag. No tag but that of the needed
/// libraries may stand in it twice.
///
/// Errors: everything but the getters throws `ElfMangel`.
class ElfDynamik {
public:
    explicit ElfDynamik(ElfAbbild& abbild);

    ElfAbbild& abbild() const { return abbild_; }

    std::optional<std::uint64_t> wert(std::int64_t tag) const {
        const std::size_t platz = platzVon(tag);
        return platz < kPlaetze ? werte_[platz] : std::nullopt;
    }
    bool hat(std::int64_t tag) const { return wert(tag).has_value(); }
    /// Whether one of the bits is set in an entry of flags.
    bool hatBit(std::int64_t tag, std::uint64_t bit) const { return (wert(tag).value_or(0) & bit) != 0; }
    /// The value of an entry that has to be there; the name is for the message.
    std::uint64_t verlangter(std::int64_t tag, const char* name) const {
        const std::optional<std::uint64_t> gefunden = wert(tag);
        if (!gefunden)
            beanstandeFehlen(name);
        return *gefunden;
    }

    /// The entries in their order, without the one that ends them.
    std::uint64_t anzahl() const { return anzahl_; }
    ElfW(Dyn) eintrag(std::uint64_t nummer) const { return eintraege_[nummer]; }

    /// The string table, byte by byte. Its last byte ends a text.
    ElfTabelle<char> texte() const { return abbild_.tabelle<char>(texte_, textlaenge_); }
    /// Demands that a text begins inside the string table, and so ends there.
    void verlangeText(std::uint64_t text) const {
        verlange(text < textlaenge_, "Ein Name liegt hinter der Texttabelle");
    }
    /// Whether two texts of the string table are the same.
    bool istGleicherText(std::uint64_t a, std::uint64_t b) const;

private:
    static ElfTabelle<ElfW(Dyn)> verlangeEintraege(ElfAbbild& abbild);
    static constexpr std::size_t kErsteTags = 38, kPlaetze = kErsteTags + 7;

    /// Where the value of a tag is kept; behind all places for one that nobody asks for.
    static constexpr std::size_t platzVon(std::int64_t tag) {
        switch (tag) {
        case DT_GNU_HASH:
            return kErsteTags;
        case DT_VERSYM:
            return kErsteTags + 1;
        case DT_VERDEF:
            return kErsteTags + 2;
        case DT_VERNEED:
            return kErsteTags + 3;
        case DT_RELACOUNT:
            return kErsteTags + 4;
        case DT_RELCOUNT:
            return kErsteTags + 5;
        case DT_FLAGS_1:
            return kErsteTags + 6;
        default:
            return tag >= 0 && static_cast<std::uint64_t>(tag) < kErsteTags ? static_cast<std::size_t>(tag)
                                                                            : kPlaetze;
        }
    }
    [[noreturn]] static void beanstandeFehlen(const char* name);
    void merke(const ElfW(Dyn) & eintrag);
    void pruefeTexttabelle();

    ElfAbbild& abbild_;
    ElfTabelle<ElfW(Dyn)> eintraege_;
    std::uint64_t anzahl_ = 0;
    std::array<std::optional<std::uint64_t>, kPlaetze> werte_;
    std::uint64_t texte_ = 0, textlaenge_ = 0;
};

} // namespace orvo::orvoutil
