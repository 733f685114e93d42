#pragma once

#include <orvoutil/Bibliotheksbild.h>
#include <orvoutil/ladepruefung/Bytequelle.h>

#include <string>

namespace orvo::orvoutil {

/// Checks the bytes as `pruefeElf` does, and of a library in order takes down what stands in it for the loader.
///
/// Returns: what is wrong; empty when nothing is. The content is empty then.
/// Errors: none but want of memory. Threads: any, each with a source of its own.
std::string liesElf(Bytequelle& quelle, Bibliotheksinhalt& inhalt);

} // namespace orvo::orvoutil
