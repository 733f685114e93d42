#pragma once

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

/// Result and reason; the reason is UTF-8, one line, and empty for a check that passed.
struct Befund {
    Urteil urteil = Urteil::BESTANDEN;
    std::string text;
};

inline Befund bestanden() { return {}; }
inline Befund durchgefallen(std::string text) { return {Urteil::DURCHGEFALLEN, std::move(text)}; }
inline Befund warnung(std::string text) { return {Urteil::WARNUNG, std::move(text)}; }
inline Befund uebersprungen(std::string text) { return {Urteil::UEBERSPRUNGEN, std::move(text)}; }

/// Collects the findings of one check.
class Fundliste {
public:
    void fehler(std::string text) { nimm(fehler_, std::move(text)); }
    void warnung(std::string text) { nimm(warnungen_, std::move(text)); }
    bool istLeer() const { return fehler_.gesamt + warnungen_.gesamt == 0; }
    /// Failed when there is an error, a warning when there are only warnings; the first few are named.
    Befund befund() const;

private:
    struct Liste {
        std::vector<std::string> erste;
        std::size_t gesamt = 0;
    };

    static void nimm(Liste& liste, std::string text);
    static std::string text(const Liste& liste);

    Liste fehler_, warnungen_;
};

} // namespace werkzeug::check
