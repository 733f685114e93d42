#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/domain/Bedingung.h>
#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>
#include <orvoplugin/service/ValidierungsService.h>

#include <list>

/// Offers a check service (`orvo::service::ValidierungsService`) with pre- and post-conditions.
///
/// By contract, conditions are kept by value as their base class, so only the kind of each can be read, and
/// `addNachbedingung` files its condition among the pre-conditions: only `setNachbedingungen` fills the post-conditions.
class ORVOPLUGIN_API OrvoValidierungsServiceErweiterung : public OrvoUaVzServiceErweiterung {
public:
    OrvoValidierungsServiceErweiterung(const Unterfallart& ua, const Veranlagungszeitraum& vz);
    OrvoValidierungsServiceErweiterung(const std::list<Unterfallart>& uas, const Veranlagungszeitraum& vz);
    OrvoValidierungsServiceErweiterung(const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs);
    explicit OrvoValidierungsServiceErweiterung(const VzMap& map);
    OrvoValidierungsServiceErweiterung(const OrvoValidierungsServiceErweiterung& other);
    ~OrvoValidierungsServiceErweiterung() override;

    OrvoErweiterung* clone() const override;

    /// An object of another interface is not returned, but counts as handed out.
    orvo::service::ValidierungsService* holeService();

    void addVorbedingung(const Bedingung& bedingung);
    /// Files the condition among the pre-conditions.
    void addNachbedingung(const Bedingung& bedingung);
    void setVorbedingungen(const std::list<Bedingung>& bedingungen);
    void setNachbedingungen(const std::list<Bedingung>& bedingungen);

    const std::list<Bedingung>& getVorbedingungen() const { return vorbedingungen_; }
    const std::list<Bedingung>& getNachbedingungen() const { return nachbedingungen_; }

private:
    std::list<Bedingung> vorbedingungen_;
    std::list<Bedingung> nachbedingungen_;
};
