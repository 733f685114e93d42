// An example client: see ../README.md. Exit status: 0 when all results are as expected, 1 when one is not, 2 for a
// wrong call.

#include "Vorfuehrung.h"

#include <orvoutil/Latin1.h>

#include <exception>
#include <filesystem>
#include <iostream>
#include <span>

namespace {

enum Ende : int { WIE_ERWARTET = 0, ANDERS = 1, FALSCHER_AUFRUF = 2 };

bool istAufrufGueltig(std::span<char* const> argumente) {
    if (argumente.size() != 4) {
        std::cerr << "Aufruf: beispielclient <erstes Home> <zweites Home> <Datenverzeichnis>\n";
        return false;
    }
    for (const char* const verzeichnis : argumente.subspan(1)) {
        std::error_code fehler;
        if (!std::filesystem::is_directory(verzeichnis, fehler)) {
            std::cerr << "Kein Verzeichnis: " << verzeichnis << '\n';
            return false;
        }
    }
    return true;
}

} // namespace

int main(int argc, char* argv[]) {
    const std::span<char* const> argumente(argv, static_cast<std::size_t>(argc));
    try {
        if (!istAufrufGueltig(argumente))
            return FALSCHER_AUFRUF;
        return Vorfuehrung(argumente[1], argumente[2], argumente[3]).laufe() ? WIE_ERWARTET : ANDERS;
    } catch (const std::exception& ausnahme) {
        std::cerr << "Abbruch: " << orvo::orvoutil::toUtf8(ausnahme.what()) << '\n';
        return ANDERS;
    }
}
