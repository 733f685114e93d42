#include <orvoplugin/service/DatensatzReaderService.h>

namespace orvo::service {

DatensatzReaderService::~DatensatzReaderService() = default;

} // namespace orvo::service
