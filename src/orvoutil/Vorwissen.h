#pragma once

#include <cstdint>

namespace orvo::orvoutil {

/// Tells one state of a file from every other one: which file it is, and when it was last changed. The default stands
/// for no file. Times are nanoseconds since 1970.
struct Dateizustand {
    std::uint64_t geraet = 0, nummer = 0, groesse = 0;
    std::int64_t inhaltSeit = 0;  ///< since when its content is what it is
    std::int64_t angabenSeit = 0; ///< since when that and everything else known of it is

    bool istDatei() const { return nummer != 0; }
    friend bool operator==(const Dateizustand&, const Dateizustand&) = default;
};

/// What is known of a library's file before it is looked at. A plain value.
struct Vorwissen {
    /// A listing of its directory has just shown a regular file. Holds for the next look only.
    bool gelistet = false;
    /// The state in which the file passed the check.
    Dateizustand geprueft;
};

} // namespace orvo::orvoutil
