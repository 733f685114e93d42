#pragma once

#include <string>
#include <vector>

/// Measures runs of a program from outside. Errors: `std::runtime_error` when it cannot be run or fails.

using Befehl = std::vector<std::string>;

struct Lauf {
    double dauer; ///< for how long it and its children were running from start to end, in microseconds
    std::vector<double> zahlen; ///< the numbers at the beginning of its standard output
};

Lauf fuehreAus(const Befehl& befehl);

/// How many system calls it makes.
double systemaufrufe(const Befehl& befehl);

/// How many instructions it executes outside the kernel.
double instruktionen(const Befehl& befehl);
