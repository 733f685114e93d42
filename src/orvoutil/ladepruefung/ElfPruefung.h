#pragma once

#include <orvoutil/ladepruefung/Bytequelle.h>

#include <string>

namespace orvo::orvoutil {

/// Checks that the bytes are a shared library in ELF for this machine, and that everything the loader follows in
/// it stays inside: segments inside the file, tables inside the segments, references inside the tables.
///
/// What it cannot see: whether the library's general start and end functions (DT_INIT, DT_FINI) begin at a place in
/// the code where a function does, and, in a file without a section table, whether a segment holds what it should.
///
/// Work is proportional to the tables' length at most, memory fixed, and both are bounded whatever the bytes say.
///
/// Returns: what is wrong; empty when nothing is.
/// Errors: none but want of memory. Encoding: Latin-1. Threads: any, each with a source of its own.
std::string pruefeElf(Bytequelle& quelle);

} // namespace orvo::orvoutil
