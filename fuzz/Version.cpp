// Versions: three texts, one per line. Their order is total.

#include <orvoutil/OrvoVersion.h>

#include "Eingabe.h"

using orvo::orvoutil::OrvoVersion;

namespace {

int ordnung(const OrvoVersion& a, const OrvoVersion& b) {
    const auto vergleich = a <=> b;
    verlange((a == b) == (vergleich == 0), "equality goes by the order");
    return vergleich < 0 ? -1 : vergleich > 0 ? 1 : 0;
}

void pruefe(const OrvoVersion& a, const OrvoVersion& b, const OrvoVersion& c) {
    verlange(ordnung(a, a) == 0, "a version equals itself");
    verlange(ordnung(a, b) == -ordnung(b, a), "both sides agree on their order");
    if (ordnung(a, b) <= 0 && ordnung(b, c) <= 0)
        verlange(ordnung(a, c) <= 0, "the order goes on over three");
    if (ordnung(a, b) == 0)
        verlange(ordnung(a, c) == ordnung(b, c), "equal versions have the same place");
}

/// A number derived from a text, some small, some of ten digits.
std::uint64_t zahl(const std::string& text) {
    std::uint64_t z = 0;
    for (const char c : text)
        z = z * 31 + static_cast<unsigned char>(c);
    return z % 9999999999;
}

void pruefeZahlen(std::uint64_t x, std::uint64_t y) {
    verlange(ordnung(OrvoVersion("1." + std::to_string(x)), OrvoVersion("1," + std::to_string(y))) ==
                 (x > y) - (x < y),
             "numbers are compared as such");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t laenge) {
    Zeilen zeilen(daten, laenge);
    const std::string text = zeilen.naechste();
    const std::string zweiter = zeilen.naechste();
    const OrvoVersion a(text), b(zweiter), c(zeilen.naechste());
    pruefeZahlen(zahl(text), zahl(zweiter));
    pruefe(a, b, c);
    pruefe(b, c, a);
    pruefe(c, a, b);
    pruefe(c, b, a);
    verlange(a == OrvoVersion(text + ".0"), "a missing number counts 0");
    return 0;
}
