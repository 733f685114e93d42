#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

/// Medians of floor and product, and of their ratio taken pair by pair.
struct Vergleich {
    double boden = 0, produkt = 0, verhaeltnis = 0;
};

inline double median(std::vector<double> werte) {
    if (werte.empty())
        return 0;
    std::sort(werte.begin(), werte.end());
    const std::size_t mitte = werte.size() / 2;
    return werte.size() % 2 ? werte[mitte] : (werte[mitte - 1] + werte[mitte]) / 2;
}

inline Vergleich vergleiche(const std::vector<double>& boden, const std::vector<double>& produkt) {
    std::vector<double> verhaeltnisse;
    for (std::size_t i = 0; i < std::min(boden.size(), produkt.size()); ++i)
        verhaeltnisse.push_back(produkt[i] / boden[i]);
    return {median(boden), median(produkt), median(verhaeltnisse)};
}
