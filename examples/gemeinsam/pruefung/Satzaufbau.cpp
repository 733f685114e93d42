#include <pruefung/Satzaufbau.h>

namespace pruefung {
namespace {

constexpr Feldregel kKopf[] = {
    {kSatzart, Feldart::TEXT, true}, {kIdNr, Feldart::IDNR, true},  {"Name", Feldart::TEXT, true},
    {kBeginn, Feldart::DATUM, true}, {kEnde, Feldart::DATUM, true}, {"Finanzamt", Feldart::FINANZAMT, false},
};

constexpr Feldregel kLohnsteuer[] = {
    {"Bruttoarbeitslohn", Feldart::BETRAG, true},
    {"Lohnsteuer", Feldart::BETRAG, true},
    {"Solidaritaetszuschlag", Feldart::BETRAG, false},
    {"Kirchensteuer", Feldart::BETRAG, false},
};

} // namespace

std::span<const Feldregel> kopffelder() { return kKopf; }

std::span<const Feldregel> lohnsteuerFelder() { return kLohnsteuer; }

} // namespace pruefung
