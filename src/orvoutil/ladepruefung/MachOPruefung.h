#pragma once

#include <orvoutil/ladepruefung/Bytequelle.h>

#include <string>

namespace orvo::orvoutil {

/// Checks that the bytes are a shared library in Mach-O for this machine, alone or as a part of a universal file,
/// whose load commands and segments lie inside the file. The system's own loader checks the rest.
///
/// Returns: what is wrong; empty when nothing is.
/// Errors: none but want of memory. Encoding: Latin-1. Threads: any, each with a source of its own.
std::string pruefeMachO(Bytequelle& quelle);

} // namespace orvo::orvoutil
