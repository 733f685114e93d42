// Conversion of texts for terminals and JSON.

#include <orvoutil/Latin1.h>

#include "Eingabe.h"

using namespace orvo::orvoutil;

namespace {

/// The characters of a text; ends the process on invalid UTF-8. Written independently of the library's own reader.
std::u32string zeichen(const std::string& utf8) {
    std::u32string text;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto byte = [&](std::size_t n) -> std::uint32_t {
            verlange(i + n < utf8.size(), "a character is complete");
            return static_cast<unsigned char>(utf8[i + n]);
        };
        const std::uint32_t erstes = byte(0);
        const std::size_t laenge = erstes < 0x80 ? 1 : erstes < 0xE0 ? 2 : erstes < 0xF0 ? 3 : 4;
        verlange(erstes < 0x80 || (erstes >= 0xC0 && erstes < 0xF8), "a character begins as one");
        std::uint32_t wert = laenge == 1 ? erstes : erstes & (0x7Fu >> laenge);
        for (std::size_t n = 1; n < laenge; ++n) {
            verlange((byte(n) & 0xC0) == 0x80, "a character goes on as one");
            wert = wert << 6 | (byte(n) & 0x3F);
        }
        constexpr std::uint32_t kKleinstes[] = {0, 0, 0x80, 0x800, 0x10000};
        verlange(wert >= kKleinstes[laenge] && wert <= 0x10FFFF && (wert < 0xD800 || wert > 0xDFFF),
                 "a character is one, in its shortest form");
        text += static_cast<char32_t>(wert);
        i += laenge;
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t laenge) {
    const std::string text(reinterpret_cast<const char*>(daten), laenge);

    const std::u32string ausLatin1 = zeichen(latin1ToUtf8(text));
    verlange(ausLatin1.size() == text.size(), "each byte is one character");
    for (std::size_t i = 0; i < text.size(); ++i)
        verlange(ausLatin1[i] == static_cast<unsigned char>(text[i]), "with its own number");

    const std::string utf8 = toUtf8(text);
    zeichen(utf8);
    verlange(toUtf8(utf8) == utf8, "what is UTF-8 stays as it is");
    verlange(toUtf8(latin1ToUtf8(text)) == latin1ToUtf8(text), "whatever it was made from");
    return 0;
}
