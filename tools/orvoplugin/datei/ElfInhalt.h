#pragma once

#include "datei/Bibliotheksbild.h"

#include <string>

namespace werkzeug {

/// Reads the contents of a library's file that passed the check before loading. Every access is checked against the
/// file size, and the memory for names is limited: the file is untrusted.
///
/// Returns: why the file cannot be read; empty when it could. The content is empty then.
/// Errors: throws only std::bad_alloc. Encoding: Latin-1, without the path. Threads: any.
std::string liesElf(const std::string& pfad, Bibliotheksinhalt& inhalt);

} // namespace werkzeug
