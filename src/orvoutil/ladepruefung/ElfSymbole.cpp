#include <orvoutil/ladepruefung/ElfTabellen.h>

#include <algorithm>

namespace orvo::orvoutil {

namespace {

using Wort = ElfW(Word);
#if defined(__s390x__) || defined(__alpha__)
using Hashwort = std::uint64_t;
#else
using Hashwort = std::uint32_t;
#endif

constexpr unsigned kOhneVerborgen = 0x7FFF; // a version's number, without the bit that hides it

/// Words of a table, by number.
template <class T>
T wort(ElfAbbild& abbild, std::uint64_t tabelle, std::uint64_t nummer) {
    return abbild.lies<T>(tabelle + nummer * sizeof(T));
}

/// A hash table in GNU's form: a filter of so many words, then per slot its first symbol, then the chains, of which
/// each ends at the first word with bit 0. Symbols before the first one stand in no chain.
std::uint64_t pruefeGnuHash(ElfAbbild& abbild, std::uint64_t adresse) {
    constexpr std::uint64_t kKopf = 4 * sizeof(Wort);
    abbild.verlangeTabelle("DT_GNU_HASH", adresse, kKopf, sizeof(Wort));
    const std::uint64_t faecher = wort<Wort>(abbild, adresse, 0), erstes = wort<Wort>(abbild, adresse, 1),
                        filter = wort<Wort>(abbild, adresse, 2),
                        verschiebung = wort<Wort>(abbild, adresse, 3);
    verlange(faecher > 0 && filter > 0 && (filter & (filter - 1)) == 0 &&
                 verschiebung < sizeof(ElfW(Addr)) * 8,
             "DT_GNU_HASH mit unsinnigem Kopf");
    const std::uint64_t filterlaenge = filter * sizeof(ElfW(Addr));
    abbild.verlangeTabelle("DT_GNU_HASH", adresse, kKopf + filterlaenge + faecher * sizeof(Wort),
                           sizeof(Wort));
    const std::uint64_t tabelle = adresse + kKopf + filterlaenge;
    const ElfTabelle<Wort> erste = abbild.tabelle<Wort>(tabelle, faecher);
    std::uint64_t letztes = 0;
    for (std::uint64_t i = 0; i < faecher; ++i) {
        const std::uint64_t symbol = erste[i];
        verlange(symbol == 0 || symbol >= erstes, "DT_GNU_HASH mit unsinnigem Fach");
        letztes = std::max(letztes, symbol);
    }
    if (letztes == 0)
        return 0;
    const std::uint64_t ketten = tabelle + faecher * sizeof(Wort);
    while (!(wort<Wort>(abbild, ketten, letztes - erstes) & 1))
        ++letztes;
    return letztes + 1;
}

/// A hash table in the general form: per slot its first symbol, per symbol the next one.
std::uint64_t pruefeHash(ElfAbbild& abbild, std::uint64_t adresse, bool wirdBenutzt) {
    abbild.verlangeTabelle("DT_HASH", adresse, 2 * sizeof(Hashwort), sizeof(Hashwort));
    const std::uint64_t faecher = wort<Hashwort>(abbild, adresse, 0),
                        symbole = wort<Hashwort>(abbild, adresse, 1);
    verlange(faecher <= 0xFFFFFFFF && symbole <= 0xFFFFFFFF, "DT_HASH mit unsinnigem Kopf");
    abbild.verlangeTabelle("DT_HASH", adresse, (2 + faecher + symbole) * sizeof(Hashwort), sizeof(Hashwort));
    if (!wirdBenutzt)
        return symbole;
    verlange(faecher > 0, "DT_HASH mit unsinnigem Kopf");
    const ElfTabelle<Hashwort> worte = abbild.tabelle<Hashwort>(adresse, 2 + faecher + symbole);
    std::uint64_t schritte = 0; // no symbol stands in two chains, so more of them mean a circle
    for (std::uint64_t i = 0; i < faecher; ++i) {
        for (std::uint64_t symbol = worte[2 + i]; symbol != 0; symbol = worte[2 + faecher + symbol])
            verlange(symbol < symbole && ++schritte < symbole, "DT_HASH mit unsinniger Kette");
    }
    return symbole;
}

void pruefeSymbol(const ElfDynamik& dynamik, const ElfW(Sym) & symbol) {
    const ElfAbbild& abbild = dynamik.abbild();
    dynamik.verlangeText(symbol.st_name);
    if (symbol.st_shndx == SHN_UNDEF || symbol.st_shndx == SHN_ABS)
        return;
    switch (symbol.st_info & 0xF) {
    case STT_TLS:
        verlange(abbild.tls() && symbol.st_value <= abbild.tls()->p_memsz, "Ein TLS-Symbol ohne TLS-Segment");
        break;
    case STT_GNU_IFUNC:
        abbild.verlangeFunktion("Ein aufzurufendes Symbol", symbol.st_value);
        break;
    default:
        break;
    }
}

/// Versions as far as the loader follows them: the highest number given.
class Versionen {
public:
    explicit Versionen(const ElfDynamik& dynamik) : dynamik_(dynamik), abbild_(dynamik.abbild()) {}

