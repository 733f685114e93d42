#include <orvoelf/Dateiblick.h>

#include <orvoutil/Latin1.h>

#include <dlfcn.h>
#ifdef __linux__
#include <link.h>
#endif
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <list>
#include <set>
#include <span>
#include <string_view>
#include <system_error>
#include <vector>

namespace orvo::orvoelf {

namespace {

using orvoutil::Latin1Text;
using enum Dateimangel;

constexpr Latin1Text kKeineDatei{u8"keine gewöhnliche Datei"};
constexpr Latin1Text kNichtZuOeffnen{u8"kann nicht geöffnet werden: "};
constexpr Latin1Text kBenoetigte{u8"benötigte Bibliothek "};

struct Stueck {
    std::uint64_t ab = 0;
    std::size_t laenge = 0;
    unsigned char* bytes;

    const unsigned char* suche(std::uint64_t stelle, std::size_t anzahl) const {
        const bool istDrin = stelle >= ab && anzahl <= laenge && stelle - ab <= laenge - anzahl;
        return istDrin ? bytes + (stelle - ab) : nullptr;
    }
};

/// An open file, read in few pieces: its beginning, and a window that moves at most twice.
class Datei {
public:
    explicit Datei(const char* pfad) : deskriptor_(oeffne(pfad)), fehler_(istOffen() ? 0 : errno) {}
    Datei(const Datei&) = delete;
    Datei& operator=(const Datei&) = delete;
    ~Datei() {
        if (istOffen())
            close(deskriptor_);
    }

    bool istOffen() const { return deskriptor_ >= 0; }
    std::uint64_t groesse() const {
        struct stat zustand;
        return fstat(deskriptor_, &zustand) == 0 ? static_cast<std::uint64_t>(zustand.st_size) : 0;
    }
    bool liesAnfang() { return lies(anfang_, sizeof(anfangsbytes_)); }
    /// The system's error number of the opening or the last reading; 0 when it succeeded.
    int fehler() const { return fehler_; }

    /// Returns: bytes, at most half a window; null when the file ends before or no reading is left.
    const unsigned char* bytes(std::uint64_t ab, std::size_t anzahl) {
        const unsigned char* const gefunden = gelesene(ab, anzahl);
        if (gefunden || ab > kWeitesteStelle || uebrige_ == 0)
            return gefunden;
        --uebrige_;
        fenster_.ab = ab - std::min<std::uint64_t>(ab, kHalbesFenster);
        lies(fenster_, sizeof(fensterbytes_));
        return gelesene(ab, anzahl);
    }
    const unsigned char* gelesene(std::uint64_t ab, std::size_t anzahl) const {
        const unsigned char* const imAnfang = anfang_.suche(ab, anzahl);
        return imAnfang ? imAnfang : fenster_.suche(ab, anzahl);
    }

    static constexpr std::size_t kHalbesFenster = std::size_t{8} << 10;
    static constexpr std::uint64_t kWeitesteStelle = std::uint64_t{1} << 62;

private:
    /// Never waits for a FIFO or a device, and never makes a terminal the process's own.
    static int oeffne(const char* pfad) {
        constexpr int kArt = O_RDONLY | O_CLOEXEC | O_NOCTTY;
        const int deskriptor = open(pfad, kArt | O_NONBLOCK);
        struct stat zustand;
        if (deskriptor >= 0 || errno != EWOULDBLOCK) // a write lease: wait as the loader does
            return deskriptor;
        return stat(pfad, &zustand) == 0 && S_ISREG(zustand.st_mode) ? open(pfad, kArt) : -1;
    }

    /// Reads at a position: a FIFO or a terminal, which have none, fail at once instead of waiting for input.
    bool lies(Stueck& stueck, std::size_t platz) {
        ssize_t gelesen;
        do
            gelesen = pread(deskriptor_, stueck.bytes, platz, static_cast<off_t>(stueck.ab));
        while (gelesen < 0 && errno == EINTR);
        fehler_ = gelesen < 0 ? errno : 0;
        stueck.laenge = static_cast<std::size_t>(std::max<ssize_t>(gelesen, 0));
        return fehler_ == 0;
    }

