#pragma once

#include <string>
#include <vector>

class OrvoErweiterungsManager;
class Unterfallart;
class Veranlagungszeitraum;

/// Reads the records of a file, through the record reader that serves this sub-case type and period.
/// Errors: `std::runtime_error` when there is no such reader, or it cannot read the file.
std::vector<std::string> liesDatensaetze(const OrvoErweiterungsManager& registratur, const Unterfallart& ua,
                                         const Veranlagungszeitraum& vz, const std::string& pfad);

/// Name of a tax office, in UTF-8; empty when it is unknown.
std::string finanzamtName(const OrvoErweiterungsManager& registratur, const std::string& nummer);
