#pragma once

#include <iosfwd>
#include <string>
#include <vector>

/// Rows of text in UTF-8, printed in columns as wide as their widest entry.
class Tabelle {
public:
    using Zeile = std::vector<std::string>;

    explicit Tabelle(Zeile kopf);

    /// Adds a row; it has as many entries as the head.
    void fuegeHinzu(Zeile zeile) { zeilen_.push_back(std::move(zeile)); }

    friend std::ostream& operator<<(std::ostream& aus, const Tabelle& tabelle);

private:
    std::vector<Zeile> zeilen_; ///< the head first
};

/// Prints a heading.
void schreibeUeberschrift(std::ostream& aus, const std::string& text);