    int deskriptor_, fehler_, uebrige_ = 2;
    unsigned char anfangsbytes_[std::size_t{32} << 10], fensterbytes_[2 * kHalbesFenster];
    Stueck anfang_{.bytes = anfangsbytes_}, fenster_{.bytes = fensterbytes_};
};

#ifdef __linux__

/// The header of the library that this code is in: class, byte order and processor must be the same.
extern "C" const ElfW(Ehdr) eigenerElfKopf __asm__("__ehdr_start") __attribute__((visibility("hidden")));

constexpr Latin1Text kUngueltigeGroesse{u8"ungültige Größe eines ELF-Kopfes"};
constexpr Latin1Text kUngueltigeAusrichtung{u8" hat eine ungültige Ausrichtung"};
constexpr Latin1Text kLaengerInDerDatei{u8" ist in der Datei länger als im Speicher"};
constexpr Latin1Text kZuWeit{u8" reicht über den Adressraum hinaus"};
constexpr Latin1Text kNichtInDerDatei{u8" liegt nicht im geladenen Teil der Datei"};
constexpr Latin1Text kUnvollstaendig{u8" ist unvollständig"};
constexpr Latin1Text kAndererProzessor{u8"ELF-Datei für einen anderen Prozessor, Kennung "};
constexpr Latin1Text kProgramm{u8"ausführbares Programm, keine Bibliothek"};
constexpr Latin1Text kNullen{u8"nicht zu Ende geschrieben: Abschnittstabelle endet mit Nullen"};
constexpr Latin1Text kFremdeAusgabe{u8"für eine andere Ausgabe gebaut: braucht "};
constexpr Latin1Text kHier{u8", hier ist "};

[[noreturn]] void scheitere(Dateimangel mangel, std::string_view was, std::string_view grund) {
    throw Dateibefund{mangel, std::string(was).append(grund)};
}

/// Throws a defect unless the condition holds.
inline void verlange(bool erfuellt, Dateimangel sonst, std::string_view was, std::string_view grund = {}) {
    if (!erfuellt)
        scheitere(sonst, was, grund);
}
inline void verlange(bool erfuellt, std::string_view was, std::string_view grund = {}) {
    verlange(erfuellt, BESCHAEDIGT, was, grund);
}
inline void verlange(bool erfuellt, std::size_t segment, std::string_view grund) {
    if (!erfuellt)
        scheitere(BESCHAEDIGT, "Segment " + std::to_string(segment), grund);
}

template <class T>
T kopie(const unsigned char* bytes) {
    T wert;
    std::memcpy(&wert, bytes, sizeof(T));
    return wert;
}

/// A table that the loader finds by tags of the dynamic section.
struct Tabelle {
    std::string_view name;
    std::int64_t anfang, laenge, eintragsgroesse; ///< tags; 0 for none
    std::size_t eintrag; ///< size of an entry; of the least table where no tag says the length
};

constexpr std::int64_t kRelrSz = 35, kRelr = 36, kRelrEnt = 37; // newer than some systems' headers
constexpr Tabelle kTabellen[] = {
    {"DT_STRTAB", DT_STRTAB, DT_STRSZ, 0, 1},
    {"DT_SYMTAB", DT_SYMTAB, 0, 0, sizeof(ElfW(Sym))},
    {"DT_HASH", DT_HASH, 0, 0, 2 * sizeof(ElfW(Word))},
    {"DT_GNU_HASH", DT_GNU_HASH, 0, 0, 4 * sizeof(ElfW(Word))},
    {"DT_RELA", DT_RELA, DT_RELASZ, DT_RELAENT, sizeof(ElfW(Rela))},
    {"DT_REL", DT_REL, DT_RELSZ, DT_RELENT, sizeof(ElfW(Rel))},
    {"DT_RELR", kRelr, kRelrSz, kRelrEnt, sizeof(ElfW(Addr))},
    {"DT_JMPREL", DT_JMPREL, DT_PLTRELSZ, 0, sizeof(ElfW(Addr))},
    {"DT_INIT_ARRAY", DT_INIT_ARRAY, DT_INIT_ARRAYSZ, 0, sizeof(ElfW(Addr))},
    {"DT_FINI_ARRAY", DT_FINI_ARRAY, DT_FINI_ARRAYSZ, 0, sizeof(ElfW(Addr))},
    {"DT_INIT", DT_INIT, 0, 0, 1},
    {"DT_FINI", DT_FINI, 0, 0, 1},
    {"DT_VERSYM", DT_VERSYM, 0, 0, sizeof(ElfW(Half))},
    {"DT_VERNEED", DT_VERNEED, 0, 0, sizeof(ElfW(Verneed))},
    {"DT_VERDEF", DT_VERDEF, 0, 0, sizeof(ElfW(Verdef))},
};

/// A place for each tag that is asked for, and one for all others.
constexpr std::size_t platzVon(std::int64_t tag) {
    if (tag >= 0 && tag <= kRelrEnt)
        return static_cast<std::size_t>(tag);
    return (tag | 0xF) == 0x6FFFFFFF || tag == DT_GNU_HASH ? 48 + static_cast<std::size_t>(tag & 0xF) : 47;
}

/// The look at the content. A step throws the defect that it finds.
class ElfBlick {
public:
    ElfBlick(Datei& datei, const std::string& pfad, std::list<std::string>& weitere)
        : datei_(datei), pfad_(pfad), weitere_(weitere) {}

