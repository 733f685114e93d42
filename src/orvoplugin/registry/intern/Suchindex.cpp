#include <orvoplugin/registry/intern/Suchindex.h>

#include <cstring>
#include <string_view>

namespace {

constexpr std::uint64_t kFaktor = 0x9E3779B97F4A7C15u; // odd, its bits without a pattern

/// Up to eight bytes as a number.
std::uint64_t lies(const char* text, std::size_t laenge) {
    std::uint64_t zahl = 0;
    std::memcpy(&zahl, text, laenge);
    return zahl;
}

/// A hash of a name that knows no case: with one bit set, a letter is the same in both. That other characters may meet
/// too does no harm. Eight bytes at a time; the last ones may overlap those before.
std::uint32_t streuwertOhneSchreibweise(std::string_view name) {
    constexpr std::uint64_t kKlein = 0x2020202020202020u;
    std::uint64_t wert = name.size();
    const auto nimm = [&wert](std::uint64_t zahl) {
        wert = (wert ^ (zahl | kKlein)) * kFaktor;
        wert ^= wert >> 32;
    };
    if (name.size() < 8) {
        nimm(lies(name.data(), name.size()));
        return static_cast<std::uint32_t>(wert);
    }
    for (std::size_t i = 0; i + 8 < name.size(); i += 8)
        nimm(lies(name.data() + i, 8));
    nimm(lies(name.data() + name.size() - 8, 8));
    return static_cast<std::uint32_t>(wert);
}

/// By name too for a negative number, because a name of the same text may be equal to it.
std::uint64_t streuwertVon(const Unterfallart& ua) {
    return ua.getNummer() >= 0 ? static_cast<std::uint32_t>(ua.getNummer())
                               : streuwertOhneSchreibweise(ua.getName());
}

} // namespace

Suchindex::Schluessel::Schluessel(tag_erweiterung_typ t, const Unterfallart& u, std::int32_t j) noexcept
    : ua(u.getNummer() >= 0 ? nullptr : &u),
      typ(t),
      jahr(j),
      streuwert(
          (streuwertVon(u) << 32 | (static_cast<std::uint32_t>(j) * 8 + static_cast<std::uint32_t>(t))) *
          kFaktor) {}

Suchindex::Schluessel::Schluessel(const ErweiterungsSchluessel& schluessel) noexcept
    : Schluessel(schluessel.getTyp(), schluessel.getUnterfallart(),
                 schluessel.getVeranlagungszeitraum().getJahr()) {}

bool Suchindex::Schluessel::operator==(const Schluessel& other) const noexcept {
    if (streuwert != other.streuwert || typ != other.typ || jahr != other.jahr)
        return false;
    if (!ua || !other.ua)
        return ua == other.ua;
    // A negative number and a name of the same text are equal, but hash apart in the map, which finds one by the other
    // only where the two hashes happen to meet.
    return *ua == *other.ua && (ua->getNummer() == other.ua->getNummer() ||
                                ErweiterungsSchluessel::streuwert(typ, ua->getNummer(), jahr) ==
                                    ErweiterungsSchluessel::streuwert(typ, other.ua->getNummer(), jahr));
}

const Registerfund* Suchindex::finde(tag_erweiterung_typ typ, const Unterfallart& ua,
                                     std::int32_t jahr) const noexcept {
    const auto gefunden = eintraege_.find(Schluessel(typ, ua, jahr));
    return gefunden == eintraege_.end() ? nullptr : &gefunden->second;
}

void Suchindex::trageEin(const ErweiterungsSchluessel& schluessel, OrvoErweiterung* erweiterung) {
    eintraege_.emplace(Schluessel(schluessel), Registerfund{&schluessel, erweiterung});
}

void Suchindex::streiche(const ErweiterungsSchluessel& schluessel) noexcept {
    eintraege_.erase(Schluessel(schluessel));
}
