#pragma once

#include <orvoutil/Export.h>

#include <compare>
#include <string>

namespace orvo::orvoutil {

/// A version such as "17.4.6" or "17, 4, 6, 0": numbers of any length, separated by '.' or ',', with blanks around
/// them if need be. Versions are compared number by number; missing numbers count 0, and so does a part that is
/// not a number. So "1" equals "1.0" and "1.x".
///
/// Errors: no text is refused; comparing never throws.
/// Threads: any number may read.
class ORVOUTIL_API OrvoVersion {
public:
    explicit OrvoVersion(const std::string& text);

    /// Whether every part is a number, so that nothing of the text is lost in comparing; not so for an empty text.
    bool hatNurZahlen() const noexcept;

    bool operator==(const OrvoVersion& andere) const noexcept;
    std::strong_ordering operator<=>(const OrvoVersion& andere) const noexcept;

private:
    std::string text_;
};

} // namespace orvo::orvoutil
