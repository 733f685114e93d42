#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/domain/Bedingung.h>
#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>
#include <orvoplugin/service/DatensatzReaderService.h>

#include <list>

/// Offers a record reader service (`orvo::service::DatensatzReaderService`). Carries pre- and
/// post-conditions of that service.
///
/// Conditions are kept by value as their base class, so only the kind of each lives on there. A post-condition
/// added by itself is filed among the pre-conditions; `setNachbedingungen` is the only way to fill the
/// post-conditions. Both are wanted, and bind plugins that declare conditions and services that read them.
///
/// Threads: one thread at a time, as everywhere in this library.
class ORVOPLUGIN_API OrvoDatensatzReaderErweiterung : public OrvoUaVzServiceErweiterung {
public:
    OrvoDatensatzReaderErweiterung(const Unterfallart& ua, const Veranlagungszeitraum& vz);
    OrvoDatensatzReaderErweiterung(const std::list<Unterfallart>& uas, const Veranlagungszeitraum& vz);
    OrvoDatensatzReaderErweiterung(const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs);
    explicit OrvoDatensatzReaderErweiterung(const VzMap& map);
    OrvoDatensatzReaderErweiterung(const OrvoDatensatzReaderErweiterung& other);
    ~OrvoDatensatzReaderErweiterung() override;

    OrvoErweiterung* clone() const override;

    /// As `OrvoServiceErweiterung::holeService`. An object of another interface is not returned, yet counts as
    /// handed out: plugins must give what they declare.
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
