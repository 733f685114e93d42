#pragma once

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <string>

namespace werkzeug {

enum class Farbe { ROT, GRUEN, GELB, BLASS, FETT };

/// Colours for a stream that goes to a terminal, unless the user wants none (NO_COLOR, TERM=dumb); none otherwise.
class Farben {
public:
    explicit Farben(std::FILE* strom);
    explicit Farben(bool an) : an_(an) {}

    /// The text in that colour, or as it is.
    std::string operator()(Farbe farbe, const std::string& text) const;

private:
    bool an_;
};

/// Columns of the terminal that the stream goes to; for any other stream those that COLUMNS says, or 80.
std::size_t terminalbreite(std::FILE* strom);

/// One line on standard error that says what is being done, once it takes longer than a second; on a terminal only. It
/// is wiped out at the end.
class Fortschritt {
public:
    /// Parameters: an `an` of false silences it altogether.
    explicit Fortschritt(bool an = true);
    Fortschritt(const Fortschritt&) = delete;
    Fortschritt& operator=(const Fortschritt&) = delete;
    ~Fortschritt();

    /// Shows the text, cut to the width of the terminal, in place of the one before.
    void zeige(const std::string& text);

private:
    void wische();

    bool an_;
    bool stehtEtwas_ = false;
    std::chrono::steady_clock::time_point beginn_;
};

} // namespace werkzeug
