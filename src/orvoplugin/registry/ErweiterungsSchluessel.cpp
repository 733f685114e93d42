#include <orvoplugin/registry/ErweiterungsSchluessel.h>

#include <charconv>
#include <cstdint>
#include <string_view>

namespace {

/// Folds text into a hash, byte by byte; the bytes count as signed.
class Streuwert {
public:
    void nimm(std::string_view text) {
        for (const char c : text) {
            const auto erweitert =
                static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(c)));
            wert_ ^= erweitert + 0x9E3779B9u + (wert_ << 6) + (wert_ >> 2);
        }
    }

    void nimm(std::int32_t zahl) {
        char ziffern[11]; // sign and ten digits
        const auto ende = std::to_chars(std::begin(ziffern), std::end(ziffern), zahl).ptr;
        nimm(std::string_view(ziffern, static_cast<std::size_t>(ende - ziffern)));
    }

    std::uint32_t wert() const { return wert_; }

private:
    std::uint32_t wert_ = 0;
};

} // namespace

ErweiterungsSchluessel::ErweiterungsSchluessel() : typ_(NONE), unterfallart_("notset") {}

ErweiterungsSchluessel::ErweiterungsSchluessel(const tag_erweiterung_typ& typ, const Unterfallart& ua,
                                               const Veranlagungszeitraum& vz)
    : typ_(typ), unterfallart_(ua), veranlagungszeitraum_(vz) {}

ErweiterungsSchluessel::ErweiterungsSchluessel(const ErweiterungsSchluessel&) = default;
ErweiterungsSchluessel& ErweiterungsSchluessel::operator=(const ErweiterungsSchluessel&) = default;
ErweiterungsSchluessel::~ErweiterungsSchluessel() = default;

void ErweiterungsSchluessel::setze(tag_erweiterung_typ typ, const Unterfallart& ua,
                                   const Veranlagungszeitraum& vz) {
    typ_ = typ;
    unterfallart_ = ua;
    veranlagungszeitraum_ = vz;
}

void ErweiterungsSchluessel::setzeVeranlagungszeitraum(const Veranlagungszeitraum& vz) {
    veranlagungszeitraum_ = vz;
}

std::size_t ErweiterungsSchluessel::operator()(const ErweiterungsSchluessel& schluessel) const {
    Streuwert streuwert;
    streuwert.nimm(erweiterungTypName(schluessel.typ_));
    streuwert.nimm("#");
    streuwert.nimm(schluessel.unterfallart_.getNummer());
    streuwert.nimm("#");
    streuwert.nimm(schluessel.veranlagungszeitraum_.getJahr());
    return streuwert.wert();
}
