#pragma once

#include "kern/Anzeige.h"

#include <cstddef>
#include <string>
#include <vector>

namespace werkzeug::check {

/// The result of one check of one file.
enum class Urteil {
    BESTANDEN,
    DURCHGEFALLEN,
    WARNUNG,       ///< works, but not as it should
    UEBERSPRUNGEN, ///< could not be run, or does not apply
    ABGESTUERZT,   ///< plugin code ended the process
    ZU_LANGSAM,    ///< plugin code exceeded the time limit
};

/// The result's name for people ("timed out") and for programs ("timed_out").
const char* urteilName(Urteil urteil);
const char* urteilKennung(Urteil urteil);
/// Whether checks that depend on this result must be skipped.
bool istHindernis(Urteil urteil);

/// Result and reason. A check that passed has no code, and no text except where it reports something.
struct Befund {
    Urteil urteil = Urteil::BESTANDEN;
    std::string text; ///< the reason, UTF-8, one line; with `kBautAuf` the name of that check
    std::string code; ///< the same for programs: stable, in English, in small letters
    Json zahlen = {}; ///< what was measured, for programs: an object, or null

    /// The reason as a text for people.
    std::string grund() const;
};

/// Code of a check that was skipped because of the result of another one.
inline constexpr char kBautAuf[] = "builds_on";

inline Befund bestanden() { return {}; }
inline Befund durchgefallen(std::string text, std::string code = {}) {
    return {Urteil::DURCHGEFALLEN, std::move(text), std::move(code)};
}
inline Befund warnung(std::string text, std::string code = {}) {
    return {Urteil::WARNUNG, std::move(text), std::move(code)};
}
inline Befund uebersprungen(std::string text, std::string code = {}) {
    return {Urteil::UEBERSPRUNGEN, std::move(text), std::move(code)};
}

/// Collects the findings of one check.
class Fundliste {
public:
    void fehler(std::string text, const char* code = "") { nimm(fehler_, std::move(text), code); }
    void warnung(std::string text, const char* code = "") { nimm(warnungen_, std::move(text), code); }
    bool istLeer() const { return fehler_.gesamt + warnungen_.gesamt == 0; }
    /// Failed when there is an error, a warning when there are only warnings; the first few are named, and the first
    /// gives the code.
    Befund befund() const;

private:
    struct Liste {
        std::vector<std::string> erste;
        std::string code; ///< of the first
        std::size_t gesamt = 0;
    };

    static void nimm(Liste& liste, std::string text, const char* code);
    static std::string text(const Liste& liste);

    Liste fehler_, warnungen_;
};

} // namespace werkzeug::check
