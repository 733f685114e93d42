#include <orvoplugin/registry/ErweiterungsSchluessel.h>

#include <orvoplugin/plugin/erweiterung/ErweiterungTypName.h>
#include <orvoutil/StringUtil.h>

#include <array>
#include <iterator>
#include <string_view>

namespace {

using orvo::orvoutil::Ziffernfolge;

/// Continues a hash over a text, byte by byte; the bytes count as signed.
constexpr std::uint32_t weiter(std::uint32_t streuwert, std::string_view text) {
    for (const char c : text) {
        const auto erweitert = static_cast<std::uint32_t>(static_cast<signed char>(c));
        streuwert ^= erweitert + 0x9E3779B9u + (streuwert << 6) + (streuwert >> 2);
    }
    return streuwert;
}

/// The hashes of "kind#", by kind.
constexpr auto kAnfaenge = [] {
    std::array<std::uint32_t, std::size(kErweiterungTypNamen)> anfaenge{};
    for (std::size_t i = 0; i < anfaenge.size(); ++i)
        anfaenge[i] = weiter(weiter(0, kErweiterungTypNamen[i]), "#");
    return anfaenge;
}();

} // namespace

ErweiterungsSchluessel::ErweiterungsSchluessel() : typ_(NONE), unterfallart_(Unterfallart::beliebig()) {}

ErweiterungsSchluessel::ErweiterungsSchluessel(const tag_erweiterung_typ& typ, const Unterfallart& ua,
                                               const Veranlagungszeitraum& vz)
    : typ_(typ), unterfallart_(ua), veranlagungszeitraum_(vz) {}

ErweiterungsSchluessel::ErweiterungsSchluessel(const ErweiterungsSchluessel&) = default;
ErweiterungsSchluessel& ErweiterungsSchluessel::operator=(const ErweiterungsSchluessel&) = default;
ErweiterungsSchluessel::~ErweiterungsSchluessel() = default;

std::uint32_t ErweiterungsSchluessel::streuwert(tag_erweiterung_typ typ, std::int32_t nummer,
                                                std::int32_t jahr) noexcept {
    const std::uint32_t anfang = kAnfaenge[erweiterungTypPlatz(typ)];
    return weiter(weiter(weiter(anfang, Ziffernfolge(nummer).text()), "#"), Ziffernfolge(jahr).text());
}

std::size_t ErweiterungsSchluessel::operator()(const ErweiterungsSchluessel& schluessel) const {
    return streuwert(schluessel.typ_, schluessel.unterfallart_.getNummer(),
                     schluessel.veranlagungszeitraum_.getJahr());
}
