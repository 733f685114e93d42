#pragma once

#include <orvoplugin/Export.h>

#include <cstdint>
#include <string>

/// Sub-case type ("Unterfallart") of a tax submission: the kind of record that is submitted, such as a
/// wage-tax certificate. It is known by a number (10) or, where there is none, by a name ("LSTB").
///
/// A plain value: copied freely, owns its name, never throws but for want of memory.
///
/// Encoding: names are Latin-1; letters are compared without regard to case in ASCII only.
/// Threads: one thread at a time, as everywhere in this library.
class ORVOPLUGIN_API Unterfallart {
public:
    /// The number of a sub-case type that has none and is known by its name only.
    enum : std::int32_t { OHNE_NUMMER = -99 };

    /// The sub-case type of that number; its name is the number's decimal text. `OHNE_NUMMER` given here makes
    /// a sub-case type that is known by its name "-99".
    Unterfallart(int nummer); // NOLINT(google-explicit-constructor): a number stands for its sub-case type

    /// The sub-case type of that text. The name is the text as given; a text of digits also has that number,
    /// so "010" has the number 10 and the name "010". A null pointer counts as the empty text.
    Unterfallart(
        const char* text); // NOLINT(google-explicit-constructor): a name stands for its sub-case type

    std::int32_t getNummer() const { return nummer_; }
    const std::string& getName() const { return name_; }

    /// The order of sub-case types, by which they are also equal or not.
    ///
    /// Two numbers compare as numbers. As soon as one side has no number, both compare by name, ignoring case:
    /// 10 stands before "LSTB" because the text 10 stands before the text lstb. The rule is meant this way and
    /// binds whoever files anything by sub-case type. Mixing names that begin with digits with numbers can
    /// therefore give an order that is not transitive.
    ///
    /// Returns: -1, 0 or 1.
    int compare(const Unterfallart& other) const noexcept;

    friend bool operator==(const Unterfallart& a, const Unterfallart& b) noexcept {
        return a.compare(b) == 0;
    }
    friend bool operator<(const Unterfallart& a, const Unterfallart& b) noexcept { return a.compare(b) < 0; }

private:
    std::int32_t nummer_;
    std::string name_;
};
