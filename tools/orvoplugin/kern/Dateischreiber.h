#pragma once

#include <string>

namespace werkzeug {

/// Writes the text to the file atomically: to a temporary file beside it, which then replaces it, so that a reader
/// never sees half of the text. A link stays, and its target is replaced. A file that is not regular (a pipe, a
/// terminal) is written to directly.
/// Errors: `std::runtime_error` that names file and reason; the file is then unchanged.
void schreibeDatei(const std::string& datei, const std::string& inhalt);

} // namespace werkzeug