    Dateibefund pruefe() try {
        pruefeKopf();
        pruefeSegmente();
        pruefeEnde();
        pruefeLage();
        liesDynamik();
        pruefeTabellen();
        pruefeBedarf();
        return {};
    } catch (const Dateibefund& befund) {
        return befund;
    }

private:
    void pruefeKopf() {
        const unsigned char* const marke = datei_.bytes(0, SELFMAG);
        verlange(marke && std::memcmp(marke, ELFMAG, SELFMAG) == 0, KEINE_ELF_DATEI, "keine ELF-Datei");
        kopf_ = kopie<ElfW(Ehdr)>(hole(0, sizeof(kopf_), "ELF-Kopf"));
        const auto passt = [&](int i) { return kopf_.e_ident[i] == eigenerElfKopf.e_ident[i]; };
        verlange(passt(EI_CLASS), ANDERER_PROZESSOR, "ELF-Datei mit anderer Wortbreite");
        verlange(passt(EI_DATA), ANDERER_PROZESSOR, "ELF-Datei mit anderer Byte-Reihenfolge");
        verlange(passt(EI_VERSION) && kopf_.e_version == EV_CURRENT, "unbekannte ELF-Version");
        if (kopf_.e_machine != eigenerElfKopf.e_machine)
            verlange(false, ANDERER_PROZESSOR, kAndererProzessor, std::to_string(kopf_.e_machine));
        verlange(kopf_.e_type != ET_EXEC, KEINE_BIBLIOTHEK, kProgramm);
        verlange(kopf_.e_type == ET_DYN, KEINE_BIBLIOTHEK, "ELF-Datei, aber keine Bibliothek");
        verlange(kopf_.e_phentsize == sizeof(ElfW(Phdr)), kUngueltigeGroesse);
        verlange(kopf_.e_phnum > 0, "keine Segmente");
        verlange(kopf_.e_phnum <= segmente_.size(), "zu viele Segmente");
    }

    void pruefeSegmente() {
        const std::size_t laenge = kopf_.e_phnum * sizeof(ElfW(Phdr));
        std::memcpy(segmente_.data(), hole(kopf_.e_phoff, laenge, "Segmenttabelle"), laenge);
        for (const ElfW(Phdr) & s : segmente()) {
            const std::size_t i = nummer(s);
            if (s.p_type == PT_DYNAMIC)
                dynamik_ = &s;
            hatInterpreter_ = hatInterpreter_ || s.p_type == PT_INTERP;
            if (s.p_type != PT_LOAD)
                continue;
            verlange(s.p_filesz <= s.p_memsz, i, kLaengerInDerDatei);
            verlange(s.p_memsz <= kMaxAdresse && s.p_vaddr <= kMaxAdresse - s.p_memsz, i, kZuWeit);
            verlange((s.p_align & (s.p_align - 1)) == 0, i, kUngueltigeAusrichtung);
            verlange(s.p_vaddr >= speicherende_, i, " liegt nicht hinter dem vorigen");
            speicherende_ = s.p_vaddr + s.p_memsz;
        }
        verlange(speicherende_ > 0, "kein ladbares Segment");
        verlange(dynamik_, "kein dynamischer Abschnitt");
    }

