#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace steuer {

/// A record ("Datensatz"): fields in the order of the text, one per line as Name=Wert.
///
/// Names are ASCII letters, digits and underscores and begin with a letter; values are printable Latin-1 text without
/// blanks at either end. Empty lines are ignored. A name may occur more than once; the check of the record decides
/// whether that is a fault.
class Datensatz {
public:
    struct Feld {
        std::string name;
        std::string wert;
    };

    explicit Datensatz(std::vector<Feld> felder) : felder_(std::move(felder)) {}

    const std::vector<Feld>& getFelder() const { return felder_; }
    /// The first field of that name, owned by the record; null when there is none.
    const Feld* finde(std::string_view name) const noexcept;
    /// The value of that field; empty when there is none. Valid as long as the record.
    std::string_view wert(std::string_view name) const noexcept;

private:
    std::vector<Feld> felder_;
};

/// Why a text is not a record.
struct Lesefehler {
    enum class Art : std::uint8_t {
        LEER,     ///< no fields
        ZU_GROSS, ///< more bytes or fields than a record may have
        ZEILE,    ///< a line that is not of the form Name=Wert
        ZEICHEN   ///< a control character in a value: binary data, or another encoding
    };

    Art art = Art::LEER;
    std::size_t zeile = 0; ///< line of the error, counted from 1; 0 for the text as a whole
};

/// Parses a record from any bytes. Returns: the record, or the first error.
std::variant<Datensatz, Lesefehler> liesDatensatz(std::string_view text);

} // namespace steuer
