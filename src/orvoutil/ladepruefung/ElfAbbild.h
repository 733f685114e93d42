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

inline void verlange(bool erfuellt, std::string_view mangel) {
    if (!erfuellt)
        throw ElfMangel(std::string(mangel));
}
inline void verlange(bool erfuellt, const char* was, std::uint64_t nummer, std::string_view mangel) {
    if (!erfuellt)
        throw ElfMangel(was + std::to_string(nummer).append(mangel));
}

/// An ELF file as the loader would map it: its segments, and reading by address through them.
///
/// Errors: the constructor and everything that reads or demands throws `ElfMangel`.
class ElfAbbild {
public:
    /// Checks the header of the file and those of the segments.
    explicit ElfAbbild(Bytequelle& quelle);

    const ElfW(Ehdr) & kopf() const { return kopf_; }
    const ElfW(Phdr) & dynamik() const { return *dynamik_; }
    /// Segments that a library may have: thread-local variables, memory to be write-protected after loading, the
    /// unwinder's table.
    const std::optional<ElfW(Phdr)>& tls() const { return tls_; }
    const std::optional<ElfW(Phdr)>& schreibschutz() const { return schreibschutz_; }
    bool hatAbwickeltabelle() const { return hatAbwickeltabelle_; }
    bool hatInterpreter() const { return hatInterpreter_; }

    /// Whether the range lies in one segment's memory, and the segment has these rights (`PF_R` and so on).
    bool istGeladen(std::uint64_t adresse, std::uint64_t laenge, std::uint32_t rechte) const;
    /// Whether the range lies in that part of one segment that comes from the file; and the segment is readable.
    bool stammtAusDatei(std::uint64_t adresse, std::uint64_t laenge) const;
    bool istLesbar(std::uint64_t adresse, std::uint64_t laenge) const;
    /// Where in the file it stands then.
    std::uint64_t dateistelle(std::uint64_t adresse) const;

    /// Demands that a table of that name is aligned, readable, and comes from the file. An empty one may be anywhere.
    void verlangeTabelle(const char* name, std::uint64_t adresse, std::uint64_t laenge,
                         std::uint64_t ausrichtung) const;
    /// Demands that there is code at an address.
    void verlangeFunktion(const char* name, std::uint64_t adresse) const;

    /// What stands at an address.
    template <class T>
    T lies(std::uint64_t adresse) {
        verlange(istLesbar(adresse, sizeof(T)), "Verweis hinter den geladenen Teil der Datei");
        return liesStelle<T>(dateistelle(adresse));
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

private:
    struct Segment {
        std::uint64_t adresse = 0, imSpeicher = 0, inDatei = 0, stelle = 0;
        std::uint32_t rechte = 0;
    };

    void liesKopf();
    ElfW(Phdr) programmkopf(unsigned nummer);
    void nimm(const ElfW(Phdr) & kopf, unsigned nummer);
    void nimmSegment(const ElfW(Phdr) & kopf, unsigned nummer);
    void pruefeLage(const ElfW(Phdr) & kopf, unsigned nummer);
    const Segment* segment(std::uint64_t adresse) const;

    Sicht sicht_;
    ElfW(Ehdr) kopf_;
    std::array<Segment, 64> segmente_;
    std::size_t anzahl_ = 0;
    std::optional<ElfW(Phdr)> dynamik_, tls_, schreibschutz_;
    bool hatAbwickeltabelle_ = false;
    bool hatInterpreter_ = false;
};

} // namespace orvo::orvoutil
