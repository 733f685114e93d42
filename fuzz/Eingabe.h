#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

/// Ends the process when an invariant does not hold, so that the fuzzer keeps the input.
inline void verlange(bool erfuellt, const char* was) {
    if (erfuellt)
        return;
    std::fprintf(stderr, "does not hold: %s\n", was);
    std::abort();
}

/// An input as texts, one per line, so that inputs are easy to read and write.
class Zeilen {
public:
    Zeilen(const std::uint8_t* daten, std::size_t laenge)
        : rest_(reinterpret_cast<const char*>(daten), laenge) {}

    /// The next line; empty when there is no more.
    std::string naechste() {
        const std::size_t ende = rest_.find('\n');
        const std::string zeile(rest_.substr(0, ende));
        rest_ = ende == std::string_view::npos ? std::string_view() : rest_.substr(ende + 1);
        return zeile;
    }
    /// The rest.
    std::string rest() const { return std::string(rest_); }

private:
    std::string_view rest_;
};
