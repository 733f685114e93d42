#pragma once

#include "kern/Sammler.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace werkzeug {

/// A cell that must be served.
struct VerlangteZelle {
    std::size_t zeile = 0; ///< in the file, counted from 1
    std::int32_t typ = 0;
    std::string unterfallart;   ///< as written
    std::string zeitraum;       ///< as written; a range of years gives a cell for each
    std::optional<Frage> frage; ///< none when only the kind is required
};

/// Reads which cells must be served, from lines of
///
///     TYPE  SUB-CASE TYPE  PERIOD      # comment
///
/// Kinds, sub-case types and periods are written as for the other commands; a period may also be a range of years,
/// "2009-2015". A word in double quotes may contain blanks and '#'. A kind alone requires any entry of it; tax-office
/// data match every sub-case type and period. Empty lines are ignored.
///
/// Errors: `Unlesbar` when the file cannot be read; `AufrufFehler` for an invalid line, which names file and line.
std::vector<VerlangteZelle> liesAnforderung(const std::string& datei);

} // namespace werkzeug
