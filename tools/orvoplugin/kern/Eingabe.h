#pragma once

// What people type, as the library's values. Nothing here has a rule of its own: numbers, names and periods are read
// by the library.

#include "kern/Sammler.h"

#include <cstdint>
#include <string>

namespace werkzeug {

/// The kind of extension: a number, or its name ("ORVO_CHECK_SERVICE_ERWEITERUNG"), or the beginning of the name
/// without "ORVO_", or else any part of it, that fits one kind only ("check", "reader"), in any letter case.
/// Errors: `AufrufFehler`, which lists the names.
std::int32_t liesTyp(const std::string& text);

/// A period, and the library's format to read it under.
struct Zeitraumtext {
    std::string text;
    std::string format; ///< empty for the period-independent period
};

/// A period as people type it: 2009, 2009-05, 2009Q2, 2009-05-31, or VZ_UNABHAENGIG for the period-independent one.
/// Errors: `AufrufFehler` with the library's reason.
Zeitraumtext liesZeitraum(const std::string& text);

/// A sub-case type as the library takes it: names are Latin-1 there. Text that is UTF-8 and fits is converted.
std::string liesUnterfallart(const std::string& text);

/// The kind's name as the text output has it: without "ORVO_" and "_SERVICE_ERWEITERUNG".
std::string kurzerTypName(const std::string& name);

} // namespace werkzeug
