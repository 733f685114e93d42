#pragma once

#include "datei/Bibliotheksbild.h"

#include <string>

namespace werkzeug {

/// Takes down what stands for the loader in a library's file that passed the look before loading. Every reading is
/// checked against the file, and the memory that names take is limited: the file may come from anyone.
///
/// Returns: why the file cannot be read; empty when it could. The content is empty then.
/// Errors: throws only std::bad_alloc. Encoding: Latin-1, without the path. Threads: any.
std::string liesElf(const std::string& pfad, Bibliotheksinhalt& inhalt);

} // namespace werkzeug
