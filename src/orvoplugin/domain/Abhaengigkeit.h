#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>

#include <cstdint>
#include <list>
#include <vector>

/// Dependency ("Abhaengigkeit") of an extension: names something that the extension depends on.
///
/// By contract, extensions keep dependencies by value as this base: only the kind can be read from their lists.
class ORVOPLUGIN_API Abhaengigkeit {
public:
    /// The kinds, values of `getTyp`.
    enum Typ : std::int32_t { UFA_VZ = 0 };

    virtual ~Abhaengigkeit();

    /// Kind of dependency, one of `Typ`.
    std::int32_t getTyp() const { return typ_; }

protected:
    explicit Abhaengigkeit(std::int32_t typ) : typ_(typ) {}

private:
    template <bool>
    friend class Beschreibungsstrom;

    std::int32_t typ_;
};

/// Another extension must be there for a sub-case type and the periods named.
class ORVOPLUGIN_API UfaVzAbhaengigkeit : public Abhaengigkeit {
public:
    /// For no certain period.
    explicit UfaVzAbhaengigkeit(const Unterfallart& ua);
    UfaVzAbhaengigkeit(const Unterfallart& ua, const Veranlagungszeitraum& vz);
    /// For each year from that of `von` to that of `bis`, both included; for none if that is the earlier one.
    /// Errors: `InvalidFormatException` for a year of more than four digits.
    UfaVzAbhaengigkeit(const Unterfallart& ua, const Veranlagungszeitraum& von,
                       const Veranlagungszeitraum& bis);
    UfaVzAbhaengigkeit(const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs);
    ~UfaVzAbhaengigkeit() override;

    const Unterfallart& getUnterfallart() const { return unterfallart_; }
    const std::vector<Veranlagungszeitraum>& getVeranlagungszeitraeume() const {
        return veranlagungszeitraeume_;
    }

private:
    std::vector<Veranlagungszeitraum> veranlagungszeitraeume_;
    Unterfallart unterfallart_;
};
