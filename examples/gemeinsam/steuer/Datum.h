#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace steuer {

using Datum = std::chrono::sys_days;

/// Reads a day of the calendar written 31.12.2009: two digits, two digits, four digits, and nothing else.
/// Returns: nothing for a text of another form, and for a day that does not exist.
std::optional<Datum> liesDatum(std::string_view text) noexcept;

/// The days from `von` to `bis`, both included; none when `bis` is before `von`.
struct Zeitspanne {
    Datum von;
    Datum bis;

    bool enthaelt(Datum tag) const noexcept { return von <= tag && tag <= bis; }
};

} // namespace steuer
