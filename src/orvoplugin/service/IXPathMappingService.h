#pragma once

#include <orvoplugin/service/Service.h>

namespace orvo::service {

/// Maps the fields of a record to XPath expressions. Client and plugin agree on an interface derived from this one.
class ORVOPLUGIN_API IXPathMappingService : public Service {
public:
    ~IXPathMappingService() override;
};

} // namespace orvo::service
