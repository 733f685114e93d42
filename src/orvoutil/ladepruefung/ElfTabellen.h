#pragma once

#include <orvoutil/ladepruefung/ElfDynamik.h>

#include <cstdint>

namespace orvo::orvoutil {

// The tables of a library, each checked by a walk. Errors: `ElfMangel`.

/// Checks the sections, if the file lists any. The loader does not look at them; but where they contradict what it
/// looks at, one of the two is wrong.
void pruefeAbschnitte(const ElfDynamik& dynamik);

/// Checks that the library was not built for another release of this one: that would come into the process beside this
/// one, if it can be found at all, and each would take the other's classes for its own.
void pruefeBedarf(const ElfDynamik& dynamik);

/// Checks the relocations, and that each start and end function of the library gets its address from one.
/// Returns: how many entries a symbol table needs for them.
std::uint64_t pruefeRelokationen(const ElfDynamik& dynamik);

/// Checks the hash tables and the symbols that they or the relocations lead to, at least that many.
/// Returns: how many symbols there are, as far as can be seen.
std::uint64_t pruefeSymbole(const ElfDynamik& dynamik, std::uint64_t mindestens);

/// Checks the versions that symbols have, are needed in and are defined in.
void pruefeVersionen(const ElfDynamik& dynamik, std::uint64_t symbole);

} // namespace orvo::orvoutil
