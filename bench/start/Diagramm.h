#pragma once

#include "Vergleich.h"

#include <iosfwd>
#include <string>
#include <vector>

/// A start-up: the time per plugin, in microseconds.
struct Messpunkt {
    std::string groesse;
    int plugins;
    bool kalt;
    Vergleich zeit;
};

/// Draws two charts as SVG: floor and product for 100 plugins of each size, and how the first size grows with the
/// number of plugins.
void zeichne(std::ostream& svg, const std::vector<Messpunkt>& punkte);