    /// A complete file holds its segments and its section table, which linkers put last and which does not end in zeros.
    void pruefeEnde() {
        constexpr std::size_t kKopf = sizeof(ElfW(Shdr));
        const std::size_t anzahl = kopf_.e_shentsize == kKopf && kopf_.e_shoff > 0 ? kopf_.e_shnum : 0;
        const std::uint64_t tabellenende =
            anzahl > 0 ? std::min<std::uint64_t>(kopf_.e_shoff, Datei::kWeitesteStelle) + anzahl * kKopf : 0;
        std::uint64_t ende = std::max(tabellenende, std::uint64_t{1});
        for (const ElfW(Phdr) & s : segmente())
            ende = std::max(ende, dateiende(s));
        hole(ende - 1, 1, ende == tabellenende ? "Abschnittstabelle" : "Segment");
        const auto* const bytes = anzahl > 1 ? datei_.gelesene(tabellenende - kKopf, kKopf) : nullptr;
        if (!bytes)
            return;
        const auto letzter = kopie<ElfW(Shdr)>(bytes);
        verlange(letzter.sh_type != SHT_NULL && (letzter.sh_type != SHT_STRTAB || letzter.sh_addralign != 0),
                 NICHT_ZU_ENDE_GESCHRIEBEN, kNullen);
    }

    /// What the loader reads or protects through a segment's address must lie in memory that it loads.
    void pruefeLage() const {
        for (const ElfW(Phdr) & s : segmente()) {
            const std::size_t i = nummer(s);
            const bool wirdGelesen = s.p_type == PT_TLS || s.p_type == PT_NOTE || s.p_type == PT_PHDR ||
                                     s.p_type == PT_GNU_PROPERTY;
            if (wirdGelesen && s.p_filesz > 0)
                verlange(segmentMit(s.p_vaddr, s.p_filesz), i, kNichtInDerDatei);
            if (s.p_type == PT_TLS || s.p_type == PT_GNU_RELRO)
                verlange(s.p_memsz <= speicherende_ + kGroessteSeite && s.p_vaddr <= speicherende_, i,
                         kZuWeit);
        }
    }

    void liesDynamik() {
        const ElfW(Phdr)* const segment = segmentMit(dynamik_->p_vaddr, dynamik_->p_filesz);
        verlange(segment, "Der dynamische Abschnitt", kNichtInDerDatei);
        // The loader writes addresses into the section, unless its own flags say that it is not writable.
        verlange(!(dynamik_->p_flags & PF_W) || (segment->p_flags & PF_W),
                 "Der dynamische Abschnitt liegt in einem Segment ohne Schreibrecht");
        const std::uint64_t stelle = dateistelle(*segment, dynamik_->p_vaddr);
        const std::size_t laenge = std::min<std::size_t>(dynamik_->p_filesz, Datei::kHalbesFenster);
        const unsigned char* bytes = hole(stelle, laenge, "Der dynamische Abschnitt");
        std::uint64_t hintersterText = 0, anzahlBenoetigte = 0;
        for (const unsigned char* const ende = bytes + laenge;; bytes += sizeof(ElfW(Dyn))) {
            verlange(bytes + sizeof(ElfW(Dyn)) <= ende, "Der dynamische Abschnitt hat kein Ende");
            const auto e = kopie<ElfW(Dyn)>(bytes);
            if (e.d_tag == DT_NULL)
                break;
            werte_[platzVon(e.d_tag)] = e.d_un.d_val;
            vorhandene_ |= std::uint64_t{1} << platzVon(e.d_tag);
            if (e.d_tag == DT_NEEDED)
                benoetigte_[anzahlBenoetigte++ % benoetigte_.size()] = e.d_un.d_val;
            if (e.d_tag == DT_NEEDED || e.d_tag == DT_SONAME || e.d_tag == DT_RPATH || e.d_tag == DT_RUNPATH)
                hintersterText = std::max<std::uint64_t>(hintersterText, e.d_un.d_val);
        }
        for (const Tabelle& t : {kTabellen[0], kTabellen[1]})
            verlange(hat(t.anfang), t.name, " fehlt im dynamischen Abschnitt");
        verlange(hintersterText < wert(DT_STRSZ), "Ein Name liegt hinter der Texttabelle");
        verlange(!(wert(DT_FLAGS_1) & DF_1_PIE) && !(hatInterpreter_ && hat(DT_DEBUG)), KEINE_BIBLIOTHEK,
                 kProgramm);
    }

