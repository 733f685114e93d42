#include <orvoutil/ladepruefung/ElfInhalt.h>

#include <orvoutil/ladepruefung/ElfPruefung.h>
#include <orvoutil/ladepruefung/ElfTabellen.h>

namespace orvo::orvoutil {

namespace {

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

/// Takes down the content of a library that passed the check.
class Leser {
public:
    Leser(ElfAbbild& abbild, const ElfDynamik& dynamik, Bibliotheksinhalt& inhalt)
        : abbild_(abbild),
          dynamik_(dynamik),
          inhalt_(inhalt),
          texte_(dynamik.verlangter(DT_STRTAB, "DT_STRTAB")),
          uebrig_(kMindestvorrat + kNutzungen * dynamik.verlangter(DT_STRSZ, "DT_STRSZ")) {}

    void lies() {
        liesNamen();
        liesMerkmale();
        liesSymbole();
    }

private:
    // Names may overlap in the string table, but a table of which each byte is used this often is meant to fill memory.
    static constexpr std::uint64_t kNutzungen = 16, kMindestvorrat = 1 << 20;

    std::string text(std::uint64_t ab) {
        dynamik_.verlangeText(ab); // and so ends in the table
        std::string text;
        while (const char zeichen = abbild_.lies<char>(texte_ + ab++)) {
            verlange(uebrig_-- > 0, "Die Namen sind zusammen zu lang");
            text += zeichen;
        }
        return text;
    }

    void liesNamen() {
        for (std::uint64_t i = 0; i < dynamik_.anzahl(); ++i) {
            const ElfW(Dyn) e = dynamik_.eintrag(i);
            if (e.d_tag == DT_NEEDED)
                inhalt_.benoetigte.push_back(text(e.d_un.d_val));
        }
        if (const auto name = dynamik_.wert(DT_SONAME))
            inhalt_.soname = text(*name);
        // The loader does not look at the older form when there is the newer one.
        if (const auto pfade = dynamik_.hat(DT_RUNPATH) ? dynamik_.wert(DT_RUNPATH) : dynamik_.wert(DT_RPATH))
            liesSuchpfade(text(*pfade));
    }

    void liesSuchpfade(const std::string& pfade) {
        if (pfade.empty()) // as is left by tools that take the paths out of a finished file
            return;
        std::size_t ab = 0;
        for (std::size_t ende; (ende = pfade.find(':', ab)) != std::string::npos; ab = ende + 1)
            inhalt_.suchpfade.push_back(pfade.substr(ab, ende - ab));
        inhalt_.suchpfade.push_back(pfade.substr(ab));
    }

    std::uint32_t funktionen(std::int64_t einzelne, std::int64_t laengeDerTabelle) const {
        const std::uint64_t anzahl = dynamik_.wert(laengeDerTabelle).value_or(0) / sizeof(ElfW(Addr));
        return static_cast<std::uint32_t>(anzahl) + (dynamik_.hat(einzelne) ? 1 : 0);
    }

    void liesMerkmale() {
        inhalt_.startfunktionen = funktionen(DT_INIT, DT_INIT_ARRAYSZ);
        inhalt_.endfunktionen = funktionen(DT_FINI, DT_FINI_ARRAYSZ);
        inhalt_.bindetSofort = dynamik_.hat(DT_BIND_NOW) || dynamik_.hatBit(DT_FLAGS, DF_BIND_NOW) ||
                               dynamik_.hatBit(DT_FLAGS_1, DF_1_NOW);
        inhalt_.bleibtGeladen = dynamik_.hatBit(DT_FLAGS_1, DF_1_NODELETE);
        inhalt_.hatThreadLokale = abbild_.tls().has_value();
        inhalt_.aendertCode = dynamik_.hat(DT_TEXTREL) || dynamik_.hatBit(DT_FLAGS, DF_TEXTREL);
    }

    void liesSymbole() {
        const std::uint64_t tabelle = dynamik_.verlangter(DT_SYMTAB, "DT_SYMTAB");
        const std::uint64_t anzahl = pruefeSymbole(dynamik_, pruefeRelokationen(dynamik_));
        for (std::uint64_t i = 1; i < anzahl; ++i) {
            const auto symbol = abbild_.lies<ElfW(Sym)>(tabelle + i * sizeof(ElfW(Sym)));
            if (symbol.st_name == 0)
                continue;
            if (symbol.st_shndx == SHN_UNDEF)
                merke(inhalt_.undefinierte, symbol);
            else if (istSichtbar(symbol))
                merke(inhalt_.exportierte, symbol);
        }
    }

    void merke(std::vector<Bibliothekssymbol>& symbole, const ElfW(Sym) & symbol) {
        symbole.push_back({text(symbol.st_name), bindungVon(symbol), artVon(symbol)});
    }

    ElfAbbild& abbild_;
    const ElfDynamik& dynamik_;
    Bibliotheksinhalt& inhalt_;
    std::uint64_t texte_;
    std::uint64_t uebrig_; ///< how many bytes of names may still be taken down
};

} // namespace

std::string liesElf(Bytequelle& quelle, Bibliotheksinhalt& inhalt) {
    inhalt = {};
    if (std::string grund = pruefeElf(quelle); !grund.empty())
        return grund;
    try {
        ElfAbbild abbild(quelle);
        const ElfDynamik dynamik(abbild);
        Leser(abbild, dynamik, inhalt).lies();
        return {};
    } catch (const ElfMangel& mangel) { // the file has changed since
        inhalt = {};
        return mangel.what();
    }
}

} // namespace orvo::orvoutil
