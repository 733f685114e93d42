#pragma once

// Every result goes to standard output through these functions, which escape what could upset a terminal or a JSON
// parser.

#include "kern/Fakten.h"
#include "kern/Optionen.h"
#include "kern/Sprache.h"
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

/// The common start of every JSON document: schema version and command, and the plugin directory for commands that read
/// one.
Json jsonKopf(const char* befehl);
Json jsonKopf(const char* befehl, const std::string& suchpfad);

/// The document as text, indented, in UTF-8. Characters that a terminal would take as a command are escaped.
std::string alsText(const Json& dokument);

/// Numbers and other small things that people read: "10" or "LSTB"; "2009", "2009-05", "2009Q2", "2009-05-31" or "any".
std::string anzeige(const UnterfallartFakt& unterfallart);
std::string anzeige(const ZeitraumFakt& zeitraum);

/// Display width of a printable text in columns; every character counts as one.
std::size_t anzeigebreite(std::string_view utf8);
/// The text, shortened to that many columns: the middle of a longer text is replaced by "…".
std::string gekuerzt(const std::string& utf8, std::size_t spalten);

/// Columns as wide as their widest cell. Texts of plugins may be of any length: no cell but the last is wider than 40
/// columns, longer ones are shortened in the middle, and on a terminal the widest columns shrink until the table fits.
/// Cells hold text that is fit to be shown.
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
    std::string alsText(const Farben& farben) const { return alsText(farben, tabellenbreite()); }
    std::string alsText(const Farben& farben, std::size_t platz) const;
    /// Total width in columns, without remarks.
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
/// The same for a text that is always written.
void gibAus(const std::string& alles);

} // namespace werkzeug
