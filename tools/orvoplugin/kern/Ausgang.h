#pragma once

#include <algorithm>

namespace werkzeug {

/// Exit codes, the same for all commands. Where several apply, the largest is given; see `schwerster`.
enum class Ausgang : int {
    GUT = 0,             ///< no findings
    BEFUNDE = 1,         ///< something was refused, failed or not found
    FALSCHER_AUFRUF = 2, ///< the command line cannot be understood
    NICHT_LESBAR = 3,    ///< a directory or file cannot be read
    ABGESTUERZT = 4,     ///< a plugin crashed, ended its process or took too long
    DECKUNG_FEHLT = 5,   ///< a required cell is not served
    ABWEICHUNG = 6,      ///< a plugin directory is not what its lock file says
};

constexpr Ausgang schwerster(Ausgang a, Ausgang b) {
    return static_cast<Ausgang>(std::max(static_cast<int>(a), static_cast<int>(b)));
}

} // namespace werkzeug
