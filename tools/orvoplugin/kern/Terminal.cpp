#include "kern/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <limits>
#include <string_view>

namespace werkzeug {

namespace {

constexpr std::chrono::seconds kGeduld{1};
constexpr char kZeileLoeschen[] = "\r\x1b[K";

bool willFarben() {
    const char* const keine = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    return !(keine && *keine) && terminal && std::string_view(terminal) != "dumb";
}

constexpr const char* kAnfang[] = {"\x1b[31m", "\x1b[32m", "\x1b[33m", "\x1b[2m", "\x1b[1m"}; // by Farbe

/// At most so many characters of a UTF-8 text.
std::string gekuerzt(const std::string& text, std::size_t zeichen) {
    std::size_t ende = 0;
    for (; ende < text.size(); ++ende)
        if ((static_cast<unsigned char>(text[ende]) & 0xC0) != 0x80 && zeichen-- == 0)
            break;
    return text.substr(0, ende);
}

} // namespace

std::size_t terminalbreite(std::FILE* strom) {
    constexpr std::size_t kUebliche = 80;
    constexpr unsigned long kGroesste = 10000;
    winsize groesse{};
    if (ioctl(fileno(strom), TIOCGWINSZ, &groesse) == 0 && groesse.ws_col > 0)
        return groesse.ws_col;
    const char* const gewuenscht = std::getenv("COLUMNS");
    const unsigned long spalten = gewuenscht ? std::strtoul(gewuenscht, nullptr, 10) : 0;
    return spalten > 0 && spalten <= kGroesste ? spalten : kUebliche;
}

std::size_t tabellenbreite() {
    return isatty(STDOUT_FILENO) ? terminalbreite(stdout) : std::numeric_limits<std::size_t>::max();
}

Farben::Farben(std::FILE* strom) : an_(isatty(fileno(strom)) && willFarben()) {}

std::string Farben::operator()(Farbe farbe, const std::string& text) const {
    return an_ && !text.empty() ? kAnfang[static_cast<int>(farbe)] + text + "\x1b[0m" : text;
}

Fortschritt::Fortschritt(bool an)
    : an_(an && isatty(STDERR_FILENO)), beginn_(std::chrono::steady_clock::now()) {}

Fortschritt::~Fortschritt() { wische(); }

void Fortschritt::zeige(const std::string& text) {
    if (!an_ || std::chrono::steady_clock::now() - beginn_ < kGeduld)
        return;
    std::fputs((kZeileLoeschen + gekuerzt(text, terminalbreite(stderr) - 1)).c_str(), stderr);
    std::fflush(stderr);
    stehtEtwas_ = true;
}

void Fortschritt::wische() {
    if (stehtEtwas_)
        std::fputs(kZeileLoeschen, stderr);
    stehtEtwas_ = false;
}

} // namespace werkzeug
