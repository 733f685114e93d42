#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>
#include <orvoplugin/service/Service.h>

#include <list>

/// Offers an error-text ("Fehlertext") data service; its interface is settled between client and plugin.
class ORVOPLUGIN_API OrvoFTDatenServiceErweiterung : public OrvoUaVzServiceErweiterung {
public:
    OrvoFTDatenServiceErweiterung(const Unterfallart& ua, const Veranlagungszeitraum& vz);
    OrvoFTDatenServiceErweiterung(const std::list<Unterfallart>& uas, const Veranlagungszeitraum& vz);
    OrvoFTDatenServiceErweiterung(const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs);
    explicit OrvoFTDatenServiceErweiterung(const VzMap& map);
    OrvoFTDatenServiceErweiterung(const OrvoFTDatenServiceErweiterung& other);
    ~OrvoFTDatenServiceErweiterung() override;

    OrvoErweiterung* clone() const override;

    Service* holeService();
};
