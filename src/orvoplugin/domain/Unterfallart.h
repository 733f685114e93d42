#pragma once

#include <orvoutil/StringUtil.h>

#include <cstdint>
#include <string>

/// Sub-case type ("Unterfallart") of a tax submission: the kind of record that is submitted, such as a
/// wage-tax certificate. It is known by a number (10) or, where there is none, by a name ("LSTB").
///
/// Errors: `std::bad_alloc`.
/// Encoding: names are Latin-1; comparing ignores the case of ASCII letters only.
class Unterfallart {
public:
    /// The number of a sub-case type that has only a name.
    enum : std::int32_t { OHNE_NUMMER = -99 };

    // The constructors are templates because std::string is not constexpr everywhere (not in libc++ before 15): then a
    // template's constexpr has no effect, and any other constructor's is an error.

    /// The sub-case type of that number; its name is the number in decimal. `OHNE_NUMMER` gives one of the name "-99".
    template <class = void>
    constexpr Unterfallart(int nummer) // NOLINT(google-explicit-constructor): a number stands for it
        : nummer_(nummer), name_(orvo::orvoutil::Ziffernfolge(nummer).text()) {}

    /// The sub-case type of that name. A name of digits also gives a number, so "010" has the number 10 and the name
    /// "010". A null pointer counts as the empty text.
    template <class = void>
    constexpr Unterfallart(const char* text) // NOLINT(google-explicit-constructor): a name stands for it
        : nummer_(OHNE_NUMMER), name_(text ? text : "") {
        if (orvo::orvoutil::isNumeric(name_))
            nummer_ = orvo::orvoutil::string2Int(name_);
    }

    /// The name "notset", which stands for any sub-case type.
    static constexpr const char* beliebig() noexcept { return "notset"; }

    constexpr std::int32_t getNummer() const noexcept { return nummer_; }
    constexpr const std::string& getName() const noexcept { return name_; }

    /// The order and equality of sub-case types: by number if both have one, otherwise by name, ignoring case. By
    /// contract: with numbers beside names that begin with digits, the order need not be transitive.
    /// Returns: -1, 0 or 1.
    constexpr int compare(const Unterfallart& other) const noexcept {
        if (nummer_ != OHNE_NUMMER && other.nummer_ != OHNE_NUMMER)
            return (nummer_ > other.nummer_) - (nummer_ < other.nummer_);
        return orvo::orvoutil::compareIgnoreCase(name_, other.name_);
    }

    /// Whether `compare` gives 0.
    friend constexpr bool operator==(const Unterfallart& a, const Unterfallart& b) noexcept {
        if (a.nummer_ != OHNE_NUMMER && b.nummer_ != OHNE_NUMMER)
            return a.nummer_ == b.nummer_;
        return orvo::orvoutil::equalsIgnoreCase(a.name_, b.name_);
    }
    friend constexpr bool operator<(const Unterfallart& a, const Unterfallart& b) noexcept {
        return a.compare(b) < 0;
    }

private:
    template <bool>
    friend class Beschreibungsstrom;

    std::int32_t nummer_;
    std::string name_;
};
