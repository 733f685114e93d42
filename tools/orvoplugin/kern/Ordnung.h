#pragma once

// The order of keys for people, and for matching the keys of two directories. Unlike the library's order it is total;
// it treats the same keys as equal.

#include "kern/Fakten.h"

#include <orvoplugin/domain/Unterfallart.h>
#include <orvoutil/StringUtil.h>

#include <cstdint>
#include <string>
#include <tuple>

namespace werkzeug {

/// Kind, then sub-case type: those with a number first, by number; then the others by name, in any letter case.
using Zeilenrang = std::tuple<std::int32_t, bool, std::int32_t, std::string>;

inline Zeilenrang zeilenrang(std::int32_t typ, const UnterfallartFakt& unterfallart) {
    if (hatKeinePaare(typ)) // its one key is internal
        return {typ, false, 0, {}};
    const bool ohneNummer = unterfallart.nummer == Unterfallart::OHNE_NUMMER;
    return {typ, ohneNummer, unterfallart.nummer,
            ohneNummer ? orvo::orvoutil::tolower(unterfallart.name) : std::string()};
}
inline Zeilenrang zeilenrang(const SchluesselFakt& s) { return zeilenrang(s.typ, s.unterfallart); }
inline Zeilenrang zeilenrang(const ZeileFakt& z) { return zeilenrang(z.typ, z.unterfallart); }

/// The same, and then the year.
using Schluesselrang = std::pair<Zeilenrang, std::int32_t>;

inline Schluesselrang schluesselrang(const SchluesselFakt& s) {
    return {zeilenrang(s), hatKeinePaare(s.typ) ? 0 : s.zeitraum.jahr};
}

} // namespace werkzeug
