#include <orvoutil/ladepruefung/ElfTabellen.h>

#include <algorithm>

namespace orvo::orvoutil {

namespace {

#if defined(__mips__) || defined(__alpha__)
constexpr bool kUebliches = false; // entries have a form of their own
#else
constexpr bool kUebliches = true;
#endif

constexpr std::uint64_t kWort = sizeof(ElfW(Addr));

/// Functions to be called, as an array that the loader fills by relocations.
struct Funktionen {
    std::uint64_t anfang = 0, laenge = 0, gefuellt = 0;

    bool enthaelt(std::uint64_t adresse) const { return adresse - anfang < laenge; }
};

struct Relokation {
    std::uint64_t ziel, symbol, art, summand;
};

Relokation gelesen(const ElfW(Rela) & r) {
    constexpr unsigned kBitsDerArt = kWort == 8 ? 32 : 8;
    const std::uint64_t info = r.r_info;
    return {r.r_offset, info >> kBitsDerArt, info & ((std::uint64_t{1} << kBitsDerArt) - 1),
            static_cast<ElfW(Addr)>(r.r_addend)};
}

Relokation gelesen(const ElfW(Rel) & r) { return gelesen(ElfW(Rela){r.r_offset, r.r_info, 0}); }

class Pruefer {
public:
    explicit Pruefer(const ElfDynamik& dynamik)
        : dynamik_(dynamik),
          abbild_(dynamik.abbild()),
          noetigeRechte_(dynamik.hat(DT_TEXTREL) || dynamik.hatBit(DT_FLAGS, DF_TEXTREL) ? 0 : PF_W) {}

    std::uint64_t pruefe() {
        start_ = funktionen(DT_INIT_ARRAY, "DT_INIT_ARRAY", DT_INIT_ARRAYSZ, "DT_INIT_ARRAYSZ");
        ende_ = funktionen(DT_FINI_ARRAY, "DT_FINI_ARRAY", DT_FINI_ARRAYSZ, "DT_FINI_ARRAYSZ");
        verlange(!dynamik_.hat(DT_PREINIT_ARRAY), "DT_PREINIT_ARRAY steht nur Programmen zu");
        verlange(dynamik_.hat(DT_RELA) == dynamik_.hat(DT_RELASZ) &&
                     dynamik_.hat(DT_REL) == dynamik_.hat(DT_RELSZ) &&
                     dynamik_.hat(DT_JMPREL) == dynamik_.hat(DT_PLTRELSZ),
                 "Relokationen ohne Tabelle oder ohne Anzahl");
        if (dynamik_.hat(DT_RELA)) {
            verlangeEintragsgroesse(DT_RELAENT, "DT_RELAENT", sizeof(ElfW(Rela)));
            tabelle<ElfW(Rela)>("DT_RELA", *dynamik_.wert(DT_RELA),
                                dynamik_.verlangter(DT_RELASZ, "DT_RELASZ"),
                                dynamik_.wert(DT_RELACOUNT).value_or(0));
        }
        if (dynamik_.hat(DT_REL)) {
            verlangeEintragsgroesse(DT_RELENT, "DT_RELENT", sizeof(ElfW(Rel)));
            tabelle<ElfW(Rel)>("DT_REL", *dynamik_.wert(DT_REL), *dynamik_.wert(DT_RELSZ),
                               dynamik_.wert(DT_RELCOUNT).value_or(0));
        }
        pruefeSpruenge();
        pruefeGepackte();
        if (kUebliches && !gepackte_)
            verlange(start_.gefuellt >= start_.laenge / kWort && ende_.gefuellt >= ende_.laenge / kWort,
                     "Eine Start- oder Endefunktion hat keine Adresse");
        return symbole_;
    }

private:
    Funktionen funktionen(std::int64_t tag, const char* name, std::int64_t groesse,
                          const char* groessenname) {
        if (!dynamik_.hat(tag) && !dynamik_.hat(groesse))
            return {};
        const Funktionen f{dynamik_.verlangter(tag, name), dynamik_.verlangter(groesse, groessenname)};
        verlange(f.laenge % kWort == 0, "Start- oder Endefunktionen mit halben Adressen");
        abbild_.verlangeTabelle(name, f.anfang, f.laenge, kWort);
        return f;
    }

    void verlangeEintragsgroesse(std::int64_t tag, const char* name, std::uint64_t groesse) {
        if (dynamik_.verlangter(tag, name) != groesse)
            throw ElfMangel(std::string(name) + " ist unbekannt");
    }

    /// The first ones, so many as `relative`, are of the kind that needs no symbol.
    template <class Eintrag>
    void tabelle(const char* name, std::uint64_t anfang, std::uint64_t laenge, std::uint64_t relative) {
        const std::uint64_t anzahl = laenge / sizeof(Eintrag);
        verlange(laenge % sizeof(Eintrag) == 0 && relative <= anzahl, "Relokationen von falscher Anzahl");
        abbild_.verlangeTabelle(name, anfang, laenge, kWort);
        if constexpr (kUebliches) {
            const ElfTabelle<Eintrag> eintraege = abbild_.tabelle<Eintrag>(anfang, anzahl);
            std::uint64_t artDerRelativen = 0;
            for (std::uint64_t i = 0; i < anzahl; ++i) {
                const Relokation r = gelesen(eintraege[i]);
                if (i == 0)
                    artDerRelativen = r.art;
                verlange(i >= relative || (r.symbol == 0 && r.art == artDerRelativen),
                         "Relokationen in falscher Reihenfolge");
                pruefe(r, sizeof(Eintrag) == sizeof(ElfW(Rela)));
            }
        }
    }

