#include <orvoutil/StreamLogSink.h>

#include <orvoutil/Latin1.h>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <ostream>
#include <string_view>

namespace orvo::orvoutil {

namespace {

/// Local time, such as "2009-05-31 23:59:59.123".
std::string zeitpunkt(std::chrono::system_clock::time_point jetzt) {
    const auto sekunden = std::chrono::floor<std::chrono::seconds>(jetzt);
    const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(jetzt - sekunden);
    const std::time_t zeit = std::chrono::system_clock::to_time_t(sekunden);
    std::tm ortszeit{};
    localtime_r(&zeit, &ortszeit);
    char tag[32];
    const std::size_t laenge = std::strftime(tag, sizeof tag, "%Y-%m-%d %H:%M:%S", &ortszeit);
    char tausendstel[8];
    std::snprintf(tausendstel, sizeof tausendstel, ".%03d", static_cast<int>(rest.count()));
    return std::string(tag, laenge) + tausendstel;
}

const char* bezeichnung(LogLevel stufe) {
    switch (stufe) {
    case LogLevel::Debug:
        return "DEBUG";
    case LogLevel::Info:
        return "INFO ";
    case LogLevel::Warn:
        return "WARN ";
    case LogLevel::Error:
        return "ERROR";
    }
    return "?    ";
}

/// What stands before the text, by the kind of the entry.
std::string vorspann(const LogEntry& eintrag) {
    switch (eintrag.kind) {
    case LogKind::Message:
        return "";
    case LogKind::Enter:
        return "-> ";
    case LogKind::Leave:
        return "<- ";
    case LogKind::ConstructorEnter:
        return "-> Konstruktor ";
    case LogKind::ConstructorLeave:
        return "<- Konstruktor ";
    case LogKind::DestructorEnter:
        return "-> Destruktor ";
    case LogKind::DestructorLeave:
        return "<- Destruktor ";
    case LogKind::Tagged:
        return "[" + eintrag.tag + "] ";
    }
    return "? ";
}

void schreibeSteuerzeichen(std::string& zeile, unsigned char zeichen) {
    if (zeichen == '\n') {
        zeile += "\\n";
    } else {
        constexpr char kZiffern[] = "0123456789abcdef";
        zeile += "\\x";
        zeile += kZiffern[zeichen >> 4];
        zeile += kZiffern[zeichen & 0xF];
    }
}

/// Returns: the character that the text begins with, when it turns the direction of what follows it; otherwise 0.
unsigned richtungswechsel(std::string_view utf8) {
    if (!utf8.starts_with("\xE2\x80") && !utf8.starts_with("\xE2\x81"))
        return 0;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]) & 0x3Fu; };
    const unsigned zeichen = 0x2000u | byte(1) << 6 | byte(2);
    const bool wechselt =
        (zeichen >= 0x202A && zeichen <= 0x202E) || (zeichen >= 0x2066 && zeichen <= 0x2069);
    return wechselt ? zeichen : 0;
}

/// The text in UTF-8, without anything that a terminal or an editor would take as a command or a line's end.
std::string alsTeilDerZeile(const std::string& text) {
    const std::string utf8 = toUtf8(text);
    std::string teil;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto zeichen = static_cast<unsigned char>(utf8[i]);
        const std::string_view rest = std::string_view(utf8).substr(i);
        if (zeichen < 0x20 || zeichen == 0x7F) {
            schreibeSteuerzeichen(teil, zeichen);
        } else if (zeichen == 0xC2 && static_cast<unsigned char>(utf8[i + 1]) < 0xA0) {
            schreibeSteuerzeichen(teil, static_cast<unsigned char>(utf8[++i])); // U+0080 to U+009F
        } else if (rest.starts_with("\xE2\x80\xA8") || rest.starts_with("\xE2\x80\xA9")) {
            teil += "\\n"; // line and paragraph separator
            i += 2;
        } else if (const unsigned wechsel = richtungswechsel(rest)) {
            char puffer[16];
            std::snprintf(puffer, sizeof puffer, "\\u%04x", wechsel);
            teil += puffer;
            i += 2;
        } else {
            teil += utf8[i];
        }
    }
    return teil;
}

} // namespace

StreamLogSink::StreamLogSink(std::ostream& ausgabe) : ausgabe_(ausgabe) {}
StreamLogSink::~StreamLogSink() = default;

void StreamLogSink::write(const LogEntry& eintrag) {
    const std::string inhalt =
        alsTeilDerZeile(eintrag.category) + ": " + alsTeilDerZeile(vorspann(eintrag) + eintrag.text) + "\n";
    const std::lock_guard halter(sperre_); // taken before the time, so that lines stand in its order
    const std::string zeile =
        zeitpunkt(std::chrono::system_clock::now()) + " " + bezeichnung(eintrag.level) + " " + inhalt;
    ausgabe_.write(zeile.data(), static_cast<std::streamsize>(zeile.size()));
    ausgabe_.flush();
}

} // namespace orvo::orvoutil
