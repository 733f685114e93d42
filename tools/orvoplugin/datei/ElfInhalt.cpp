#include "datei/ElfInhalt.h"

#ifdef __linux__

#include <elf.h>
#include <link.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace werkzeug {

namespace {

/// What is wrong with an ELF file.
struct ElfMangel : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void verlange(bool erfuellt, const char* mangel) {
    if (!erfuellt)
        throw ElfMangel(mangel);
}

Symbolbindung bindungVon(const ElfW(Sym) & symbol) {
    switch (symbol.st_info >> 4) {
    case STB_GLOBAL:
        return Symbolbindung::Global;
    case STB_WEAK:
        return Symbolbindung::Schwach;
    case STB_GNU_UNIQUE:
        return Symbolbindung::Einmalig;
    default:
        return Symbolbindung::Andere;
    }
}

Symbolart artVon(const ElfW(Sym) & symbol) {
    switch (symbol.st_info & 0xF) {
    case STT_FUNC:
    case STT_GNU_IFUNC:
        return Symbolart::Funktion;
    case STT_OBJECT:
    case STT_COMMON:
        return Symbolart::Daten;
    case STT_TLS:
        return Symbolart::ThreadLokal;
    default:
        return Symbolart::Andere;
    }
}

/// Whether other libraries see a symbol that is defined here.
bool istSichtbar(const ElfW(Sym) & symbol) {
    const unsigned sichtbarkeit = symbol.st_other & 0x3;
    return (symbol.st_info >> 4) != STB_LOCAL &&
           (sichtbarkeit == STV_DEFAULT || sichtbarkeit == STV_PROTECTED);
}

/// The mapped parts of an ELF file, by their addresses.
class ElfSegmente {
public:
    explicit ElfSegmente(const std::string& pfad) : datei_(pfad, std::ios::binary) {
        const auto kopf = lies<ElfW(Ehdr)>(0, 1).front();
        koepfe_ = lies<ElfW(Phdr)>(kopf.e_phoff, kopf.e_phnum);
    }

    const ElfW(Phdr) * segmentVom(std::uint32_t typ) const {
        const auto stelle =
            std::find_if(koepfe_.begin(), koepfe_.end(), [&](const auto& k) { return k.p_type == typ; });
        return stelle == koepfe_.end() ? nullptr : &*stelle;
    }

    /// A table of that many entries at an address.
    template <class T>
    std::vector<T> tabelle(std::uint64_t adresse, std::uint64_t anzahl) {
        for (const ElfW(Phdr) & k : koepfe_)
            if (k.p_type == PT_LOAD && adresse >= k.p_vaddr && adresse - k.p_vaddr <= k.p_filesz &&
                anzahl <= (k.p_filesz - (adresse - k.p_vaddr)) / sizeof(T))
                return lies<T>(k.p_offset + (adresse - k.p_vaddr), anzahl);
        throw ElfMangel("Verweis hinter den geladenen Teil der Datei");
    }

private:
    /// More memory than any library's tables need.
    static constexpr std::uint64_t kMaxBytes = std::uint64_t{1} << 28;

    template <class T>
    std::vector<T> lies(std::uint64_t ab, std::uint64_t anzahl) {
        verlange(anzahl <= kMaxBytes / sizeof(T), "eine Tabelle ist zu lang");
        std::vector<T> eintraege(anzahl);
        const auto bytes = static_cast<std::streamsize>(anzahl * sizeof(T));
        datei_.seekg(static_cast<std::streamoff>(ab));
        datei_.read(reinterpret_cast<char*>(eintraege.data()), bytes);
        verlange(datei_.good(), "nicht lesbar");
        return eintraege;
    }

    std::ifstream datei_;
    std::vector<ElfW(Phdr)> koepfe_;
};

/// Reads the contents of a library.
class Leser {
public:
    Leser(ElfSegmente& segmente, Bibliotheksinhalt& inhalt) : segmente_(segmente), inhalt_(inhalt) {}

    void lies() {
        liesDynamik();
        liesNamen();
        liesVersionen();
        liesMerkmale();
        liesSymbole();
    }

private:
    // Names may overlap in the string table, but one that uses each byte this often is meant to exhaust memory.
    static constexpr std::uint64_t kNutzungen = 16, kMindestvorrat = 1 << 20;
    // Likewise for entries of the table of versions, which may overlap too.
    static constexpr std::uint64_t kMaxVersionen = 1 << 14;

