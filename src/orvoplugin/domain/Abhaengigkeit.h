#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>

#include <cstdint>
#include <list>
#include <vector>

/// Dependency ("Abhaengigkeit") of an extension: names something that the extension depends on.
///
/// Extensions keep dependencies by value as this base, so only the kind lives on there. By
/// contract, nothing else can be read from an extension's list.
class ORVOPLUGIN_API Abhaengigkeit {
public:
    /// The kinds, values of `getTyp`.
    enum Typ : std::int32_t { UFA_VZ = 0 };

    Abhaengigkeit(const Abhaengigkeit&) = default;
    Abhaengigkeit& operator=(const Abhaengigkeit&) = default;
    virtual ~Abhaengigkeit();

    /// Kind of dependency, one of `Typ`.
    std::int32_t getTyp() const { return typ_; }

protected:
    explicit Abhaengigkeit(std::int32_t typ) : typ_(typ) {}

private:
    std::int32_t typ_;
};

/// Another extension must be there for a sub-case type and the periods named.
class ORVOPLUGIN_API UfaVzAbhaengigkeit : public Abhaengigkeit {
public:
    /// For no period in particular.
    explicit UfaVzAbhaengigkeit(const Unterfallart& ua);
    UfaVzAbhaengigkeit(const Unterfallart& ua, const Veranlagungszeitraum& vz);
    /// For each year from that of `von` to that of `bis`, both included; none when they stand the wrong way
    /// round. Months, days and kinds of the two are not looked at.
    ///
    /// Errors: `InvalidFormatException` when a year in between has more than four digits.
    UfaVzAbhaengigkeit(const Unterfallart& ua, const Veranlagungszeitraum& von,
                       const Veranlagungszeitraum& bis);
    UfaVzAbhaengigkeit(const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs);
    UfaVzAbhaengigkeit(const UfaVzAbhaengigkeit&) = default;
    UfaVzAbhaengigkeit& operator=(const UfaVzAbhaengigkeit&) = default;
    ~UfaVzAbhaengigkeit() override;

    const Unterfallart& getUnterfallart() const { return unterfallart_; }
    const std::vector<Veranlagungszeitraum>& getVeranlagungszeitraeume() const {
        return veranlagungszeitraeume_;
    }

private:
    std::vector<Veranlagungszeitraum> veranlagungszeitraeume_;
    Unterfallart unterfallart_;
};
