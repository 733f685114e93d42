// Sub-case types: two texts, one per line. A text of '#' and a number means the number.

#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/registry/ErweiterungsSchluessel.h>
#include <orvoutil/StringUtil.h>

#include "Eingabe.h"

namespace {

Unterfallart gelesen(const std::string& text) {
    if (text.starts_with('#'))
        return Unterfallart(orvo::orvoutil::string2Int(text.substr(1)));
    return Unterfallart(text.c_str());
}

bool hatNegativeNummer(const Unterfallart& ua) {
    return ua.getNummer() < 0 && ua.getNummer() != Unterfallart::OHNE_NUMMER;
}

std::size_t streuwert(const Unterfallart& ua) {
    const ErweiterungsSchluessel schluessel(ORVO_CHECK_SERVICE_ERWEITERUNG, ua, Veranlagungszeitraum());
    return schluessel(schluessel);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t laenge) {
    Zeilen zeilen(daten, laenge);
    const Unterfallart a = gelesen(zeilen.naechste()), b = gelesen(zeilen.naechste());
    verlange(a.compare(a) == 0 && b.compare(b) == 0, "a sub-case type equals itself");
    verlange(a.compare(b) == -b.compare(a), "both sides agree on their order");
    verlange(a.compare(b) >= -1 && a.compare(b) <= 1, "an order is -1, 0 or 1");
    verlange((a == b) == (a.compare(b) == 0) && (a < b) == (a.compare(b) < 0), "operators go by the order");
    verlange(Unterfallart(a.getNummer()).getNummer() == a.getNummer(), "a number is kept");
    // A negative number is hashed as a number, and a name with the same text as a name.
    const bool istAusnahme = hatNegativeNummer(a) != hatNegativeNummer(b);
    if (a == b && !istAusnahme)
        verlange(streuwert(a) == streuwert(b), "what is equal has the same hash");
    return 0;
}
