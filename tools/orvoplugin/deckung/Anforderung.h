#pragma once

#include "kern/Sammler.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace werkzeug {

/// One cell that must be served.
struct VerlangteZelle {
    std::size_t zeile = 0; ///< in the file, counted from 1
    std::int32_t typ = 0;
    std::string unterfallart;   ///< as written
    std::string zeitraum;       ///< as written; a range of years gives a cell for each
    std::optional<Frage> frage; ///< nothing when the kind alone is asked for
};

/// Reads which cells must be served, from lines of
///
///     TYPE  SUB-CASE TYPE  PERIOD      # comment
///
/// Kinds, sub-case types and periods are written as for the other commands; a period may also be a range of years,
/// "2009-2015". A word in double quotes may hold blanks and '#'. A kind alone asks for anything of it; tax-office
/// data answer for every sub-case type and period. Empty lines count for nothing.
///
/// Errors: `Unlesbar` when the file cannot be read; `AufrufFehler` for a line that is none, which names file and line.
std::vector<VerlangteZelle> liesAnforderung(const std::string& datei);

} // namespace werkzeug