    void pruefeTabellen() const {
        for (const Tabelle& t : kTabellen) {
            const bool istDa = hat(t.anfang);
            verlange(t.laenge == 0 || hat(t.laenge) == istDa, t.name, kUnvollstaendig);
            if (!istDa)
                continue;
            const std::uint64_t laenge = t.laenge != 0 ? wert(t.laenge) : t.eintrag;
            const std::uint64_t groesse = t.eintragsgroesse != 0 ? wert(t.eintragsgroesse) : t.eintrag;
            verlange(laenge % t.eintrag == 0 && groesse == t.eintrag, t.name, kUnvollstaendig);
            verlange(laenge == 0 || segmentMit(wert(t.anfang), laenge), t.name, kNichtInDerDatei);
        }
        const std::uint64_t art = wert(DT_PLTREL);
        verlange(!hat(DT_JMPREL) || art == DT_RELA || art == DT_REL, "DT_JMPREL", kUnvollstaendig);
    }

    /// A library of another release would be loaded beside this one and mix up their classes. Where no reading is left for
    /// a name, the loader decides.
    void pruefeBedarf() {
        const std::vector<std::string> orte = eigeneOrte();
        const std::size_t maxName = orte.empty() ? 48 : 256;
        for (const std::uint64_t stelle : benoetigte_) {
            const std::string_view name = stelle > 0 ? text(stelle, maxName) : std::string_view();
            if (!name.data())
                return;
            for (const std::string_view eigene : {"liborvoplugin.so.", "liborvoutil.so."})
                if (name.starts_with(eigene) && name.substr(eigene.size()) != ORVO_AUSGABE)
                    verlange(false, ANDERE_AUSGABE, kFremdeAusgabe.c_str() + std::string(name),
                             kHier.c_str() + std::string(eigene) + ORVO_AUSGABE);
            for (const std::string& ort : orte)
                if (!name.empty() && name.find('/') == name.npos)
                    weitere_.push_back(ort + std::string(name));
        }
    }

    /// The beginning of the search path, as far as it is relative to the file's directory.
    std::vector<std::string> eigeneOrte() {
        std::vector<std::string> orte;
        const std::int64_t tag = hat(DT_RUNPATH) ? DT_RUNPATH : DT_RPATH;
        std::string_view rest = hat(tag) ? text(wert(tag), 1024) : std::string_view();
        while (!rest.empty()) {
            const std::string_view ort = rest.substr(0, rest.find(':'));
            const std::size_t wort = ort.starts_with("$ORIGIN") ? 7 : ort.starts_with("${ORIGIN}") ? 9 : 0;
            const std::string_view unten = ort.substr(wort);
            if (wort == 0 || !(unten.empty() || unten.front() == '/') || unten.find('$') != unten.npos)
                break;
            orte.push_back(pfad_.substr(0, pfad_.rfind('/')).append(unten) + '/');
            rest.remove_prefix(std::min(rest.size(), ort.size() + 1));
        }
        return orte;
    }

    /// A text of the table; empty if it is longer than so many bytes, null if no reading is left for it.
    std::string_view text(std::uint64_t stelle, std::uint64_t maximum) {
        const std::uint64_t texte = wert(DT_STRTAB), laenge = wert(DT_STRSZ);
        const std::uint64_t anfang = dateistelle(*segmentMit(texte, laenge), texte);
        const auto platz = static_cast<std::size_t>(std::min(maximum, laenge - stelle));
        const unsigned char* const bytes = datei_.bytes(anfang + stelle, platz);
        const std::string_view rest(reinterpret_cast<const char*>(bytes), bytes ? platz : 0);
        const std::size_t ende = rest.find('\0');
        return rest.substr(0, ende == rest.npos ? 0 : ende);
    }

    /// Bytes that cannot be read end the look. Unless the file is cut off before them, the loader decides.
    const unsigned char* hole(std::uint64_t ab, std::size_t anzahl, const char* was) {
        if (const unsigned char* const bytes = datei_.bytes(ab, anzahl))
            return bytes;
        verlange(datei_.fehler() == 0, NICHT_ZU_OEFFNEN, kNichtZuOeffnen);
        const bool endetDavor = ab > Datei::kWeitesteStelle || ab + anzahl > datei_.groesse();
        verlange(!endetDavor, ABGESCHNITTEN, std::string("abgeschnitten: ") + was, " endet hinter der Datei");
        throw Dateibefund{};
    }

    bool hat(std::int64_t tag) const { return (vorhandene_ >> platzVon(tag) & 1) != 0; }
    std::uint64_t wert(std::int64_t tag) const { return werte_[platzVon(tag)]; }

