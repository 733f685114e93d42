#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>
#include <orvoplugin/service/IXPathMappingService.h>

#include <list>

/// Offers an XPath mapping service (`orvo::service::IXPathMappingService`).
class ORVOPLUGIN_API OrvoXPathMappingServiceErweiterung : public OrvoUaVzServiceErweiterung {
public:
    OrvoXPathMappingServiceErweiterung(const Unterfallart& ua, const Veranlagungszeitraum& vz);
    OrvoXPathMappingServiceErweiterung(const std::list<Unterfallart>& uas, const Veranlagungszeitraum& vz);
    OrvoXPathMappingServiceErweiterung(const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs);
    explicit OrvoXPathMappingServiceErweiterung(const VzMap& map);
    OrvoXPathMappingServiceErweiterung(const OrvoXPathMappingServiceErweiterung& other);
    ~OrvoXPathMappingServiceErweiterung() override;

    OrvoErweiterung* clone() const override;

    /// An object of another interface is not returned, but counts as handed out.
    orvo::service::IXPathMappingService* holeService();
};
