#include <orvoutil/ladepruefung/ElfDynamik.h>

#include <iterator>

namespace orvo::orvoutil {

namespace {

constexpr std::uint64_t kMaxEintraege = 4096;

} // namespace

ElfDynamik::ElfDynamik(ElfAbbild& abbild)
    : abbild_(abbild),
      weitere_{{{DT_GNU_HASH, {}},
                {DT_VERSYM, {}},
                {DT_VERDEF, {}},
                {DT_VERNEED, {}},
                {DT_RELACOUNT, {}},
                {DT_RELCOUNT, {}},
                {DT_FLAGS_1, {}}}} {
    const ElfW(Phdr)& kopf = abbild.dynamik();
    abbild.verlangeTabelle("Der dynamische Abschnitt", kopf.p_vaddr, kopf.p_filesz, alignof(ElfW(Dyn)));
    // The loader puts addresses into the section, unless it is marked as not to be written.
    verlange(!(kopf.p_flags & PF_W) || abbild.istGeladen(kopf.p_vaddr, kopf.p_filesz, PF_W),
             "Der dynamische Abschnitt liegt in einem Segment ohne Schreibrecht");
    const std::uint64_t platz = kopf.p_filesz / sizeof(ElfW(Dyn));
    verlange(platz <= kMaxEintraege, "Der dynamische Abschnitt ist zu lang");
    for (;; ++anzahl_) {
        verlange(anzahl_ < platz, "Der dynamische Abschnitt hat kein Ende");
        const ElfW(Dyn) naechster = eintrag(anzahl_);
        if (naechster.d_tag == DT_NULL)
            break;
        merke(naechster);
    }
    pruefeTexttabelle();
}

ElfW(Dyn) ElfDynamik::eintrag(std::uint64_t nummer) const {
    return abbild_.lies<ElfW(Dyn)>(abbild_.dynamik().p_vaddr + nummer * sizeof(ElfW(Dyn)));
}

std::optional<std::uint64_t>* ElfDynamik::fach(std::int64_t tag) {
    if (tag >= 0 && static_cast<std::uint64_t>(tag) < werte_.size())
        return &werte_[static_cast<std::size_t>(tag)];
    const auto stelle =
        std::find_if(weitere_.begin(), weitere_.end(), [&](const auto& w) { return w.first == tag; });
    return stelle == weitere_.end() ? nullptr : &stelle->second;
}

void ElfDynamik::merke(const ElfW(Dyn) & eintrag) {
    std::optional<std::uint64_t>* const platz = fach(eintrag.d_tag);
    if (!platz)
        return;
    verlange(!*platz || eintrag.d_tag == DT_NEEDED, "Der dynamische Abschnitt widerspricht sich");
    *platz = eintrag.d_un.d_val;
}

std::optional<std::uint64_t> ElfDynamik::wert(std::int64_t tag) const {
    const auto* const platz = const_cast<ElfDynamik*>(this)->fach(tag);
    return platz ? *platz : std::nullopt;
}

std::uint64_t ElfDynamik::verlangter(std::int64_t tag, const char* name) const {
    const std::optional<std::uint64_t> gefunden = wert(tag);
    if (!gefunden)
        throw ElfMangel(std::string(name) + " fehlt im dynamischen Abschnitt");
    return *gefunden;
}

void ElfDynamik::pruefeTexttabelle() {
    texte_ = verlangter(DT_STRTAB, "DT_STRTAB");
    textlaenge_ = verlangter(DT_STRSZ, "DT_STRSZ");
    verlange(textlaenge_ > 0, "Die Texttabelle ist leer");
    abbild_.verlangeTabelle("DT_STRTAB", texte_, textlaenge_, 1);
    verlange(abbild_.lies<char>(texte_) == '\0' && abbild_.lies<char>(texte_ + textlaenge_ - 1) == '\0',
             "Die Texttabelle beginnt oder endet mitten im Text");
    static constexpr std::int64_t kTexte[] = {DT_NEEDED,  DT_SONAME,    DT_RPATH,
                                              DT_RUNPATH, DT_AUXILIARY, DT_FILTER};
    for (std::uint64_t i = 0; i < anzahl_; ++i) {
        const ElfW(Dyn) e = eintrag(i);
        if (std::find(std::begin(kTexte), std::end(kTexte), e.d_tag) != std::end(kTexte))
            verlangeText(e.d_un.d_val);
    }
}

void ElfDynamik::verlangeText(std::uint64_t text) const {
    verlange(text < textlaenge_, "Ein Name liegt hinter der Texttabelle");
}

bool ElfDynamik::istGleicherText(std::uint64_t a, std::uint64_t b) const {
    verlangeText(a);
    verlangeText(b);
    if (a == b)
        return true;
    constexpr std::uint64_t kMaxName = 4096;
    for (std::uint64_t i = 0; i < kMaxName; ++i) { // stops at the table's last byte at the latest
        const char links = abbild_.lies<char>(texte_ + a + i);
        if (links != abbild_.lies<char>(texte_ + b + i))
            return false;
        if (links == '\0')
            return true;
    }
    return false;
}

} // namespace orvo::orvoutil
