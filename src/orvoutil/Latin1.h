#pragma once

// The system's texts are Latin-1; source files, terminals and JSON are UTF-8.

#include <orvoutil/Export.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace orvo::orvoutil {

/// A literal converted to Latin-1 by the compiler, which refuses what Latin-1 cannot hold:
///
///     constexpr Latin1Text kUngueltig{u8"Ungültig"};
template <std::size_t N>
class Latin1Text {
public:
    consteval Latin1Text(const char8_t (&literal)[N]) {
        for (std::size_t i = 0; i + 1 < N; ++i)
            text_[laenge_++] = static_cast<char>(zeichen(literal, i));
    }

    constexpr const char* c_str() const noexcept { return text_; }
    constexpr std::string_view sicht() const noexcept { return {text_, laenge_}; }
    constexpr operator std::string_view() const noexcept { return sicht(); }
    operator std::string() const { return std::string(sicht()); }

private:
    /// The character that begins at `i`; leaves `i` at its last byte.
    static consteval unsigned zeichen(const char8_t (&literal)[N], std::size_t& i) {
        const unsigned erstes = literal[i];
        if (erstes < 0x80)
            return erstes;
        if (erstes != 0xC2 && erstes != 0xC3)
            throw "the text has a character that Latin-1 cannot hold";
        return (erstes & 0x03) << 6 | (literal[++i] & 0x3Fu);
    }

    char text_[N] = {};
    std::size_t laenge_ = 0;
};

/// Latin-1 text in UTF-8.
ORVOUTIL_API std::string latin1ToUtf8(std::string_view latin1);

/// The text in UTF-8, for texts with file names in them: valid UTF-8 stays, other bytes are taken as Latin-1.
ORVOUTIL_API std::string toUtf8(std::string_view text);

} // namespace orvo::orvoutil
