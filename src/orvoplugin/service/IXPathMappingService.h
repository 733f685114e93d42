#pragma once

#include <orvoplugin/service/Service.h>

namespace orvo::service {

/// Maps the fields of a record to XPath expressions. What it offers is settled between client and plugin, in an
/// interface derived from this one.
class ORVOPLUGIN_API IXPathMappingService : public Service {
public:
    IXPathMappingService() = default;
    IXPathMappingService(const IXPathMappingService&) = default;
    IXPathMappingService& operator=(const IXPathMappingService&) = default;
    ~IXPathMappingService() override;
};

} // namespace orvo::service
