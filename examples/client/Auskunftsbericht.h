#pragma once

#include <iosfwd>

class Erwartungen;
class OrvoErweiterungsManager;
struct Szenario;

/// Prints which plugin answers for each kind of service, sub-case type and period of the scenario.
void berichteAuskunft(std::ostream& aus, const OrvoErweiterungsManager& registratur, const Szenario& szenario,
                      Erwartungen& erwartungen);
