#pragma once

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <string>

namespace werkzeug {

enum class Farbe { ROT, GRUEN, GELB, BLASS, FETT };

/// Colours for a stream that goes to a terminal, unless the user has switched them off (NO_COLOR, TERM=dumb).
class Farben {
public:
    explicit Farben(std::FILE* strom);
    explicit Farben(bool an) : an_(an) {}

    /// The text in that colour, or as it is.
    std::string operator()(Farbe farbe, const std::string& text) const;

private:
    bool an_;
};

/// Width of the terminal that the stream goes to; for any other stream COLUMNS, or 80.
std::size_t terminalbreite(std::FILE* strom);

/// Width that a table on standard output may take: that of the terminal; any width for other output.
std::size_t tabellenbreite();

/// A progress line on standard error, shown after one second and only on a terminal. It is erased at the end.
class Fortschritt {
public:
    /// Parameters: nothing is shown when `an` is false.
    explicit Fortschritt(bool an = true);
    Fortschritt(const Fortschritt&) = delete;
    Fortschritt& operator=(const Fortschritt&) = delete;
    ~Fortschritt();

    /// Replaces the line by the text, cut to the width of the terminal.
    void zeige(const std::string& text);

private:
    void wische();

    bool an_;
    bool stehtEtwas_ = false;
    std::chrono::steady_clock::time_point beginn_;
};

} // namespace werkzeug
