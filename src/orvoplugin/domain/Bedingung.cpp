#include <orvoplugin/domain/Bedingung.h>

namespace {

std::unique_ptr<Veranlagungszeitraum> kopie(const Veranlagungszeitraum* vz) {
    return vz ? std::make_unique<Veranlagungszeitraum>(*vz) : nullptr;
}

} // namespace

Bedingung::~Bedingung() = default;

UfaPruefungBedingung::UfaPruefungBedingung(const Unterfallart& ua)
    : Bedingung(UFA_PRUEFUNG), unterfallart_(ua), hatVeranlagungszeitraum_(false) {}

UfaPruefungBedingung::UfaPruefungBedingung(const Unterfallart& ua, const Veranlagungszeitraum& vz)
    : Bedingung(UFA_PRUEFUNG),
      unterfallart_(ua),
      veranlagungszeitraum_(kopie(&vz)),
      hatVeranlagungszeitraum_(true) {}

UfaPruefungBedingung::UfaPruefungBedingung(const UfaPruefungBedingung& other)
    : Bedingung(other),
      unterfallart_(other.unterfallart_),
      veranlagungszeitraum_(kopie(other.veranlagungszeitraum_.get())),
      hatVeranlagungszeitraum_(other.hatVeranlagungszeitraum_) {}

UfaPruefungBedingung& UfaPruefungBedingung::operator=(const UfaPruefungBedingung& other) {
    auto vz = kopie(other.veranlagungszeitraum_.get());
    Bedingung::operator=(other);
    unterfallart_ = other.unterfallart_;
    veranlagungszeitraum_ = std::move(vz);
    hatVeranlagungszeitraum_ = other.hatVeranlagungszeitraum_;
    return *this;
}

UfaPruefungBedingung::~UfaPruefungBedingung() = default;

FormalePruefungBedingung::FormalePruefungBedingung() : Bedingung(FORMALE_PRUEFUNG) {}
FormalePruefungBedingung::~FormalePruefungBedingung() = default;

SummenBerechnungsBedingung::SummenBerechnungsBedingung() : Bedingung(SUMMEN_BERECHNUNG) {}
SummenBerechnungsBedingung::~SummenBerechnungsBedingung() = default;

VorsatzPruefungBedingung::VorsatzPruefungBedingung() : Bedingung(VORSATZ_PRUEFUNG) {}
VorsatzPruefungBedingung::~VorsatzPruefungBedingung() = default;
