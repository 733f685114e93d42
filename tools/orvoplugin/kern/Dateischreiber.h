#pragma once

#include <string>

namespace werkzeug {

/// Puts the text into the file: wholly, or not at all. It is written to a file beside it, which then takes its place,
/// so that nobody ever reads half of it. A link stays, and the file that it leads to is replaced. What is no regular
/// file (a pipe, a terminal) is written to as it is.
/// Errors: `std::runtime_error` that names file and reason; the file is then as it was.
void schreibeDatei(const std::string& datei, const std::string& inhalt);

} // namespace werkzeug