    void pruefe(const Relokation& r, bool mitSummand) {
        if (r.art == 0)
            return;
        verlange(abbild_.istGeladen(r.ziel, 1, noetigeRechte_),
                 "Eine Relokation zielt aus den beschreibbaren Segmenten hinaus");
        symbole_ = std::max(symbole_, r.symbol + 1);
        if (start_.enthaelt(r.ziel))
            fuelle(start_, r, mitSummand);
        if (ende_.enthaelt(r.ziel))
            fuelle(ende_, r, mitSummand);
    }

    void fuelle(Funktionen& funktionen, const Relokation& r, bool mitSummand) {
        ++funktionen.gefuellt;
        if (mitSummand && r.symbol == 0)
            abbild_.verlangeFunktion("Eine Start- oder Endefunktion", r.summand);
    }

    void pruefeSpruenge() {
        const auto art = dynamik_.wert(DT_PLTREL);
        if (!art && !dynamik_.hat(DT_JMPREL))
            return;
        constexpr std::int64_t kArt = kWort == 8 ? DT_RELA : DT_REL;
        const std::uint64_t anfang = dynamik_.verlangter(DT_JMPREL, "DT_JMPREL");
        const std::uint64_t laenge = dynamik_.verlangter(DT_PLTRELSZ, "DT_PLTRELSZ");
        const std::uint64_t gegeben = dynamik_.verlangter(DT_PLTREL, "DT_PLTREL");
        // Each processor has one kind only: that of the other table, if there is one.
        const bool mitSummand = dynamik_.hat(DT_RELA) || (!dynamik_.hat(DT_REL) && kArt == DT_RELA);
        verlange(gegeben == (mitSummand ? DT_RELA : DT_REL), "DT_PLTREL ist unbekannt");
        verlangeGleicheTeilung(anfang, mitSummand ? DT_RELA : DT_REL, mitSummand ? DT_RELASZ : DT_RELSZ,
                               mitSummand ? sizeof(ElfW(Rela)) : sizeof(ElfW(Rel)));
        if (mitSummand)
            tabelle<ElfW(Rela)>("DT_JMPREL", anfang, laenge, 0);
        else
            tabelle<ElfW(Rel)>("DT_JMPREL", anfang, laenge, 0);
    }

    /// The table may be the end of the other one, but then entry by entry.
    void verlangeGleicheTeilung(std::uint64_t anfang, std::int64_t andere, std::int64_t laenge,
                                std::uint64_t eintrag) {
        const std::uint64_t ab = dynamik_.wert(andere).value_or(anfang);
        verlange(anfang < ab || anfang - ab >= dynamik_.wert(laenge).value_or(0) ||
                     (anfang - ab) % eintrag == 0,
                 "Relokationen in zwei Tabellen, die sich widersprechen");
    }

    /// Relocations in packed form: addresses, each followed by bit masks of the words behind it.
    void pruefeGepackte() {
        constexpr std::int64_t kTabelle = 36, kLaenge = 35, kEintrag = 37; // DT_RELR and its companions
        if (!dynamik_.hat(kTabelle))
            return;
        gepackte_ = true;
        verlangeEintragsgroesse(kEintrag, "DT_RELRENT", kWort);
        const std::uint64_t anfang = *dynamik_.wert(kTabelle);
        const std::uint64_t laenge = dynamik_.verlangter(kLaenge, "DT_RELRSZ");
        abbild_.verlangeTabelle("DT_RELR", anfang, laenge, kWort);
        const ElfTabelle<ElfW(Addr)> eintraege = abbild_.tabelle<ElfW(Addr)>(anfang, laenge / kWort);
        std::uint64_t naechste = 0;
        for (std::uint64_t i = 0; i < laenge / kWort; ++i) {
            const std::uint64_t eintrag = eintraege[i];
            const bool istMaske = eintrag & 1;
            if (!istMaske) {
                verlangeGepacktes(eintrag);
                naechste = eintrag + kWort;
                continue;
            }
            verlange(i > 0, "Gepackte Relokationen ohne Anfang");
            std::uint64_t adresse = naechste;
            for (std::uint64_t maske = eintrag >> 1; maske != 0; maske >>= 1, adresse += kWort)
                if (maske & 1)
                    verlangeGepacktes(adresse);
            naechste += (kWort * 8 - 1) * kWort;
        }
    }

    void verlangeGepacktes(std::uint64_t adresse) {
        verlange(abbild_.istGeladen(adresse, kWort, noetigeRechte_),
                 "Eine Relokation zielt aus den beschreibbaren Segmenten hinaus");
    }

    const ElfDynamik& dynamik_;
    ElfAbbild& abbild_;
    const std::uint32_t noetigeRechte_;
    bool gepackte_ = false;
    Funktionen start_, ende_;
    std::uint64_t symbole_ = 0;
};

} // namespace

std::uint64_t pruefeRelokationen(const ElfDynamik& dynamik) { return Pruefer(dynamik).pruefe(); }

} // namespace orvo::orvoutil
