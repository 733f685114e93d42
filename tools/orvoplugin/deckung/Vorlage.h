#pragma once

#include "kern/Anzeige.h"

#include <string>
#include <string_view>

namespace werkzeug {

/// Fills an HTML template with the values of a document:
///
///     {{name}}             the value, in one line and escaped for text and for quoted attributes; null is empty
///     {{{name}}}           the value as it is: only for parts that are HTML, style or script already
///     {{#name}}...{{/name}}  repeated for each entry of a list; once for another value, unless it is null, false or empty
///     {{^name}}...{{/name}}  once, if the above would be left out
///
/// A name is looked up in the innermost entry first, then outwards; "a.b" is the member b of a, "." the entry itself.
/// A line break after the mark of a block is left out.
/// Errors: `std::logic_error` for an unknown name and for a block without its end.
std::string fuelleVorlage(std::string_view vorlage, const Json& werte);

} // namespace werkzeug
