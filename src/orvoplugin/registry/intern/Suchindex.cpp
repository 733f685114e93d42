#include <orvoplugin/registry/intern/Suchindex.h>

#include <string_view>

namespace {

constexpr std::uint64_t kFaktor = 0x9E3779B97F4A7C15u; // odd, its bits without a pattern

/// A hash of a name, whatever its letter case: the bit that tells the cases apart is set in every byte.
std::uint32_t streuwertOhneSchreibweise(std::string_view name) {
    std::uint64_t wert = name.size();
    for (const char c : name)
        wert = (wert ^ (static_cast<unsigned char>(c) | 0x20u)) * kFaktor;
    return static_cast<std::uint32_t>(wert >> 32);
}

/// A negative number is hashed by its name, because a name of the same text may be equal to it.
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
    if (streuwert != other.streuwert || jahr != other.jahr)
        return false;
    if (!ua || !other.ua)
        return ua == other.ua;
    // A negative number and a name of the same text are equal, but the map finds one by the other only where their hashes
    // happen to be equal.
    return *ua == *other.ua && (ua->getNummer() == other.ua->getNummer() ||
                                ErweiterungsSchluessel::streuwert(typ, ua->getNummer(), jahr) ==
                                    ErweiterungsSchluessel::streuwert(typ, other.ua->getNummer(), jahr));
}

const Registerfund* Suchindex::finde(const Schluessel& schluessel) const noexcept {
    const auto gefunden = eintraege_.find(schluessel);
    return gefunden == eintraege_.end() ? nullptr : &gefunden->second;
}

void Suchindex::trageEin(const ErweiterungsSchluessel& schluessel, OrvoErweiterung* erweiterung) {
    eintraege_.emplace(Schluessel(schluessel), Registerfund{&schluessel, erweiterung});
}

void Suchindex::streiche(const ErweiterungsSchluessel& schluessel) noexcept {
    eintraege_.erase(Schluessel(schluessel));
}
