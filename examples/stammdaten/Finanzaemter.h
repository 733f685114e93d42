#pragma once

#include <stammdaten/schnittstelle/FinanzamtService.h>

#include <map>

namespace stammdaten {

/// The offices that this plugin knows.
class Finanzaemter : public FinanzamtService {
public:
    Finanzaemter();

    std::string nameVon(const std::string& nummer) const override;
    std::size_t getAnzahl() const override { return namen_.size(); }

private:
    std::map<std::string, std::string> namen_;
};

} // namespace stammdaten
