#pragma once

#include <cstddef>
#include <string_view>

/// Gives each entry of a list to `nimm`: each text that ends in a comma, an empty one too.
template <class Nehmer>
void fuerJedenNamen(std::string_view liste, Nehmer nimm) {
    for (std::size_t komma; (komma = liste.find(',')) != std::string_view::npos;
         liste.remove_prefix(komma + 1))
        nimm(liste.substr(0, komma));
}
