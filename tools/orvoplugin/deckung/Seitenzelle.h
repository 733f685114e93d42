#pragma once

// The plugins of a page, and its cells as values of the template.

#include "kern/Anzeige.h"

#include <map>
#include <string>

namespace werkzeug {

/// The same thing in the documents before and after; null where it is missing. A page of one document has no "before".
struct Paar {
    const Json* vorher = nullptr;
    const Json* nachher = nullptr;
    const Json& eines() const { return nachher ? *nachher : *vorher; }
};

struct Seitenplugin {
    Paar staende;
    std::string zeichen; ///< "A"
    std::string farbe;   ///< a class of the style sheet
    std::string name;    ///< without "lib", suffix and, where it is unambiguous, folder
};

/// The plugins of both documents, by file.
class Seitenplugins {
public:
    explicit Seitenplugins(const Paar& dokumente);

    /// Parameters: `anbieter` is a plugin of a cell.
    const Seitenplugin& operator[](const Json& anbieter) const {
        return plugins_.at(anbieter["file"].get_ref<const std::string&>());
    }
    auto begin() const { return plugins_.begin(); }
    auto end() const { return plugins_.end(); }

private:
    std::map<std::string, Seitenplugin> plugins_;
};

/// Whether somebody answers and a client gets the service.
bool istBedient(const Json* antwort);

/// The cell of a page of one document: "A", "~A" (period-independent), "A*" (for a part of the year), "–" (gap), "A✗"
/// (a gap, too, because A's service cannot be had).
/// Parameters: `antwort` is a cell of the document, null for a gap.
Json deckungszelle(const Seitenplugins& plugins, const Json* antwort);

/// The cell of a page of two documents: "A", "A›B" (another answers), "A↑" (in a newer version), "–›A".
Json vergleichszelle(const Seitenplugins& plugins, const Json* vorher, const Json* nachher);

} // namespace werkzeug
