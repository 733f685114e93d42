#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>

#include <cstdint>
#include <memory>

/// Condition ("Bedingung") of a check or record-reader extension: a kind of processing that happens before or after its
/// service runs. The services give it a meaning.
///
/// By contract, extensions keep conditions by value as this base: only the kind can be read from their lists.
class ORVOPLUGIN_API Bedingung {
public:
    /// The kinds, values of `getTyp`.
    enum Typ : std::int32_t {
        UFA_PRUEFUNG = 0,
        FORMALE_PRUEFUNG = 1,
        SUMMEN_BERECHNUNG = 2,
        VORSATZ_PRUEFUNG = 3
    };

    virtual ~Bedingung();

    /// Kind of condition, one of `Typ`.
    std::int32_t getTyp() const { return typ_; }

protected:
    explicit Bedingung(std::int32_t typ) : typ_(typ) {}

private:
    template <bool>
    friend class Beschreibungsstrom;

    std::int32_t typ_;
};

/// A check of a certain sub-case type, for one period or for any. Owns a copy of its period.
class ORVOPLUGIN_API UfaPruefungBedingung : public Bedingung {
public:
    explicit UfaPruefungBedingung(const Unterfallart& ua);
    UfaPruefungBedingung(const Unterfallart& ua, const Veranlagungszeitraum& vz);
    UfaPruefungBedingung(const UfaPruefungBedingung& other);
    UfaPruefungBedingung& operator=(const UfaPruefungBedingung& other);
    ~UfaPruefungBedingung() override;

    const Unterfallart& getUnterfallart() const { return unterfallart_; }
    /// The period, owned by the condition; null when the condition holds for any.
    const Veranlagungszeitraum* getVeranlagungszeitraum() const { return veranlagungszeitraum_.get(); }
    bool hatVeranlagungszeitraum() const { return hatVeranlagungszeitraum_; }

private:
    Unterfallart unterfallart_;
    std::unique_ptr<Veranlagungszeitraum> veranlagungszeitraum_;
    bool hatVeranlagungszeitraum_;
};

/// The formal check of a record.
class ORVOPLUGIN_API FormalePruefungBedingung : public Bedingung {
public:
    FormalePruefungBedingung();
    ~FormalePruefungBedingung() override;
};

/// The calculation of sums.
class ORVOPLUGIN_API SummenBerechnungsBedingung : public Bedingung {
public:
    SummenBerechnungsBedingung();
    ~SummenBerechnungsBedingung() override;
};

/// The check of the leading record ("Vorsatz").
class ORVOPLUGIN_API VorsatzPruefungBedingung : public Bedingung {
public:
    VorsatzPruefungBedingung();
    ~VorsatzPruefungBedingung() override;
};
