#include <orvoutil/StreamLogSink.h>

#include <orvoutil/Latin1.h>
#include <orvoutil/StringUtil.h>

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
    char bisSekunde[32];
    std::strftime(bisSekunde, sizeof bisSekunde, "%Y-%m-%d %H:%M:%S.", &ortszeit);
    return bisSekunde + formatNumeric(std::to_string(rest.count()), 3);
}

constexpr const char* kStufen[] = {"DEBUG", "INFO ", "WARN ", "ERROR"};
constexpr const char* kVorspann[] = {
    "", "-> ", "<- ", "-> Konstruktor ", "<- Konstruktor ", "-> Destruktor ", "<- Destruktor "};

/// The text that stands for a value in a table, in the order of its enumeration.
template <class Aufzaehlung, std::size_t N>
const char* textFuer(Aufzaehlung wert, const char* const (&texte)[N], const char* sonst) {
    const auto platz = static_cast<std::size_t>(wert);
    return platz < N ? texte[platz] : sonst;
}

std::string vorspann(const LogEntry& eintrag) {
    return eintrag.kind == LogKind::Tagged ? "[" + eintrag.tag + "] "
                                           : textFuer(eintrag.kind, kVorspann, "? ");
}

void schreibeSteuerzeichen(std::string& zeile, unsigned zeichen, const char* form = "\\x%02x") {
    char puffer[8] = "\\n";
    if (zeichen != '\n')
        std::snprintf(puffer, sizeof puffer, form, zeichen);
    zeile += puffer;
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

/// The text in UTF-8, with everything escaped that a terminal or an editor takes as a command or a line's end.
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
            schreibeSteuerzeichen(teil, wechsel, "\\u%04x");
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
    const std::string zeile = zeitpunkt(std::chrono::system_clock::now()) + " " +
                              textFuer(eintrag.level, kStufen, "?    ") + " " + inhalt;
    ausgabe_.write(zeile.data(), static_cast<std::streamsize>(zeile.size()));
    ausgabe_.flush();
}

} // namespace orvo::orvoutil
