#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

/// Ends the process, so that the fuzzer keeps the input, when something that always holds does not.
inline void verlange(bool erfuellt, const char* was) {
    if (erfuellt)
        return;
    std::fprintf(stderr, "does not hold: %s\n", was);
    std::abort();
}

/// An input as texts, one a line, so that the inputs kept can be read and written by people.
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
    /// All that is left.
    std::string rest() const { return std::string(rest_); }

private:
    std::string_view rest_;
};
