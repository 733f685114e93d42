#include <orvoplugin/registry/Suchtafel.h>

#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>
#include <orvoutil/StringUtil.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <string_view>

namespace {

constexpr unsigned kAnfangsbits = 3;
constexpr std::size_t kGruppe = 8;                         // places in a group
constexpr std::uint64_t kBelegt = 0x80;                    // in the mark of a place that is taken
constexpr std::uint64_t kJedeStelle = 0x0101010101010101u; // a bit in each byte
constexpr std::uint64_t kFaktor = 0x9E3779B97F4A7C15u;     // odd, its bits without a pattern

std::uint64_t mische(std::uint64_t wert) {
    wert *= kFaktor;
    return wert ^ wert >> 32;
}

/// The top bit of each byte that is zero; perhaps of one above such a byte too.
std::uint64_t nullstellen(std::uint64_t wort) { return (wort - kJedeStelle) & ~wort & kJedeStelle * kBelegt; }

/// The top bits of the places with that mark, perhaps of others too.
std::uint64_t gleiche(std::uint64_t marken, std::uint64_t marke) {
    return nullstellen(marken ^ kJedeStelle * marke);
}

/// The top bits of the free places.
std::uint64_t freie(std::uint64_t marken) { return ~marken & kJedeStelle * kBelegt; }

unsigned ersteStelle(std::uint64_t oberste) { return static_cast<unsigned>(std::countr_zero(oberste)) / 8; }

/// Up to eight bytes as a number.
std::uint64_t lies(const char* text, std::size_t laenge) {
    std::uint64_t zahl = 0;
    std::memcpy(&zahl, text, laenge);
    return zahl;
}

/// A hash of a name that knows no case: with this bit set, a letter is the same in both, and that other characters
/// too may meet does no harm. Eight bytes at a time; the last ones may overlap those before.
std::uint32_t streuwertOhneSchreibweise(std::string_view name) {
    constexpr std::uint64_t kKlein = 0x2020202020202020u;
    std::uint64_t wert = name.size();
    const auto nimm = [&wert](std::uint64_t zahl) { wert = mische(wert ^ (zahl | kKlein)); };
    if (name.size() < 8) {
        nimm(lies(name.data(), name.size()));
    } else {
        for (std::size_t i = 0; i + 8 < name.size(); i += 8)
            nimm(lies(name.data() + i, 8));
        nimm(lies(name.data() + name.size() - 8, 8));
    }
    return static_cast<std::uint32_t>(wert);
}

bool sindGleich(const std::string& a, const std::string& b) {
    return a.size() == b.size() && (a == b || orvo::orvoutil::compareIgnoreCase(a, b) == 0);
}

/// Whether the extension is the very part that an object of the class has: not so if the object is of several
/// classes, and the extension another one's part.
template <class Klasse>
bool istEin(OrvoErweiterung* erweiterung) {
    auto* const objekt = dynamic_cast<Klasse*>(erweiterung);
    return objekt && static_cast<OrvoErweiterung*>(objekt) == erweiterung;
}

/// The same for the class that a look-up of the extension's kind gives.
bool istVonIhrerKlasse(OrvoErweiterung* erweiterung) {
    switch (erweiterung->getTyp()) {
    case ORVO_CHECK_SERVICE_ERWEITERUNG:
        return istEin<OrvoValidierungsServiceErweiterung>(erweiterung);
    case ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG:
        return istEin<OrvoFeldInfoDatenServiceErweiterung>(erweiterung);
    case ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG:
        return istEin<OrvoFTDatenServiceErweiterung>(erweiterung);
    case ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG:
        return istEin<OrvoFADatenServiceErweiterung>(erweiterung);
    case ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG:
        return istEin<OrvoXPathMappingServiceErweiterung>(erweiterung);
    case ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG:
        return istEin<OrvoDatensatzReaderErweiterung>(erweiterung);
    case NONE:
        break;
    }
    return false;
}

} // namespace

Suchtafel::Suchwort::Suchwort(const Unterfallart& ua)
    : kennzahl(static_cast<std::uint32_t>(ua.getNummer())), name(nullptr) {
    if (ua.getNummer() == Unterfallart::OHNE_NUMMER) {
        kennzahl = streuwertOhneSchreibweise(ua.getName());
        name = &ua.getName();
    }
}

Suchtafel::Suchtafel()
    : marken_(std::size_t{1} << kAnfangsbits),
      plaetze_(marken_.size() * kGruppe),
      schiebung_(64 - kAnfangsbits) {}

/// The group comes from the upper bits of the hash, the mark from the lower ones.
Suchtafel::Spur Suchtafel::spur(tag_erweiterung_typ typ, std::uint32_t kennzahl, std::int32_t jahr) const {
    const std::uint64_t oben = static_cast<std::uint64_t>(kennzahl) << 32;
    const std::uint32_t unten = static_cast<std::uint32_t>(jahr) * 8 + static_cast<std::uint32_t>(typ);
    const std::uint64_t streuwert = mische(oben | unten) * kFaktor;
    return {streuwert >> schiebung_, (streuwert >> 24 & 0x7F) | kBelegt};
}

