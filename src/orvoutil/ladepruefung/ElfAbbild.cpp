#include <orvoutil/ladepruefung/ElfAbbild.h>

#include <orvoutil/Latin1.h>

namespace orvo::orvoutil {

/// The header of the library that this code is in: the measure for class, byte order and processor.
extern "C" const ElfW(Ehdr) eigenerElfKopf __asm__("__ehdr_start") __attribute__((visibility("hidden")));

namespace {

constexpr Latin1Text kUngueltigeGroesse{u8"ungültige Größe eines ELF-Kopfes"};
constexpr Latin1Text kUngueltigeAusrichtung{u8" hat eine ungültige Ausrichtung"};
constexpr Latin1Text kLaengerInDerDatei{u8" ist in der Datei länger als im Speicher"};
constexpr Latin1Text kLaengerImSpeicher{u8" ist im Speicher länger als in der Datei"};
constexpr Latin1Text kHinterDemAdressraum{u8" reicht über den Adressraum hinaus"};
constexpr Latin1Text kHinterDemSegment{u8" reicht über das geladene Segment hinaus"};
constexpr Latin1Text kAndererProzessor{u8"ELF-Datei für einen anderen Prozessor, Kennung "};
constexpr Latin1Text kProgramm{u8"ausführbares Programm, keine Bibliothek"};

constexpr std::uint64_t kSeite = 4096; // the smallest page of any system
constexpr unsigned kMaxProgrammkoepfe = 512;

#if (defined(__powerpc64__) && (!defined(_CALL_ELF) || _CALL_ELF != 2)) || defined(__hppa__) ||              \
    defined(__ia64__)
constexpr std::uint32_t kRechteVonFunktionen = 0; // a function's address is that of a record in the data
#else
constexpr std::uint32_t kRechteVonFunktionen = PF_X;
#endif

std::uint64_t abgerundet(std::uint64_t adresse) { return adresse & ~(kSeite - 1); }
std::uint64_t aufgerundet(std::uint64_t adresse) { return abgerundet(adresse + kSeite - 1); }

bool istZweierpotenz(std::uint64_t zahl) { return (zahl & (zahl - 1)) == 0; }

} // namespace

void beanstande(std::string_view mangel) { throw ElfMangel(std::string(mangel)); }

void beanstande(const char* was, std::uint64_t nummer, std::string_view mangel) {
    throw ElfMangel(was + std::to_string(nummer).append(mangel));
}

ElfAbbild::ElfAbbild(Bytequelle& quelle) : sicht_(quelle) {
    segmente_[0] = {};
    liesKopf();
    for (unsigned i = 0; i < kopf_.e_phnum; ++i)
        nimm(programmkopf(i), i);
    verlange(anzahl_ > 0, "kein ladbares Segment");
    verlange(dynamik_.has_value(), "kein dynamischer Abschnitt");
    for (unsigned i = 0; i < kopf_.e_phnum; ++i)
        pruefeLage(programmkopf(i), i);
}

void ElfAbbild::liesKopf() {
    unsigned char marke[SELFMAG];
    verlange(sicht_.lies(0, marke, sizeof(marke)) && std::memcmp(marke, ELFMAG, SELFMAG) == 0,
             "keine ELF-Datei");
    verlange(sicht_.lies(0, &kopf_, sizeof(kopf_)), "abgeschnitten: ELF-Kopf endet hinter der Datei");
    verlange(kopf_.e_ident[EI_CLASS] == eigenerElfKopf.e_ident[EI_CLASS], "ELF-Datei mit anderer Wortbreite");
    verlange(kopf_.e_ident[EI_DATA] == eigenerElfKopf.e_ident[EI_DATA],
             "ELF-Datei mit anderer Byte-Reihenfolge");
    verlange(kopf_.e_ident[EI_VERSION] == EV_CURRENT && kopf_.e_version == EV_CURRENT,
             "unbekannte ELF-Version");
    if (kopf_.e_machine != eigenerElfKopf.e_machine)
        throw ElfMangel(kAndererProzessor.c_str() + std::to_string(kopf_.e_machine));
    verlange(kopf_.e_type != ET_EXEC, kProgramm);
    verlange(kopf_.e_type == ET_DYN, "ELF-Datei, aber keine Bibliothek");
    verlange(kopf_.e_ehsize == sizeof(kopf_) && kopf_.e_phentsize == sizeof(ElfW(Phdr)), kUngueltigeGroesse);
    verlange(kopf_.e_phnum > 0, "keine Segmente");
    verlange(kopf_.e_phnum <= kMaxProgrammkoepfe, "zu viele Segmente");
    verlange(sicht_.reichtFuer(kopf_.e_phoff, std::uint64_t{kopf_.e_phnum} * sizeof(ElfW(Phdr))),
             "abgeschnitten: Segmenttabelle endet hinter der Datei");
    verlange(kopf_.e_phoff % alignof(ElfW(Phdr)) == 0, "Segmenttabelle ist nicht ausgerichtet");
}

ElfW(Phdr) ElfAbbild::programmkopf(unsigned nummer) {
    return liesStelle<ElfW(Phdr)>(kopf_.e_phoff + std::uint64_t{nummer} * sizeof(ElfW(Phdr)));
}

void ElfAbbild::nimm(const ElfW(Phdr) & kopf, unsigned nummer) {
    if (kopf.p_type == PT_NULL)
        return;
    if (!sicht_.reichtFuer(kopf.p_offset, kopf.p_filesz))
        verlange(false, "abgeschnitten: Segment ", nummer, " endet hinter der Datei");
    switch (kopf.p_type) {
    case PT_LOAD:
        nimmSegment(kopf, nummer);
        break;
    case PT_DYNAMIC:
        verlange(!dynamik_, "mehrere dynamische Abschnitte");
        dynamik_ = kopf;
        break;
    case PT_TLS:
        verlange(!tls_, "mehrere TLS-Segmente");
        tls_ = kopf;
        break;
    case PT_INTERP:
        hatInterpreter_ = true;
        break;
    case PT_GNU_EH_FRAME:
        hatAbwickeltabelle_ = true;
        break;
    case PT_GNU_RELRO:
        verlange(!schreibschutz_, "mehrere Segmente mit Schreibschutz");
        schreibschutz_ = kopf;
        break;
    default:
        break;
    }
}

void ElfAbbild::nimmSegment(const ElfW(Phdr) & kopf, unsigned nummer) {
    // Where the loader cannot reserve the room, it leaves the file mapped; no library comes near this much.
    constexpr std::uint64_t kEnde = std::uint64_t{1} << 31;
    verlange(kopf.p_filesz <= kopf.p_memsz, "Segment ", nummer, kLaengerInDerDatei);
    verlange(kopf.p_memsz <= kEnde && kopf.p_vaddr <= kEnde - kopf.p_memsz, "Segment ", nummer,
             kHinterDemAdressraum);
    verlange(istZweierpotenz(kopf.p_align) && kopf.p_align % kSeite == 0, "Segment ", nummer,
             kUngueltigeAusrichtung);
    const std::uint64_t ausrichtung = kopf.p_align > 0 ? kopf.p_align : kSeite;
    verlange((kopf.p_vaddr - kopf.p_offset) % ausrichtung == 0, "Segment ", nummer, kUngueltigeAusrichtung);
    if (kopf.p_memsz == 0)
        return;
    if (anzahl_ > 0) {
        const Segment& voriges = segmente_[anzahl_ - 1];
        verlange(abgerundet(kopf.p_vaddr) >= aufgerundet(voriges.adresse + voriges.imSpeicher), "Segment ",
                 nummer, " liegt nicht hinter dem vorigen");
    }
    verlange(anzahl_ < segmente_.size(), "zu viele Segmente");
    segmente_[anzahl_++] = {kopf.p_vaddr, kopf.p_memsz, kopf.p_filesz, kopf.p_offset, kopf.p_flags};
}

/// What the loader or the unwinder reads through such a segment's address must be what the file has at its offset.
void ElfAbbild::pruefeLage(const ElfW(Phdr) & kopf, unsigned nummer) {
    switch (kopf.p_type) {
    case PT_DYNAMIC:
    case PT_INTERP:
    case PT_NOTE:
    case PT_PHDR:
    case PT_TLS:
    case PT_GNU_EH_FRAME:
    case PT_GNU_PROPERTY:
    case PT_GNU_RELRO:
        break;
    default:
        return;
    }
    const auto gilt = [&](bool erfuellt, std::string_view mangel) {
        verlange(erfuellt, "Segment ", nummer, mangel);
    };
    if (kopf.p_type == PT_GNU_RELRO) { // memory to be write-protected; that of the file is not looked at
        const Segment* const s = segment(kopf.p_vaddr);
        gilt(s && (s->rechte & PF_W) &&
                 kopf.p_memsz <= aufgerundet(s->adresse + s->imSpeicher) - kopf.p_vaddr,
             kHinterDemSegment);
        return;
    }
    gilt(kopf.p_memsz >= kopf.p_filesz, kLaengerInDerDatei);
    gilt(kopf.p_filesz == 0 ||
             (istLesbar(kopf.p_vaddr, kopf.p_filesz) && dateistelle(kopf.p_vaddr) == kopf.p_offset),
         " liegt nicht im geladenen Teil der Datei");
    if (kopf.p_type == PT_PHDR) {
        gilt(kopf.p_offset == kopf_.e_phoff &&
                 kopf.p_filesz >= std::uint64_t{kopf_.e_phnum} * sizeof(ElfW(Phdr)),
             " ist nicht die Segmenttabelle");
    } else if (kopf.p_type == PT_NOTE || kopf.p_type == PT_GNU_PROPERTY) {
        gilt(kopf.p_memsz == kopf.p_filesz, kLaengerImSpeicher);
    } else if (kopf.p_type == PT_TLS) {
        constexpr std::uint64_t kMaxTls = std::uint64_t{1} << 30;
        gilt(kopf.p_memsz <= kMaxTls && kopf.p_align <= kMaxTls, kHinterDemAdressraum);
        gilt(istZweierpotenz(kopf.p_align), kUngueltigeAusrichtung);
    } else if (kopf.p_type == PT_GNU_EH_FRAME) {
        constexpr unsigned char kFassung = 1;
        gilt(kopf.p_filesz >= 8 && lies<unsigned char>(kopf.p_vaddr) == kFassung,
             " hat eine unbekannte Fassung");
    }
}

void ElfAbbild::verlangeTabelle(const char* name, std::uint64_t adresse, std::uint64_t laenge,
                                std::uint64_t ausrichtung) const {
    if (laenge == 0)
        return;
    if (adresse % ausrichtung != 0)
        throw ElfMangel(std::string(name) + " ist nicht ausgerichtet");
    if (!istLesbar(adresse, laenge))
        throw ElfMangel(std::string(name) + " liegt nicht im geladenen Teil der Datei");
}

void ElfAbbild::verlangeFunktion(const char* name, std::uint64_t adresse) const {
    if (!istGeladen(adresse, 1, kRechteVonFunktionen))
        throw ElfMangel(std::string(name) + " liegt nicht im Code");
}

} // namespace orvo::orvoutil
