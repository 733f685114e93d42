#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace werkzeug::check {

/// What became of one check of one file.
enum class Urteil {
    BESTANDEN,
    DURCHGEFALLEN,
    WARNUNG,       ///< works, but not as it should
    UEBERSPRUNGEN, ///< could not be made, or makes no sense here
    ABGESTUERZT,   ///< the plugin's code ended the process that it ran in
    ZU_LANGSAM,    ///< the plugin's code did not come back in time
};

/// The result's name for people ("timed out") and for programs ("timed_out").
const char* urteilName(Urteil urteil);
const char* urteilKennung(Urteil urteil);
/// Whether a check that builds on this result makes no sense any more.
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

/// Gathers what one check finds at several places.
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
