#pragma once

#include "kern/Anzeige.h"
#include "kern/Ausgang.h"

#include <cstddef>
#include <map>
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

/// What follows from a result.
struct Urteilsart {
    const char* kennung; ///< for programs: "timed_out"
    const char* name;    ///< for the catalogue: "timed out"
    Farbe farbe;
    Ausgang ausgang;
};
const Urteilsart& artVon(Urteil urteil);
/// For people, in their language.
const char* urteilName(Urteil urteil);
/// Whether checks that depend on this result must be skipped.
bool istHindernis(Urteil urteil);
/// Whether somebody has to do something about it.
bool istAuffaellig(Urteil urteil);

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
/// Code of what may be missing on this machine only.
inline constexpr char kFehltHier[] = "library_missing";

/// Collects the findings of one check.
class Fundliste {
public:
    void fehler(std::string text, const char* code = "") { nimm(Urteil::DURCHGEFALLEN, text, code); }
    void warnung(std::string text, const char* code = "") { nimm(Urteil::WARNUNG, text, code); }
    /// The check cannot be made, or does not apply.
    void uebersprungen(std::string text, const char* code) { nimm(Urteil::UEBERSPRUNGEN, text, code); }
    /// What a check that passes has to say.
    void bericht(std::string text) { nimm(Urteil::BESTANDEN, text, ""); }
    bool istLeer() const { return listen_.empty(); }
    /// Failed when there is an error, a warning when there are only warnings; the first few are named, and the first
    /// gives the code.
    Befund befund() const;

    Json zahlen = {}; ///< see `Befund::zahlen`

private:
    struct Liste {
        std::vector<std::string> erste;
        std::string code; ///< of the first
        std::size_t gesamt = 0;
    };

    void nimm(Urteil urteil, std::string& text, const char* code);

    std::map<Urteil, Liste> listen_;
};

} // namespace werkzeug::check
