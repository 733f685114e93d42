#include <pruefpaket/Regelwerk.h>

#include <orvoplugin/domain/Konstanten.h>

using namespace pruefung;

namespace pruefpaket {
namespace {

/// Stricter than before: the surcharge is 5.5 per cent of the wage tax at most, the church tax 9 per cent.
constexpr Anteilsregel kLohnsteuerAnteile[] = {
    {"Lohnsteuer", "Bruttoarbeitslohn", 1000},
    {"Solidaritaetszuschlag", "Lohnsteuer", 55},
    {"Kirchensteuer", "Lohnsteuer", 90},
};

constexpr Feldregel kAnmeldungFelder[] = {
    {"Umsatz", Feldart::BETRAG, true},
    {"Steuer", Feldart::BETRAG, true},
};

constexpr Feldregel kErklaerungFelder[] = {
    {"Umsatz", Feldart::BETRAG, true},
    {"Steuer", Feldart::BETRAG, true},
    {"Vorauszahlungen", Feldart::BETRAG, false},
};

constexpr Anteilsregel kUmsatzAnteile[] = {
    {"Steuer", "Umsatz", 190},
};

} // namespace

const Satzaufbau* aufbauFuer(const Unterfallart& ua) {
    static const Satzaufbau bescheinigung{"LSTB", lohnsteuerFelder(), kLohnsteuerAnteile};
    static const Satzaufbau anmeldung{"10", kAnmeldungFelder, kUmsatzAnteile};
    static const Satzaufbau erklaerung{"50", kErklaerungFelder, kUmsatzAnteile};

    if (ua == UFA_LSTB)
        return &bescheinigung;
    if (ua == UFA_10)
        return &anmeldung;
    return ua == UFA_50 ? &erklaerung : nullptr;
}

} // namespace pruefpaket
