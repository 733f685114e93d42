#include <orvoplugin/registry/ErweiterungsSchluessel.h>

#include <orvoplugin/plugin/erweiterung/ErweiterungTypName.h>
#include <orvoutil/StringUtil.h>

#include <array>
#include <iterator>
#include <string_view>

namespace {

/// Folds text into a hash, byte by byte; the bytes count as signed.
class Streuwert {
public:
    constexpr Streuwert& nimm(std::string_view text) {
        for (const char c : text) {
            const auto erweitert = static_cast<std::uint32_t>(static_cast<signed char>(c));
            wert_ ^= erweitert + 0x9E3779B9u + (wert_ << 6) + (wert_ >> 2);
        }
        return *this;
    }

    Streuwert& nimm(std::int32_t zahl) { return nimm(orvo::orvoutil::Ziffernfolge(zahl).text()); }

    constexpr std::uint32_t wert() const { return wert_; }

private:
    std::uint32_t wert_ = 0;
};

/// The hashes of "kind#", on which those of the keys go on.
constexpr auto kAnfaenge = [] {
    std::array<Streuwert, std::size(kErweiterungTypNamen)> anfaenge;
    for (std::size_t i = 0; i < anfaenge.size(); ++i)
        anfaenge[i].nimm(kErweiterungTypNamen[i]).nimm("#");
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
    Streuwert streuwert = kAnfaenge[erweiterungTypPlatz(typ)];
    streuwert.nimm(nummer);
    streuwert.nimm("#");
    streuwert.nimm(jahr);
    return streuwert.wert();
}

std::size_t ErweiterungsSchluessel::operator()(const ErweiterungsSchluessel& schluessel) const {
    return streuwert(schluessel.typ_, schluessel.unterfallart_.getNummer(),
                     schluessel.veranlagungszeitraum_.getJahr());
}
