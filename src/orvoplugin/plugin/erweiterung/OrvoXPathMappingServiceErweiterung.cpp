#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>

#include <orvoplugin/plugin/intern/UaVzErweiterung.h>

ORVO_UA_VZ_ERWEITERUNG(OrvoXPathMappingServiceErweiterung, ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG,
                       "orvo_plugin_get_xpath_mapping_service")

orvo::service::IXPathMappingService* OrvoXPathMappingServiceErweiterung::holeService() {
    return dynamic_cast<orvo::service::IXPathMappingService*>(OrvoServiceErweiterung::holeService());
}
