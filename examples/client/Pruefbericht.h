#pragma once

#include <iosfwd>
#include <string>

class Erwartungen;
class OrvoErweiterungsManager;
struct Szenario;

/// Reads the record files of the scenario, has each checked by the service for it, and prints the findings: code, field
/// and text.
/// Errors: `std::runtime_error` when a file cannot be read.
void berichtePruefungen(std::ostream& aus, const OrvoErweiterungsManager& registratur,
                        const std::string& datenverzeichnis, const Szenario& szenario,
                        Erwartungen& erwartungen);
