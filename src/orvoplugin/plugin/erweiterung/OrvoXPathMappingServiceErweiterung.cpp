#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>

namespace {

constexpr tag_erweiterung_typ kTyp = ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG;
constexpr char kFactory[] = "orvo_plugin_get_xpath_mapping_service";

} // namespace

OrvoXPathMappingServiceErweiterung::OrvoXPathMappingServiceErweiterung(const Unterfallart& ua,
                                                                       const Veranlagungszeitraum& vz)
    : OrvoUaVzServiceErweiterung(kTyp, ua, vz, kFactory) {}

OrvoXPathMappingServiceErweiterung::OrvoXPathMappingServiceErweiterung(const std::list<Unterfallart>& uas,
                                                                       const Veranlagungszeitraum& vz)
    : OrvoUaVzServiceErweiterung(kTyp, uas, vz, kFactory) {}

OrvoXPathMappingServiceErweiterung::OrvoXPathMappingServiceErweiterung(
    const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs)
    : OrvoUaVzServiceErweiterung(kTyp, ua, vzs, kFactory) {}

OrvoXPathMappingServiceErweiterung::OrvoXPathMappingServiceErweiterung(const VzMap& map)
    : OrvoUaVzServiceErweiterung(kTyp, map, kFactory) {}

OrvoXPathMappingServiceErweiterung::OrvoXPathMappingServiceErweiterung(
    const OrvoXPathMappingServiceErweiterung&) = default;
OrvoXPathMappingServiceErweiterung::~OrvoXPathMappingServiceErweiterung() = default;

OrvoErweiterung* OrvoXPathMappingServiceErweiterung::clone() const {
    return new OrvoXPathMappingServiceErweiterung(*this);
}

orvo::service::IXPathMappingService* OrvoXPathMappingServiceErweiterung::holeService() {
    return dynamic_cast<orvo::service::IXPathMappingService*>(OrvoServiceErweiterung::holeService());
}