    unsigned hoechste() {
        if (const auto anfang = dynamik_.wert(DT_VERNEED))
            liesGebrauchte(*anfang);
        if (const auto anfang = dynamik_.wert(DT_VERDEF))
            liesEigene(*anfang);
        return hoechste_;
    }

private:
    void schritt() {
        constexpr unsigned kMaxSchritte = 0x10000;
        verlange(++schritte_ <= kMaxSchritte, "zu viele Versionen");
    }

    void liesGebrauchte(std::uint64_t adresse) {
        constexpr unsigned kMaxDateien = 1024;
        for (unsigned dateien = 0;; ++dateien) {
            verlange(dateien < kMaxDateien, "zu viele Versionen");
            const auto datei = abbild_.lies<ElfW(Verneed)>(adresse);
            verlange(istGebraucht(datei.vn_file),
                     "Versionen aus einer Bibliothek, die nicht angefordert wird");
            for (std::uint64_t ab = adresse + datei.vn_aux;;) {
                schritt();
                const auto version = abbild_.lies<ElfW(Vernaux)>(ab);
                dynamik_.verlangeText(version.vna_name);
                merke(version.vna_other);
                if (version.vna_next == 0)
                    break;
                ab += version.vna_next;
            }
            if (datei.vn_next == 0)
                break;
            adresse += datei.vn_next;
        }
    }

    void liesEigene(std::uint64_t adresse) {
        for (;;) {
            schritt();
            const auto version = abbild_.lies<ElfW(Verdef)>(adresse);
            const auto name = abbild_.lies<ElfW(Verdaux)>(adresse + version.vd_aux);
            dynamik_.verlangeText(name.vda_name);
            merke(version.vd_ndx);
            if (version.vd_next == 0)
                break;
            adresse += version.vd_next;
        }
    }

    /// The loader ends the process when it has not loaded the library that a version is to come from.
    bool istGebraucht(std::uint64_t name) const {
        for (std::uint64_t i = 0; i < dynamik_.anzahl(); ++i) {
            const ElfW(Dyn) e = dynamik_.eintrag(i);
            if (e.d_tag == DT_NEEDED && dynamik_.istGleicherText(e.d_un.d_val, name))
                return true;
        }
        return false;
    }

    void merke(unsigned nummer) { hoechste_ = std::max(hoechste_, nummer & kOhneVerborgen); }

    const ElfDynamik& dynamik_;
    ElfAbbild& abbild_;
    unsigned schritte_ = 0;
    unsigned hoechste_ = 1; // 0 and 1 mean local and without a version
};

} // namespace

std::uint64_t pruefeSymbole(const ElfDynamik& dynamik, std::uint64_t mindestens) {
    ElfAbbild& abbild = dynamik.abbild();
    const std::uint64_t tabelle = dynamik.verlangter(DT_SYMTAB, "DT_SYMTAB");
    verlange(dynamik.wert(DT_SYMENT).value_or(sizeof(ElfW(Sym))) == sizeof(ElfW(Sym)),
             "DT_SYMENT ist unbekannt");
    verlange(dynamik.hat(DT_GNU_HASH) || dynamik.hat(DT_HASH), "keine Hashtabelle");
    std::uint64_t anzahl = std::max<std::uint64_t>(mindestens, 1);
    if (const auto hash = dynamik.wert(DT_GNU_HASH))
        anzahl = std::max(anzahl, pruefeGnuHash(abbild, *hash));
    if (const auto hash = dynamik.wert(DT_HASH))
        anzahl = std::max(anzahl, pruefeHash(abbild, *hash, !dynamik.hat(DT_GNU_HASH)));
    abbild.verlangeTabelle("DT_SYMTAB", tabelle, anzahl * sizeof(ElfW(Sym)), alignof(ElfW(Sym)));
    const auto erstes = abbild.lies<ElfW(Sym)>(tabelle);
    verlange(erstes.st_name == 0 && erstes.st_value == 0 && erstes.st_info == 0 &&
                 erstes.st_shndx == SHN_UNDEF,
             "Die Symboltabelle beginnt mit einem Symbol");
    const ElfTabelle<ElfW(Sym)> symbole = abbild.tabelle<ElfW(Sym)>(tabelle, anzahl);
    for (std::uint64_t i = 1; i < anzahl; ++i)
        pruefeSymbol(dynamik, symbole[i]);
    return anzahl;
}

void pruefeVersionen(const ElfDynamik& dynamik, std::uint64_t symbole) {
    const unsigned hoechste = Versionen(dynamik).hoechste();
    const auto tabelle = dynamik.wert(DT_VERSYM);
    verlange(tabelle.has_value() == (dynamik.hat(DT_VERNEED) || dynamik.hat(DT_VERDEF)),
             "Symbole ohne die Versionen, die es gibt, oder mit solchen, die es nicht gibt");
    if (!tabelle)
        return;
    ElfAbbild& abbild = dynamik.abbild();
    abbild.verlangeTabelle("DT_VERSYM", *tabelle, symbole * sizeof(ElfW(Half)), sizeof(ElfW(Half)));
    const ElfTabelle<ElfW(Half)> versionen = abbild.tabelle<ElfW(Half)>(*tabelle, symbole);
    for (std::uint64_t i = 0; i < symbole; ++i)
        verlange((versionen[i] & kOhneVerborgen) <= hoechste,
                 "Ein Symbol mit einer Version, die es nicht gibt");
}

} // namespace orvo::orvoutil
