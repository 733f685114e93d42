#pragma once

#include <stammdaten/schnittstelle/DateiLeserService.h>

namespace stammdaten {

/// Reads files of up to one megabyte; larger ones are refused.
class DateiLeser : public DateiLeserService {
public:
    bool lies(const std::string& pfad, std::vector<std::string>& datensaetze, std::string& grund) override;
};

} // namespace stammdaten
