#pragma once

#include <orvoutil/ladepruefung/Bytequelle.h>

#include <link.h>

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orvo::orvoutil {

/// What is wrong with an ELF file.
class ElfMangel : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

[[noreturn]] void beanstande(std::string_view mangel);
[[noreturn]] void beanstande(const char* was, std::uint64_t nummer, std::string_view mangel);

inline void verlange(bool erfuellt, std::string_view mangel) {
    if (!erfuellt)
        beanstande(mangel);
}
inline void verlange(bool erfuellt, const char* was, std::uint64_t nummer, std::string_view mangel) {
    if (!erfuellt)
        beanstande(was, nummer, mangel);
}

template <class T>
class ElfTabelle;

/// An ELF file as the loader would map it: its segments, and reading by address through them.
///
/// Errors: the constructor and everything that reads or demands throws `ElfMangel`.
class ElfAbbild {
public:
    /// Checks the header of the file and those of the segments.
    explicit ElfAbbild(Bytequelle& quelle);
    ElfAbbild(const ElfAbbild&) = delete;
    ElfAbbild& operator=(const ElfAbbild&) = delete;

    const ElfW(Ehdr) & kopf() const { return kopf_; }
    const ElfW(Phdr) & dynamik() const { return *dynamik_; }
    /// Segments that a library may have: thread-local variables, memory to be write-protected after loading, the
    /// unwinder's table.
    const std::optional<ElfW(Phdr)>& tls() const { return tls_; }
    const std::optional<ElfW(Phdr)>& schreibschutz() const { return schreibschutz_; }
    bool hatAbwickeltabelle() const { return hatAbwickeltabelle_; }
    bool hatInterpreter() const { return hatInterpreter_; }

    /// Whether the range lies in one segment's memory, and the segment has these rights (`PF_R` and so on).
    bool istGeladen(std::uint64_t adresse, std::uint64_t laenge, std::uint32_t rechte) const {
        const Segment* const s = segment(adresse);
        return s && s->hatGeladen(adresse, laenge, rechte);
    }
    /// Whether the range lies in that part of one segment that comes from the file; and the segment is readable.
    bool stammtAusDatei(std::uint64_t adresse, std::uint64_t laenge) const {
        const Segment* const s = segment(adresse);
        return s && s->hatAusDatei(adresse, laenge);
    }
    bool istLesbar(std::uint64_t adresse, std::uint64_t laenge) const {
        const Segment* const s = segment(adresse);
        return s && s->hatLesbar(adresse, laenge);
    }
    /// Whether the range is both loaded with these rights and from the file, from that place in it.
    bool istGeladenAus(std::uint64_t stelle, std::uint64_t adresse, std::uint64_t laenge,
                       std::uint32_t rechte) const {
        const Segment* const s = segment(adresse);
        return s && s->hatGeladen(adresse, laenge, rechte) && s->hatAusDatei(adresse, laenge) &&
               s->dateistelle(adresse) == stelle;
    }
    /// Where in the file it stands then.
    std::uint64_t dateistelle(std::uint64_t adresse) const {
        const Segment* const s = segment(adresse);
        return s ? s->dateistelle(adresse) : 0;
    }

    /// Demands that a table of that name is aligned, readable, and comes from the file. An empty one may be anywhere.
    void verlangeTabelle(const char* name, std::uint64_t adresse, std::uint64_t laenge,
                         std::uint64_t ausrichtung) const;
    /// Demands that there is code at an address.
    void verlangeFunktion(const char* name, std::uint64_t adresse) const;

    /// What stands at an address.
    template <class T>
    T lies(std::uint64_t adresse) {
        const Segment* const s = segment(adresse);
        verlange(s && s->hatLesbar(adresse, sizeof(T)), "Verweis hinter den geladenen Teil der Datei");
        return liesStelle<T>(s->dateistelle(adresse));
    }
    /// A table at an address that was demanded in its full length.
    template <class T>
    ElfTabelle<T> tabelle(std::uint64_t adresse, std::uint64_t anzahl) {
        return {*this, dateistelle(adresse), anzahl};
    }

    /// The same by position in the file.
    bool reichtFuer(std::uint64_t stelle, std::uint64_t anzahl) const {
        return sicht_.reichtFuer(stelle, anzahl);
    }
    template <class T>
    T liesStelle(std::uint64_t stelle) {
        T wert;
        verlange(sicht_.lies(stelle, &wert, sizeof(T)), "nicht lesbar");
        return wert;
    }
    const unsigned char* imSpeicher(std::uint64_t stelle, std::uint64_t anzahl) const {
        return sicht_.imSpeicher(stelle, anzahl);
    }

private:
    struct Segment {
        std::uint64_t adresse, imSpeicher, inDatei, stelle;
        std::uint32_t rechte;

        bool enthaelt(std::uint64_t a) const {
            return a - adresse < imSpeicher; // not below it either: then the difference is huge
        }
        // Of an address that it holds:
        bool hatGeladen(std::uint64_t a, std::uint64_t laenge, std::uint32_t verlangte) const {
            return (rechte & verlangte) == verlangte && laenge <= imSpeicher - (a - adresse);
        }
        bool hatAusDatei(std::uint64_t a, std::uint64_t laenge) const {
            return a - adresse <= inDatei && laenge <= inDatei - (a - adresse);
        }
        bool hatLesbar(std::uint64_t a, std::uint64_t laenge) const {
            return hatGeladen(a, laenge, PF_R) && hatAusDatei(a, laenge);
        }
        std::uint64_t dateistelle(std::uint64_t a) const { return stelle + (a - adresse); }
    };

    void liesKopf();
    ElfW(Phdr) programmkopf(unsigned nummer);
    void nimm(const ElfW(Phdr) & kopf, unsigned nummer);
    void nimmSegment(const ElfW(Phdr) & kopf, unsigned nummer);
    void pruefeLage(const ElfW(Phdr) & kopf, unsigned nummer);
    const Segment* segment(std::uint64_t adresse) const {
        if (zuletzt_->enthaelt(adresse)) // mostly the one of the address before
            return zuletzt_;
        for (std::size_t i = 0; i < anzahl_; ++i)
            if (segmente_[i].enthaelt(adresse))
                return zuletzt_ = &segmente_[i];
        return nullptr;
    }

    Sicht sicht_;
    ElfW(Ehdr) kopf_;
    std::array<Segment, 64> segmente_; // the first one, empty at first, and as many as `anzahl_`
    std::size_t anzahl_ = 0;
    mutable const Segment* zuletzt_ = segmente_.data();
    std::optional<ElfW(Phdr)> dynamik_, tls_, schreibschutz_;
    bool hatAbwickeltabelle_ = false;
    bool hatInterpreter_ = false;
};

/// The entries of a table, by number. It lies inside the file; where the file is in memory, so does the table, and
/// an entry costs no search.
template <class T>
class ElfTabelle {
public:
    ElfTabelle(ElfAbbild& abbild, std::uint64_t stelle, std::uint64_t anzahl)
        : abbild_(abbild), stelle_(stelle), bytes_(abbild.imSpeicher(stelle, anzahl * sizeof(T))) {}

    T operator[](std::uint64_t nummer) const {
        if (!bytes_)
            return gelesen(nummer);
        T wert;
        std::memcpy(&wert, bytes_ + nummer * sizeof(T), sizeof(T));
        return wert;
    }

private:
    [[gnu::noinline]] T gelesen(std::uint64_t nummer) const {
        return abbild_.liesStelle<T>(stelle_ + nummer * sizeof(T));
    }

    ElfAbbild& abbild_;
    std::uint64_t stelle_;
    const unsigned char* bytes_;
};

} // namespace orvo::orvoutil
