#pragma once

#include <iosfwd>

class Erwartungen;
class OrvoErweiterungsManager;
struct Szenario;

/// Prints who answers for each kind of service, sub-case type and period that the scenario asks for.
void berichteAuskunft(std::ostream& aus, const OrvoErweiterungsManager& registratur, const Szenario& szenario,
                      Erwartungen& erwartungen);
