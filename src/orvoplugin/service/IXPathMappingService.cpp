#include <orvoplugin/service/IXPathMappingService.h>

namespace orvo::service {

IXPathMappingService::~IXPathMappingService() = default;

} // namespace orvo::service