    void liesDynamik() {
        const ElfW(Phdr)* const segment = segmente_.segmentVom(PT_DYNAMIC);
        verlange(segment, "kein dynamischer Abschnitt");
        for (const ElfW(Dyn) & e :
             segmente_.tabelle<ElfW(Dyn)>(segment->p_vaddr, segment->p_filesz / sizeof(ElfW(Dyn)))) {
            if (e.d_tag == DT_NULL)
                break;
            werte_[e.d_tag] = e.d_un.d_val;
            if (e.d_tag == DT_NEEDED)
                benoetigte_.push_back(e.d_un.d_val);
        }
        texte_ = segmente_.tabelle<char>(verlangter(DT_STRTAB), verlangter(DT_STRSZ));
        uebrig_ = kMindestvorrat + kNutzungen * texte_.size();
    }

    std::optional<std::uint64_t> wert(std::int64_t tag) const {
        const auto stelle = werte_.find(tag);
        return stelle == werte_.end() ? std::nullopt : std::optional(stelle->second);
    }
    std::uint64_t verlangter(std::int64_t tag) const {
        const auto gefunden = wert(tag);
        verlange(gefunden.has_value(), "Dem dynamischen Abschnitt fehlt ein Eintrag");
        return *gefunden;
    }
    bool hatBit(std::int64_t tag, std::uint64_t bit) const { return (wert(tag).value_or(0) & bit) != 0; }

    std::string text(std::uint64_t ab) {
        verlange(ab < texte_.size(), "Ein Name liegt hinter der Texttabelle");
        const auto anfang = texte_.begin() + static_cast<std::ptrdiff_t>(ab);
        const auto ende = std::find(anfang, texte_.end(), '\0');
        verlange(ende != texte_.end(), "Die Texttabelle endet mitten im Text");
        const auto laenge = static_cast<std::uint64_t>(ende - anfang);
        verlange(laenge <= uebrig_, "Die Namen sind zusammen zu lang");
        uebrig_ -= laenge;
        return {anfang, ende};
    }

    void liesNamen() {
        for (const std::uint64_t name : benoetigte_)
            inhalt_.benoetigte.push_back(text(name));
        if (const auto name = wert(DT_SONAME))
            inhalt_.soname = text(*name);
        // The loader does not look at the older form when there is the newer one.
        const auto pfade = wert(DT_RUNPATH) ? wert(DT_RUNPATH) : wert(DT_RPATH);
        if (pfade)
            liesSuchpfade(text(*pfade));
    }

    void liesSuchpfade(const std::string& pfade) {
        if (pfade.empty()) // left by tools that remove the paths from a finished file
            return;
        std::size_t ab = 0;
        for (std::size_t ende; (ende = pfade.find(':', ab)) != std::string::npos; ab = ende + 1)
            inhalt_.suchpfade.push_back(pfade.substr(ab, ende - ab));
        inhalt_.suchpfade.push_back(pfade.substr(ab));
    }

    /// Two chains: the libraries, and for each the versions that it has to have.
    void liesVersionen() {
        std::uint64_t adresse = wert(DT_VERNEED).value_or(0);
        const std::uint64_t anzahl = adresse == 0 ? 0 : wert(DT_VERNEEDNUM).value_or(0);
        for (std::uint64_t i = 0; i < std::min(anzahl, kMaxVersionen); ++i) {
            const auto bedarf = segmente_.tabelle<ElfW(Verneed)>(adresse, 1).front();
            liesVersionen(adresse + bedarf.vn_aux, bedarf);
            if (bedarf.vn_next == 0)
                break;
            adresse += bedarf.vn_next;
        }
    }

    void liesVersionen(std::uint64_t adresse, const ElfW(Verneed) & bedarf) {
        const std::string bibliothek = text(bedarf.vn_file);
        for (unsigned i = bedarf.vn_cnt; i > 0; --i) {
            const auto eintrag = segmente_.tabelle<ElfW(Vernaux)>(adresse, 1).front();
            verlange(inhalt_.versionen.size() < kMaxVersionen, "Die Tabelle der Versionen ist zu lang");
            verlange(bibliothek.size() <= uebrig_, "Die Namen sind zusammen zu lang");
            uebrig_ -= bibliothek.size();
            inhalt_.versionen.push_back({bibliothek, text(eintrag.vna_name)});
            if (eintrag.vna_next == 0)
                break;
            adresse += eintrag.vna_next;
        }
    }

