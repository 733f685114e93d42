#pragma once

#include <locale>
#include <string>

/// While it lives, every new stream writes numbers as "1.234", as in a host with a German locale. Needs no locale of
/// the system.
class DeutscheZahlen {
public:
    DeutscheZahlen() : vorher_(std::locale::global(std::locale(std::locale::classic(), new Punkte))) {}
    DeutscheZahlen(const DeutscheZahlen&) = delete;
    DeutscheZahlen& operator=(const DeutscheZahlen&) = delete;
    ~DeutscheZahlen() { std::locale::global(vorher_); }

private:
    struct Punkte : std::numpunct<char> {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };

    std::locale vorher_;
};
