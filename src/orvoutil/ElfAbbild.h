#pragma once

#include <orvoutil/Bytequelle.h>

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
    /// Checks the headers: the file's own, the segments', the sections'.
    explicit ElfAbbild(Bytequelle& quelle);

    const ElfW(Phdr) & dynamik() const { return *dynamik_; }
    /// The block of thread-local variables, if there is one.
    const std::optional<ElfW(Phdr)>& tls() const { return tls_; }
    bool hatInterpreter() const { return hatInterpreter_; }

    /// Whether the range lies in one segment's memory, and the segment has these rights (`PF_R` and so on).
    bool istGeladen(std::uint64_t adresse, std::uint64_t laenge, std::uint32_t rechte) const;
    /// Whether the range lies in that part of one readable segment that comes from the file.
    bool istInDatei(std::uint64_t adresse, std::uint64_t laenge) const;
    /// Demands that a table of that name is aligned and comes from the file.
    void verlangeTabelle(const char* name, std::uint64_t adresse, std::uint64_t laenge,
                         std::uint64_t ausrichtung) const;

    /// What stands at an address.
    template <class T>
    T lies(std::uint64_t adresse) {
        verlange(istInDatei(adresse, sizeof(T)), "Verweis hinter den geladenen Teil der Datei");
        return liesStelle<T>(dateistelle(adresse));
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
    void pruefeAbschnitte();
    void pruefeAbschnitt(const ElfW(Shdr) & abschnitt, std::uint64_t nummer) const;

    const Segment* segment(std::uint64_t adresse) const;
    std::uint64_t dateistelle(std::uint64_t adresse) const;

    template <class T>
    T liesStelle(std::uint64_t stelle) {
        T wert;
        verlange(sicht_.lies(stelle, &wert, sizeof(T)), "nicht lesbar");
        return wert;
    }

    Sicht sicht_;
    ElfW(Ehdr) kopf_;
    std::array<Segment, 64> segmente_;
    std::size_t anzahl_ = 0;
    std::optional<ElfW(Phdr)> dynamik_, tls_;
    bool hatInterpreter_ = false;
};

} // namespace orvo::orvoutil