const Suchtafel::Platz* Suchtafel::finde(tag_erweiterung_typ typ, const Unterfallart& ua, std::int32_t jahr,
                                         std::int32_t sonst) const {
    const Suchwort wort(ua);
    const Platz* const platz = finde(typ, wort, jahr);
    return platz ? platz : finde(typ, wort, sonst);
}

const Suchtafel::Platz* Suchtafel::finde(tag_erweiterung_typ typ, const Suchwort& wort,
                                         std::int32_t jahr) const {
    const auto [heimat, marke] = spur(typ, wort.kennzahl, jahr);
    for (std::size_t gruppe = heimat;; gruppe = naechste(gruppe)) {
        const std::uint64_t marken = marken_[gruppe];
        for (std::uint64_t rest = gleiche(marken, marke); rest; rest &= rest - 1) {
            const Platz& platz = plaetze_[gruppe * kGruppe + ersteStelle(rest)];
            if (platz.kennzahl == wort.kennzahl && platz.jahr == jahr && platz.typ == typ &&
                (platz.name && wort.name ? sindGleich(*platz.name, *wort.name) : platz.name == wort.name))
                return &platz;
        }
        if (freie(marken))
            return nullptr;
    }
}

void Suchtafel::schaffePlatz() {
    if ((belegt_ + 1) * 2 > plaetze_.size())
        wachse();
}

void Suchtafel::trageEin(const ErweiterungsSchluessel& schluessel, OrvoErweiterung* erweiterung) noexcept {
    if (!traegt(schluessel.getUnterfallart()))
        return;
    const Suchwort wort(schluessel.getUnterfallart());
    Platz platz;
    platz.erweiterung = erweiterung;
    platz.vonIhrerKlasse = istVonIhrerKlasse(erweiterung);
    platz.typ = schluessel.getTyp();
    platz.jahr = schluessel.getVeranlagungszeitraum().getJahr();
    platz.kennzahl = wort.kennzahl;
    platz.name = wort.name;
    stelleHin(platz);
}

/// Takes the first free place of the group where a search begins, or of the next group that has one.
void Suchtafel::stelleHin(const Platz& platz) {
    auto [gruppe, marke] = spur(platz.typ, platz.kennzahl, platz.jahr);
    while (!freie(marken_[gruppe]))
        gruppe = naechste(gruppe);
    const unsigned stelle = ersteStelle(freie(marken_[gruppe]));
    marken_[gruppe] |= marke << stelle * 8;
    plaetze_[gruppe * kGruppe + stelle] = platz;
    ++belegt_;
}

void Suchtafel::raeume(std::size_t gruppe, std::size_t stelle) {
    marken_[gruppe] &= ~(std::uint64_t{0xFF} << stelle * 8);
    plaetze_[gruppe * kGruppe + stelle] = Platz();
    --belegt_;
}

void Suchtafel::wachse() {
    std::vector<std::uint64_t> marken(marken_.size() * 2);
    std::vector<Platz> plaetze(plaetze_.size() * 2);
    marken_.swap(marken);
    plaetze_.swap(plaetze);
    --schiebung_;
    belegt_ = 0;
    for (const Platz& platz : plaetze)
        if (platz.erweiterung)
            stelleHin(platz);
}

/// A search goes on behind a full group only. So when a group was full, those behind it that may have come past it are
/// placed anew.
void Suchtafel::streiche(const ErweiterungsSchluessel& schluessel) {
    if (!traegt(schluessel.getUnterfallart()))
        return;
    const Platz* const gefunden = finde(schluessel.getTyp(), Suchwort(schluessel.getUnterfallart()),
                                        schluessel.getVeranlagungszeitraum().getJahr());
    if (!gefunden)
        return;
    const auto platz = static_cast<std::size_t>(gefunden - plaetze_.data());
    std::size_t gruppe = platz / kGruppe;
    bool warVoll = !freie(marken_[gruppe]);
    raeume(gruppe, platz % kGruppe);
    while (warVoll) {
        gruppe = naechste(gruppe);
        warVoll = !freie(marken_[gruppe]);
        for (std::size_t stelle = 0; stelle < kGruppe; ++stelle) {
            const Platz umzug = plaetze_[gruppe * kGruppe + stelle];
            if (!umzug.erweiterung)
                continue;
            raeume(gruppe, stelle);
            stelleHin(umzug);
        }
    }
}

void Suchtafel::leere() {
    std::fill(marken_.begin(), marken_.end(), 0);
    std::fill(plaetze_.begin(), plaetze_.end(), Platz());
    belegt_ = 0;
}
