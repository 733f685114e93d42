#pragma once

#include <orvoplugin/service/Service.h>

namespace orvo::service {

/// Reads records ("Datensatz"). Client and plugin agree on an interface derived from this one.
class ORVOPLUGIN_API DatensatzReaderService : public Service {
public:
    ~DatensatzReaderService() override;
};

} // namespace orvo::service
