// The check of a library's file before loading, and the tool's reader; the input is the file. Both always give the same
// result, and the reader never leaves the file, whatever its contents.

#include <orvoelf/Dateiblick.h>

#include "Speicher.h"
#include "datei/ElfInhalt.h"

#include <bit>
#include <cstring>
#include <random>
#include <string>

using namespace orvo::orvoelf;

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* daten, std::size_t laenge, std::size_t hoechstens);

/// Usually changes one field in place: an input with shifted bytes is refused at once.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* daten, std::size_t laenge,
                                               std::size_t hoechstens, unsigned saat) {
    std::minstd_rand zufall(saat);
    const std::size_t breite = std::size_t{1} << zufall() % 4;
    if (laenge < breite || zufall() % 8 == 0)
        return LLVMFuzzerMutate(daten, laenge, hoechstens);
    std::uint8_t* const feld = daten + zufall() % (laenge / breite) * breite;
    std::uint64_t wert = 0;
    static_assert(std::endian::native == std::endian::little, "the front of a number is its low part");
    std::memcpy(&wert, feld, breite);
    const std::uint64_t werte[] = {0,
                                   1,
                                   ~std::uint64_t{0},
                                   wert + 1,
                                   wert - 1,
                                   wert + 8,
                                   wert - 8,
                                   wert ^ std::uint64_t{1} << zufall() % (8 * breite),
                                   laenge,
                                   laenge - wert,
                                   ~std::uint64_t{0} - zufall() % 256,
                                   zufall() % laenge};
    wert = werte[zufall() % std::size(werte)];
    std::memcpy(feld, &wert, breite);
    return laenge;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t laenge) {
    const Speicher speicher({reinterpret_cast<const char*>(daten), laenge});
    const Dateibefund befund = blickeAufDatei(speicher.pfad());
    verlange(befund.istLadbar() == befund.grund.empty(), "a file is refused with a reason");
    verlange(blickeAufDatei(speicher.pfad()).grund == befund.grund, "the result is always the same");
    werkzeug::Bibliotheksinhalt inhalt; // the reader must also handle files that the check refuses
    const std::string grund = werkzeug::liesElf(speicher.pfad(), inhalt);
    verlange(grund.empty() || (inhalt.exportierte.empty() && inhalt.benoetigte.empty()),
             "nothing is taken down of a file that cannot be read");
    return 0;
}