    std::span<const ElfW(Phdr)> segmente() const { return {segmente_.data(), kopf_.e_phnum}; }
    std::size_t nummer(const ElfW(Phdr) & s) const { return static_cast<std::size_t>(&s - segmente_.data()); }

    /// The segment of which the part in the file holds a range of addresses; null when none does.
    const ElfW(Phdr) * segmentMit(std::uint64_t adresse, std::uint64_t laenge) const {
        for (const ElfW(Phdr) & s : segmente())
            if (s.p_type == PT_LOAD && (s.p_flags & PF_R) && adresse >= s.p_vaddr && laenge <= s.p_filesz &&
                adresse - s.p_vaddr <= s.p_filesz - laenge)
                return &s;
        return nullptr;
    }
    static std::uint64_t dateistelle(const ElfW(Phdr) & s, std::uint64_t a) {
        return s.p_offset + (a - s.p_vaddr);
    }
    static std::uint64_t dateiende(const ElfW(Phdr) & s) {
        return s.p_type == PT_LOAD && s.p_filesz > 0
                   ? std::min<std::uint64_t>(s.p_offset, Datei::kWeitesteStelle) + s.p_filesz
                   : 0;
    }
    // The loader leaves the file mapped when it cannot reserve the memory. No library needs this much.
    static constexpr std::uint64_t kMaxAdresse = std::uint64_t{1} << 31,
                                   kGroessteSeite = std::uint64_t{1} << 16;

    Datei& datei_;
    const std::string& pfad_;
    std::list<std::string>& weitere_; ///< where the loader searches needed libraries first
    ElfW(Ehdr) kopf_;
    std::array<ElfW(Phdr), 64> segmente_;
    std::uint64_t speicherende_ = 0; ///< of the segments that are loaded
    const ElfW(Phdr) * dynamik_ = nullptr;
    bool hatInterpreter_ = false;
    std::array<std::uint64_t, 64> werte_{}; ///< of the dynamic section; of a tag that occurs twice, the last
    std::uint64_t vorhandene_ = 0;          ///< a bit for each of them
    std::array<std::uint64_t, 16> benoetigte_{}; ///< places of the names of needed libraries
};

Dateibefund pruefe(Datei& datei, const std::string& pfad, std::list<std::string>& weitere) {
    return ElfBlick(datei, pfad, weitere).pruefe();
}

#else
Dateibefund pruefe(Datei&, const std::string&, std::list<std::string>&) { return {}; }
#endif

Dateibefund blickeAufEine(const std::string& pfad, std::list<std::string>& weitere) {
    Datei datei(pfad.c_str());
    const bool istGelesen = datei.istOffen() && datei.liesAnfang();
    Dateibefund befund =
        istGelesen ? pruefe(datei, pfad, weitere) : Dateibefund{NICHT_ZU_OEFFNEN, kNichtZuOeffnen};
    struct stat zustand;
    if (!befund.istLadbar() && stat(pfad.c_str(), &zustand) == 0 && !S_ISREG(zustand.st_mode))
        return {KEINE_DATEI, kKeineDatei};
    if (befund.mangel == NICHT_ZU_OEFFNEN)
        befund.grund += std::generic_category().message(datei.fehler());
    return befund;
}

/// Whether the process has a library of that name, which the loader then takes instead of a file.
bool istGeladen(const std::string& name) {
    void* const griff = dlopen(name.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    while (dlerror()) {
        // takes the error that it is not there, and frees its text
    }
    return griff && dlclose(griff) == 0;
}

} // namespace

Dateibefund blickeAufDatei(const std::string& pfad) {
    std::list<std::string> weitere; // grows during the walk
    const Dateibefund befund = blickeAufEine(pfad, weitere);
    if (!befund.istLadbar())
        return befund;
    std::set<std::string> gefundene;
    for (const std::string& datei : weitere) {
        const std::string name = datei.substr(datei.rfind('/') + 1);
        if (gefundene.contains(name))
            continue;
        const Dateibefund weiterer = blickeAufEine(datei, weitere);
        if (weiterer.mangel == NICHT_ZU_OEFFNEN || weiterer.mangel == ANDERER_PROZESSOR)
            continue; // the loader searches on
        gefundene.insert(name);
        if (!weiterer.istLadbar() && !istGeladen(name))
            return {BENOETIGTE_BIBLIOTHEK, kBenoetigte.c_str() + name + ": " + weiterer.grund};
    }
    return befund;
}

} // namespace orvo::orvoelf
