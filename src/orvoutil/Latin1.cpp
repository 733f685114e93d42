#include <orvoutil/Latin1.h>

#include <bit>

namespace orvo::orvoutil {

namespace {

void haengeAn(std::string& utf8, char latin1) {
    const auto zeichen = static_cast<unsigned char>(latin1);
    if (zeichen < 0x80) {
        utf8 += latin1;
    } else {
        utf8 += static_cast<char>(0xC0 | zeichen >> 6);
        utf8 += static_cast<char>(0x80 | (zeichen & 0x3F));
    }
}

/// Returns: the length of the valid UTF-8 sequence of several bytes that the text begins with; 0 when it begins with none.
std::size_t laengeDerSequenz(std::string_view text) {
    constexpr unsigned kKleinstes[] = {0x80, 0x800, 0x10000}; // by length, from two: shorter ones hold less
    const auto erstes = static_cast<unsigned char>(text.front());
    const auto laenge = static_cast<std::size_t>(std::countl_one(erstes));
    if (laenge < 2 || laenge > 4 || laenge > text.size())
        return 0;
    unsigned zeichen = erstes & (0xFFu >> laenge);
    for (std::size_t i = 1; i < laenge; ++i) {
        const auto weiteres = static_cast<unsigned char>(text[i]);
        if ((weiteres & 0xC0) != 0x80)
            return 0;
        zeichen = zeichen << 6 | (weiteres & 0x3Fu);
    }
    const bool ersatz = zeichen >= 0xD800 && zeichen < 0xE000; // halves of UTF-16 pairs
    const bool gueltig = zeichen >= kKleinstes[laenge - 2] && zeichen <= 0x10FFFF && !ersatz;
    return gueltig ? laenge : 0;
}

} // namespace

std::string latin1ToUtf8(std::string_view latin1) {
    std::string utf8;
    for (const char zeichen : latin1)
        haengeAn(utf8, zeichen);
    return utf8;
}

std::string toUtf8(std::string_view text) {
    std::string utf8;
    while (!text.empty()) {
        const std::size_t laenge = laengeDerSequenz(text);
        if (laenge == 0)
            haengeAn(utf8, text.front());
        else
            utf8 += text.substr(0, laenge);
        text.remove_prefix(laenge == 0 ? 1 : laenge);
    }
    return utf8;
}

} // namespace orvo::orvoutil