    std::uint32_t funktionen(std::int64_t einzelne, std::int64_t laengeDerTabelle) const {
        const std::uint64_t anzahl = wert(laengeDerTabelle).value_or(0) / sizeof(ElfW(Addr));
        return static_cast<std::uint32_t>(anzahl) + (wert(einzelne) ? 1 : 0);
    }

    void liesMerkmale() {
        inhalt_.startfunktionen = funktionen(DT_INIT, DT_INIT_ARRAYSZ);
        inhalt_.endfunktionen = funktionen(DT_FINI, DT_FINI_ARRAYSZ);
        inhalt_.bindetSofort =
            wert(DT_BIND_NOW) || hatBit(DT_FLAGS, DF_BIND_NOW) || hatBit(DT_FLAGS_1, DF_1_NOW);
        inhalt_.bleibtGeladen = hatBit(DT_FLAGS_1, DF_1_NODELETE);
        inhalt_.hatThreadLokale = segmente_.segmentVom(PT_TLS) != nullptr;
        inhalt_.aendertCode = wert(DT_TEXTREL) || hatBit(DT_FLAGS, DF_TEXTREL);
        const ElfW(Phdr)* const stapel = segmente_.segmentVom(PT_GNU_STACK);
        inhalt_.nenntStapel = stapel != nullptr;
        inhalt_.stapelMitCode = stapel && (stapel->p_flags & PF_X);
    }

    /// The number of symbols, known from the hash tables only. In GNU's form, the words after the filter hold the first
    /// symbol of each slot, followed by the chains, each of which ends at a word with bit 0 set.
    std::uint64_t symbolzahl() {
        using Wort = ElfW(Word);
        if (const auto hash = wert(DT_HASH))
            return segmente_.tabelle<Wort>(*hash, 2)[1];
        const std::uint64_t hash = verlangter(DT_GNU_HASH);
        const auto kopf = segmente_.tabelle<Wort>(hash, 4);
        const std::uint64_t erstes = kopf[1];
        const std::uint64_t faecher = hash + 4 * sizeof(Wort) + std::uint64_t{kopf[2]} * sizeof(ElfW(Addr));
        const auto anfaenge = segmente_.tabelle<Wort>(faecher, kopf[0]);
        std::uint64_t letztes = anfaenge.empty() ? 0 : *std::max_element(anfaenge.begin(), anfaenge.end());
        if (letztes < erstes) // it exports nothing
            return erstes;
        const std::uint64_t ketten = faecher + anfaenge.size() * sizeof(Wort);
        while (!(segmente_.tabelle<Wort>(ketten + (letztes - erstes) * sizeof(Wort), 1)[0] & 1))
            ++letztes;
        return letztes + 1;
    }

    void liesSymbole() {
        for (const ElfW(Sym) & symbol : segmente_.tabelle<ElfW(Sym)>(verlangter(DT_SYMTAB), symbolzahl())) {
            if (symbol.st_name == 0)
                continue;
            if (symbol.st_shndx == SHN_UNDEF)
                fuegeAn(inhalt_.undefinierte, symbol);
            else if (istSichtbar(symbol))
                fuegeAn(inhalt_.exportierte, symbol);
        }
    }

    void fuegeAn(std::vector<Bibliothekssymbol>& symbole, const ElfW(Sym) & symbol) {
        symbole.push_back({text(symbol.st_name), bindungVon(symbol), artVon(symbol)});
    }

    ElfSegmente& segmente_;
    Bibliotheksinhalt& inhalt_;
    std::map<std::int64_t, std::uint64_t> werte_; ///< of the dynamic section, by tag; the last one counts
    std::vector<std::uint64_t> benoetigte_;
    std::vector<char> texte_;
    std::uint64_t uebrig_ = 0; ///< how many more bytes of names may be stored
};

} // namespace

std::string liesElf(const std::string& pfad, Bibliotheksinhalt& inhalt) {
    inhalt = {};
    try {
        ElfSegmente segmente(pfad);
        Leser(segmente, inhalt).lies();
        return {};
    } catch (const ElfMangel& mangel) {
        inhalt = {};
        return mangel.what();
    }
}

} // namespace werkzeug

#else

namespace werkzeug {

std::string liesElf(const std::string&, Bibliotheksinhalt& inhalt) {
    inhalt = {};
    return {};
}

} // namespace werkzeug

#endif
