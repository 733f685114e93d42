#include <pruefung/Zeitraum.h>

#include <chrono>

using namespace std::chrono;
using steuer::Zeitspanne;

namespace pruefung {
namespace {

constexpr int kErstesQuartal = 41;

constexpr Zeitspanne kKeinTag{sys_days(days(1)), sys_days(days(0))};

Zeitspanne monateVon(year jahr, int ersterMonat, int letzterMonat) {
    if (ersterMonat < 1 || letzterMonat > 12)
        return kKeinTag;
    return {sys_days(jahr / month(static_cast<unsigned>(ersterMonat)) / 1),
            sys_days(jahr / month(static_cast<unsigned>(letzterMonat)) / last)};
}

Zeitspanne tagVon(year jahr, int monat, int tag) {
    const year_month_day datum = jahr / monat / tag;
    if (monat < 1 || monat > 12 || tag < 1 || tag > 31 || !datum.ok())
        return kKeinTag;
    return {sys_days(datum), sys_days(datum)};
}

} // namespace

std::optional<Zeitspanne> zeitspanneVon(const Veranlagungszeitraum& vz) {
    if (vz.getJahr() < 1 || vz.getJahr() > 9999)
        return vz.getTyp() == Veranlagungszeitraum::UNABHAENGIG ? std::nullopt : std::optional(kKeinTag);
    const year jahr(vz.getJahr());
    const int quartal = vz.getQuartal() - kErstesQuartal;
    switch (vz.getTyp()) {
    case Veranlagungszeitraum::JAHR:
        return monateVon(jahr, 1, 12);
    case Veranlagungszeitraum::QUARTAL:
    case Veranlagungszeitraum::QUARTAL_ALTERNATIV:
        return monateVon(jahr, quartal * 3 + 1, quartal * 3 + 3);
    case Veranlagungszeitraum::MONAT:
        return monateVon(jahr, vz.getZeitraum(), vz.getZeitraum());
    case Veranlagungszeitraum::TAG:
        return tagVon(jahr, vz.getZeitraum(), vz.getTag());
    default:
        return std::nullopt;
    }
}

std::list<Veranlagungszeitraum> jahre(int von, int bis) {
    std::list<Veranlagungszeitraum> liste;
    for (int jahr = von; jahr <= bis; ++jahr)
        liste.emplace_back(jahr, "YYYY");
    return liste;
}

} // namespace pruefung
