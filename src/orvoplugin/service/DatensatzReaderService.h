#pragma once

#include <orvoplugin/service/Service.h>

namespace orvo::service {

/// Reads records ("Datensatz"). What it offers is settled between client and plugin, in an interface derived
/// from this one.
class ORVOPLUGIN_API DatensatzReaderService : public Service {
public:
    DatensatzReaderService() = default;
    DatensatzReaderService(const DatensatzReaderService&) = default;
    DatensatzReaderService& operator=(const DatensatzReaderService&) = default;
    ~DatensatzReaderService() override;
};

} // namespace orvo::service
