#pragma once

#include <orvoplugin/service/Service.h>

#include <cstddef>
#include <string>

namespace stammdaten {

/// What the tax-office ("Finanzamt") data of this plugin offers its clients. Client and plugin both include this
/// header, and nothing else of each other.
class FinanzamtService : public Service {
public:
    /// The name of the office with that number of four digits, in Latin-1; empty when there is none.
    virtual std::string nameVon(const std::string& nummer) const = 0;
    virtual std::size_t getAnzahl() const = 0;
};

} // namespace stammdaten
