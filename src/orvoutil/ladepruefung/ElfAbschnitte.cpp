#include <orvoutil/ladepruefung/ElfTabellen.h>

#include <array>
#include <string_view>

namespace orvo::orvoutil {

namespace {

constexpr std::int64_t kDtRelr = 36, kDtRelrSz = 35;
constexpr std::uint32_t kShtRelr = 19;

/// A table that the loader finds by tags, and whose parts are sections of one type.
struct Tabelle {
    std::uint32_t typ;
    std::int64_t tagAnfang, tagLaenge;
    const char* name;
    std::uint64_t anfang = 0, laenge = 0;
    bool hatAbschnitte = false, beginntMitEinem = false, endetMitEinem = false;

    bool enthaelt(const ElfW(Shdr) & a) const {
        return a.sh_addr >= anfang && a.sh_size <= laenge && a.sh_addr - anfang <= laenge - a.sh_size;
    }
};

class Abschnitte {
public:
    explicit Abschnitte(const ElfDynamik& dynamik) : abbild_(dynamik.abbild()) {
        if (const auto& schutz = abbild_.schreibschutz()) { // of whole pages only
            constexpr std::uint64_t kSeite = 4096;
            schutzbeginn_ = schutz->p_vaddr / kSeite * kSeite;
            schutzende_ = (schutz->p_vaddr + schutz->p_memsz) / kSeite * kSeite;
        }
        for (Tabelle& t : tabellen_) {
            t.anfang = dynamik.wert(t.tagAnfang).value_or(0);
            t.laenge = dynamik.wert(t.tagLaenge).value_or(0);
        }
    }

    void pruefe() {
        const ElfW(Ehdr)& kopf = abbild_.kopf();
        if (kopf.e_shoff == 0)
            return;
        verlange(kopf.e_shentsize == sizeof(ElfW(Shdr)), "unbekannte Form der Abschnittstabelle");
        constexpr std::string_view kEnde = "abgeschnitten: Abschnittstabelle endet hinter der Datei";
        verlange(abbild_.reichtFuer(kopf.e_shoff, sizeof(ElfW(Shdr))), kEnde);
        // Numbers that do not fit the header stand in the first section.
        const auto erster = abbild_.liesStelle<ElfW(Shdr)>(kopf.e_shoff);
        const std::uint64_t anzahl = kopf.e_shnum > 0 ? kopf.e_shnum : erster.sh_size;
        constexpr std::uint64_t kMaxAbschnitte = 1u << 20;
        verlange(anzahl <= kMaxAbschnitte, "zu viele Abschnitte");
        verlange(abbild_.reichtFuer(kopf.e_shoff, anzahl * sizeof(ElfW(Shdr))), kEnde);
        const std::uint64_t namen = kopf.e_shstrndx == SHN_XINDEX ? erster.sh_link : kopf.e_shstrndx;
        verlange(namen < anzahl, "Abschnitte ohne Namen");
        const ElfTabelle<ElfW(Shdr)> abschnitte(abbild_, kopf.e_shoff, anzahl);
        namen_ = abschnitte[namen];
        for (std::uint64_t i = 0; i < anzahl; ++i)
            pruefe(abschnitte[i], i);
        for (const Tabelle& t : tabellen_)
            if (t.laenge > 0 && t.hatAbschnitte && !(t.beginntMitEinem && t.endetMitEinem))
                throw ElfMangel(std::string(t.name) + " widerspricht den Abschnitten");
    }

private:
    void pruefe(const ElfW(Shdr) & a, std::uint64_t nummer) {
        if (a.sh_type == SHT_NULL)
            return;
        const bool ausDatei = a.sh_type != SHT_NOBITS;
        verlange(!ausDatei || abbild_.reichtFuer(a.sh_offset, a.sh_size), "abgeschnitten: Abschnitt ", nummer,
                 " endet hinter der Datei");
        if (!(a.sh_flags & SHF_ALLOC) || a.sh_size == 0)
            return;
        if (a.sh_flags & SHF_TLS)
            verlange(liegtIn(a, abbild_.tls()), "Abschnitt ", nummer, " liegt nicht im TLS-Segment");
        if (ausDatei || !(a.sh_flags & SHF_TLS)) // those that begin as zeros take no room of their own
            pruefeLage(a, nummer, ausDatei);
        if (hatFormEinerTabelle(a.sh_type))
            ordneZu(a, nummer);
        // Names are looked at last: that is the dearest part.
        if (!abbild_.hatAbwickeltabelle() && heisst(a, ".eh_frame_hdr"))
            verlange(false, "Abschnitt ", nummer, " liegt in keinem Segment");
        if (wirdGeschuetzt(a) && (heisst(a, ".data") || heisst(a, ".bss")))
            verlange(false, "Abschnitt ", nummer, " verliert das Schreibrecht");
    }

