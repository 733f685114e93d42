#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>
#include <orvoplugin/service/Service.h>

#include <list>

/// Offers a field-information data service; its interface is settled between client and plugin.
class ORVOPLUGIN_API OrvoFeldInfoDatenServiceErweiterung : public OrvoUaVzServiceErweiterung {
public:
    OrvoFeldInfoDatenServiceErweiterung(const Unterfallart& ua, const Veranlagungszeitraum& vz);
    OrvoFeldInfoDatenServiceErweiterung(const std::list<Unterfallart>& uas, const Veranlagungszeitraum& vz);
    OrvoFeldInfoDatenServiceErweiterung(const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs);
    explicit OrvoFeldInfoDatenServiceErweiterung(const VzMap& map);
    OrvoFeldInfoDatenServiceErweiterung(const OrvoFeldInfoDatenServiceErweiterung& other);
    ~OrvoFeldInfoDatenServiceErweiterung() override;

    OrvoErweiterung* clone() const override;

    Service* holeService();
};
