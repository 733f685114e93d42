#include <orvoutil/ladepruefung/ElfDynamik.h>

#include <algorithm>

namespace orvo::orvoutil {

namespace {

constexpr std::uint64_t kMaxEintraege = 4096;

/// Whether the value of such an entry is the place of a text in the string table.
bool istText(std::int64_t tag) {
    switch (tag) {
    case DT_NEEDED:
    case DT_SONAME:
    case DT_RPATH:
    case DT_RUNPATH:
    case DT_AUXILIARY:
    case DT_FILTER:
        return true;
    default:
        return false;
    }
}

} // namespace

ElfDynamik::ElfDynamik(ElfAbbild& abbild) : abbild_(abbild), eintraege_(verlangeEintraege(abbild)) {
    const std::uint64_t platz = abbild.dynamik().p_filesz / sizeof(ElfW(Dyn));
    std::uint64_t hintersterText = 0;
    for (;; ++anzahl_) {
        verlange(anzahl_ < platz, "Der dynamische Abschnitt hat kein Ende");
        const ElfW(Dyn) naechster = eintrag(anzahl_);
        if (naechster.d_tag == DT_NULL)
            break;
        merke(naechster);
        if (istText(naechster.d_tag))
            hintersterText = std::max<std::uint64_t>(hintersterText, naechster.d_un.d_val);
    }
    pruefeTexttabelle();
    verlangeText(hintersterText);
}

ElfTabelle<ElfW(Dyn)> ElfDynamik::verlangeEintraege(ElfAbbild& abbild) {
    const ElfW(Phdr)& kopf = abbild.dynamik();
    abbild.verlangeTabelle("Der dynamische Abschnitt", kopf.p_vaddr, kopf.p_filesz, alignof(ElfW(Dyn)));
    // The loader puts addresses into the section, unless it is marked as not to be written.
    verlange(!(kopf.p_flags & PF_W) || abbild.istGeladen(kopf.p_vaddr, kopf.p_filesz, PF_W),
             "Der dynamische Abschnitt liegt in einem Segment ohne Schreibrecht");
    const std::uint64_t platz = kopf.p_filesz / sizeof(ElfW(Dyn));
    verlange(platz <= kMaxEintraege, "Der dynamische Abschnitt ist zu lang");
    return abbild.tabelle<ElfW(Dyn)>(kopf.p_vaddr, platz);
}

void ElfDynamik::merke(const ElfW(Dyn) & eintrag) {
    const std::size_t platz = platzVon(eintrag.d_tag);
    if (platz == kPlaetze)
        return;
    verlange(!werte_[platz] || eintrag.d_tag == DT_NEEDED, "Der dynamische Abschnitt widerspricht sich");
    werte_[platz] = eintrag.d_un.d_val;
}

void ElfDynamik::beanstandeFehlen(const char* name) {
    throw ElfMangel(std::string(name) + " fehlt im dynamischen Abschnitt");
}

void ElfDynamik::pruefeTexttabelle() {
    texte_ = verlangter(DT_STRTAB, "DT_STRTAB");
    textlaenge_ = verlangter(DT_STRSZ, "DT_STRSZ");
    verlange(textlaenge_ > 0, "Die Texttabelle ist leer");
    abbild_.verlangeTabelle("DT_STRTAB", texte_, textlaenge_, 1);
    verlange(abbild_.lies<char>(texte_) == '\0' && abbild_.lies<char>(texte_ + textlaenge_ - 1) == '\0',
             "Die Texttabelle beginnt oder endet mitten im Text");
}

bool ElfDynamik::istGleicherText(std::uint64_t a, std::uint64_t b) const {
    verlangeText(a);
    verlangeText(b);
    if (a == b)
        return true;
    constexpr std::uint64_t kMaxName = 4096;
    const ElfTabelle<char> zeichen = texte();
    for (std::uint64_t i = 0; i < kMaxName; ++i) { // stops at the table's last byte at the latest
        const char links = zeichen[a + i];
        if (links != zeichen[b + i])
            return false;
        if (links == '\0')
            return true;
    }
    return false;
}

} // namespace orvo::orvoutil
