#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/domain/Bedingung.h>
#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>
#include <orvoplugin/service/DatensatzReaderService.h>

#include <list>

/// Offers a record reader service (`orvo::service::DatensatzReaderService`) with pre- and post-conditions.
///
/// By contract, conditions are kept by value as their base class, so only the kind of each can be read, and
/// `addNachbedingung` files its condition among the pre-conditions: only `setNachbedingungen` fills the post-conditions.
class ORVOPLUGIN_API OrvoDatensatzReaderErweiterung : public OrvoUaVzServiceErweiterung {
public:
    OrvoDatensatzReaderErweiterung(const Unterfallart& ua, const Veranlagungszeitraum& vz);
    OrvoDatensatzReaderErweiterung(const std::list<Unterfallart>& uas, const Veranlagungszeitraum& vz);
    OrvoDatensatzReaderErweiterung(const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs);
    explicit OrvoDatensatzReaderErweiterung(const VzMap& map);
    OrvoDatensatzReaderErweiterung(const OrvoDatensatzReaderErweiterung& other);
    ~OrvoDatensatzReaderErweiterung() override;

    OrvoErweiterung* clone() const override;

    /// An object of another interface is not returned, but counts as handed out.
    orvo::service::DatensatzReaderService* holeService();

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
