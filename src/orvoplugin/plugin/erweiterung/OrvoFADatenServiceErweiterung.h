#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>
#include <orvoplugin/service/Service.h>

/// Offers a tax-office ("Finanzamt") data service; its interface is settled between client and plugin. It serves
/// no sub-case types and periods: the registry keeps one, the first that was registered.
class ORVOPLUGIN_API OrvoFADatenServiceErweiterung : public OrvoServiceErweiterung {
public:
    OrvoFADatenServiceErweiterung();
    OrvoFADatenServiceErweiterung(const OrvoFADatenServiceErweiterung& other);
    ~OrvoFADatenServiceErweiterung() override;

    OrvoErweiterung* clone() const override;

    Service* holeService();
};
