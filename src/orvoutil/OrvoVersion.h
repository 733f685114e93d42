#pragma once

#include <orvoutil/Export.h>

#include <compare>
#include <string>

namespace orvo::orvoutil {

/// A version such as "17.4.6" or "17, 4, 6, 0": numbers of any length, separated by '.' or ',', with blanks around
/// them if need be. Versions are compared number by number; missing numbers and parts that are no numbers count 0, so
/// "1" equals "1.0" and "1.x". No text is refused.
class ORVOUTIL_API OrvoVersion {
public:
    explicit OrvoVersion(const std::string& text);

    /// Whether every part is a number; false for an empty text.
    bool hatNurZahlen() const noexcept;

    bool operator==(const OrvoVersion& andere) const noexcept;
    std::strong_ordering operator<=>(const OrvoVersion& andere) const noexcept;

private:
    std::string text_;
};

} // namespace orvo::orvoutil
