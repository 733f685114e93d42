#pragma once

// Small helpers for texts. Letter case is that of ASCII, whatever the locale; all other bytes stay as they are.
// Errors: none but want of memory. Threads: any.

#include <orvoutil/Export.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace orvo::orvoutil {

/// The number in decimal.
ORVOUTIL_API std::string int2String(int zahl);
/// The number in decimal.
ORVOUTIL_API std::string long2String(long zahl);

/// The number that the whole text is: digits, with a sign if need be.
/// Returns: 0 for any other text, and for a number that does not fit 32 signed bits.
ORVOUTIL_API int string2Int(std::string_view text) noexcept;

/// Whether the text is digits only, at least one, and their value fits 32 signed bits.
ORVOUTIL_API bool isNumeric(std::string_view text) noexcept;

/// The text with zeros on its left up to that many bytes. It is never cut.
ORVOUTIL_API std::string formatNumeric(std::string_view text, std::size_t breite);

/// The text in lower case; only the letters of ASCII change.
ORVOUTIL_API std::string tolower(std::string_view text);
/// The letter in lower case; any other character as it is.
constexpr char tolower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Whether the text ends so, letter case included.
ORVOUTIL_API bool endsWith(std::string_view text, std::string_view ende) noexcept;

/// Compares bytewise, ignoring letter case. Returns: -1, 0 or 1.
ORVOUTIL_API int compareIgnoreCase(std::string_view a, std::string_view b) noexcept;

/// The text without the first occurrence of the pattern, which stands for itself, byte by byte.
ORVOUTIL_API std::string removeSpecialPatterns(std::string_view text, std::string_view muster);

} // namespace orvo::orvoutil
