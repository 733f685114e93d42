#pragma once

// User input as values of the library. There are no rules of its own here: the library parses numbers, names and
// periods.

#include "kern/Sammler.h"

#include <cstdint>
#include <string>
#include <vector>

namespace werkzeug {

/// The kind of extension, by number, by name ("ORVO_CHECK_SERVICE_ERWEITERUNG"), by the beginning or a whole word of the
/// name without "ORVO_", or by any other part of it ("check", "reader"), if only one kind has it; letter case is
/// ignored.
/// Errors: `AufrufFehler`, which lists the names that fit, or all and the nearest.
std::int32_t liesTyp(const std::string& text);

/// A period, and the format to parse it with.
struct Zeitraumtext {
    std::string text;
    std::string format; ///< empty for the period-independent period
};

/// A period as typed: 2009, 2009-05, 2009Q2, 2009-05-31, or VZ_UNABHAENGIG for the period-independent one.
/// Errors: `AufrufFehler` with the library's reason.
Zeitraumtext liesZeitraum(const std::string& text);

/// A sub-case type as the library takes it: names are Latin-1 there. Text that is UTF-8 and fits is converted.
std::string liesUnterfallart(const std::string& text);

/// The kind's name as the text output has it: without "ORVO_" and "_SERVICE_ERWEITERUNG".
std::string kurzerTypName(const std::string& name);

/// The names of the predefined sub-case types, numbers first.
std::vector<std::string> vordefinierteUnterfallarten();
/// The name of the sub-case type that was probably meant, among the served and the predefined ones. Returns: an empty
/// text if it is one of them, or like none.
std::string gemeinteUnterfallart(const std::string& unterfallart, std::vector<std::string> bediente);

} // namespace werkzeug