    void pruefeLage(const ElfW(Shdr) & a, std::uint64_t nummer, bool ausDatei) {
        const std::uint32_t rechte =
            ((a.sh_flags & SHF_WRITE) ? PF_W : 0u) | ((a.sh_flags & SHF_EXECINSTR) ? PF_X : 0u);
        if (ausDatei && abbild_.istGeladenAus(a.sh_offset, a.sh_addr, a.sh_size, rechte))
            return;
        verlange(abbild_.istGeladen(a.sh_addr, a.sh_size, rechte), "Abschnitt ", nummer,
                 " liegt in keinem passenden Segment");
        // What begins as zeros must not begin with what the file happens to have there.
        verlange(ausDatei ? abbild_.stammtAusDatei(a.sh_addr, a.sh_size) &&
                                abbild_.dateistelle(a.sh_addr) == a.sh_offset
                          : !abbild_.stammtAusDatei(a.sh_addr, 1),
                 "Abschnitt ", nummer, " liegt anderswo als sein Segment");
    }

    static bool hatFormEinerTabelle(std::uint32_t typ) {
        return typ == SHT_RELA || typ == SHT_REL || typ == kShtRelr || typ == SHT_INIT_ARRAY ||
               typ == SHT_FINI_ARRAY;
    }

    /// Each section with entries for the loader belongs to a table; each table begins and ends where one does.
    void ordneZu(const ElfW(Shdr) & a, std::uint64_t nummer) {
        bool hatTabelle = false;
        for (Tabelle& t : tabellen_) {
            if (t.typ != a.sh_type)
                continue;
            hatTabelle = hatTabelle || t.enthaelt(a);
            t.hatAbschnitte = true;
            t.beginntMitEinem = t.beginntMitEinem || a.sh_addr == t.anfang;
            t.endetMitEinem = t.endetMitEinem || a.sh_addr + a.sh_size == t.anfang + t.laenge;
        }
        verlange(hatTabelle, "Abschnitt ", nummer, " fehlt im dynamischen Abschnitt");
    }

    static bool liegtIn(const ElfW(Shdr) & a, const std::optional<ElfW(Phdr)>& segment) {
        return segment && a.sh_addr >= segment->p_vaddr && a.sh_size <= segment->p_memsz &&
               a.sh_addr - segment->p_vaddr <= segment->p_memsz - a.sh_size;
    }

    bool wirdGeschuetzt(const ElfW(Shdr) & a) const {
        return a.sh_addr < schutzende_ && a.sh_addr + a.sh_size > schutzbeginn_;
    }

    bool heisst(const ElfW(Shdr) & a, std::string_view name) {
        const std::uint64_t anfang = namen_.sh_offset + a.sh_name;
        if (const unsigned char* const text = abbild_.imSpeicher(anfang, name.size() + 1))
            return std::memcmp(text, name.data(), name.size()) == 0 && text[name.size()] == '\0';
        for (std::size_t i = 0; i <= name.size(); ++i) {
            const std::uint64_t stelle = anfang + i;
            if (!abbild_.reichtFuer(stelle, 1) ||
                abbild_.liesStelle<char>(stelle) != (i < name.size() ? name[i] : '\0'))
                return false;
        }
        return true;
    }

    ElfAbbild& abbild_;
    ElfW(Shdr) namen_{};
    std::uint64_t schutzbeginn_ = 0, schutzende_ = 0; ///< of the memory to be write-protected
    std::array<Tabelle, 7> tabellen_{{{SHT_RELA, DT_RELA, DT_RELASZ, "DT_RELA"},
                                      {SHT_RELA, DT_JMPREL, DT_PLTRELSZ, "DT_JMPREL"},
                                      {SHT_REL, DT_REL, DT_RELSZ, "DT_REL"},
                                      {SHT_REL, DT_JMPREL, DT_PLTRELSZ, "DT_JMPREL"},
                                      {kShtRelr, kDtRelr, kDtRelrSz, "DT_RELR"},
                                      {SHT_INIT_ARRAY, DT_INIT_ARRAY, DT_INIT_ARRAYSZ, "DT_INIT_ARRAY"},
                                      {SHT_FINI_ARRAY, DT_FINI_ARRAY, DT_FINI_ARRAYSZ, "DT_FINI_ARRAY"}}};
};

} // namespace

void pruefeAbschnitte(const ElfDynamik& dynamik) { Abschnitte(dynamik).pruefe(); }

} // namespace orvo::orvoutil
