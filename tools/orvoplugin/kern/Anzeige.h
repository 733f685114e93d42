#pragma once

// The way of every result to standard output: plugins' texts never bring a terminal or a reader out of step.

#include "kern/Fakten.h"
#include "kern/Optionen.h"
#include "kern/Terminal.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace werkzeug {

using Json = nlohmann::ordered_json;

/// The text in UTF-8 on one line, with control characters, and those that change the direction of writing, written
/// out as "\x1b" and the like.
std::string einzeilig(std::string_view text);

/// The text in UTF-8 as a JSON value: bytes that are valid UTF-8 stay, others are taken as Latin-1.
Json jsonText(std::string_view text);

/// What every command's JSON begins with: the schema's version and the command; and the plugin directory, for those
/// that look at one.
Json jsonKopf(const char* befehl);
Json jsonKopf(const char* befehl, const std::string& suchpfad);

/// The document as text, indented, in UTF-8. Characters that a terminal would take as a command are escaped.
std::string alsText(const Json& dokument);

/// Numbers and other small things that people read: "10" or "LSTB"; "2009", "2009-05", "2009Q2", "2009-05-31" or "any".
std::string anzeige(const UnterfallartFakt& unterfallart);
std::string anzeige(const ZeitraumFakt& zeitraum);

/// Number of columns that a text that is fit to be shown takes; every character counts as one.
std::size_t anzeigebreite(std::string_view utf8);
/// The text, in so many columns: what is too long loses its middle, where a "…" stands then.
std::string gekuerzt(const std::string& utf8, std::size_t spalten);

/// Columns as wide as their widest cell. Cells hold text that is fit to be shown.
class Tabelle {
public:
    struct Zelle {
        Zelle(std::string zellentext, std::optional<Farbe> zellenfarbe = {}) // NOLINT: a text is a cell
            : text(std::move(zellentext)), farbe(zellenfarbe) {}
        Zelle(const char* zellentext) : text(zellentext) {} // NOLINT: a text is a cell

        std::string text;
        std::optional<Farbe> farbe;
    };

    explicit Tabelle(std::vector<Zelle> kopf) { zeile(std::move(kopf)); }
    void zeile(std::vector<Zelle> zellen) { zeilen_.push_back({std::move(zellen), {}}); }
    /// A line below the row before, below its second column.
    void bemerkung(std::string text) { zeilen_.back().bemerkungen.push_back(std::move(text)); }
    std::string alsText(const Farben& farben) const;
    /// Columns that it takes in all, remarks aside.
    std::size_t breite() const;

private:
    struct Zeile {
        std::vector<Zelle> zellen;
        std::vector<std::string> bemerkungen;
    };
    std::vector<std::size_t> breiten() const;

    std::vector<Zeile> zeilen_;
};

/// Writes results to standard output: the document as JSON when the options say so, else the text; nothing when they
/// ask for quiet.
/// Errors: `std::runtime_error` when they cannot be written.
void gibAus(const Optionen& optionen, const Json& dokument, std::string (*text)(const Json&, const Farben&));
/// The same for a text that is always wanted.
void gibAus(const std::string& alles);

/// A number of things: "1 file", "3 files".
std::string anzahl(std::size_t zahl, const char* einzahl, const char* mehrzahl);

} // namespace werkzeug
