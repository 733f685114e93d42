#pragma once

#include <orvoplugin/service/Service.h>

#include <cstddef>
#include <string>

namespace stammdaten {

/// The interface of this plugin's tax-office ("Finanzamt") data. Client and plugin share this header only.
class FinanzamtService : public Service {
public:
    /// The name of the office with that number of four digits, in Latin-1; empty when there is none.
    virtual std::string nameVon(const std::string& nummer) const = 0;
    virtual std::size_t getAnzahl() const = 0;
};

} // namespace stammdaten
