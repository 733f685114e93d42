// The check of a library's file: the input is the file. It never reads beyond the end, and always comes to the same
// result.

#include <orvoutil/ladepruefung/ElfInhalt.h>
#include <orvoutil/ladepruefung/ElfPruefung.h>

#include "Eingabe.h"

#include <bit>
#include <cstring>
#include <random>

using namespace orvo::orvoutil;

namespace {

class Speicher final : public Bytequelle {
public:
    Speicher(const std::uint8_t* daten, std::size_t laenge, std::size_t anfang)
        : daten_(daten), laenge_(laenge), anfang_(anfang) {}

    std::uint64_t groesse() const override { return laenge_; }
    bool lies(std::uint64_t ab, void* ziel, std::size_t anzahl) override {
        verlange(anzahl > 0 && anzahl <= laenge_ && ab <= laenge_ - anzahl, "reads inside the file");
        verlange(++lesungen_ < kVieleLesungen, "comes to an end");
        std::memcpy(ziel, daten_ + ab, anzahl);
        return true;
    }
    std::span<const unsigned char> anfang() const override { return {daten_, anfang_}; }

private:
    static constexpr int kVieleLesungen = 100000;
    const std::uint8_t* daten_;
    std::size_t laenge_, anfang_; // the first bytes are in memory
    int lesungen_ = 0;
};

} // namespace

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* daten, std::size_t laenge, std::size_t hoechstens);

/// Mostly changes one field where it stands: what shifts bytes only breaks the file at once.
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
    Speicher speicher(daten, laenge, 0);
    const std::string grund = pruefeElf(speicher);
    for (const std::size_t imSpeicher : {std::size_t{0}, laenge / 2, laenge}) {
        Speicher nochmal(daten, laenge, imSpeicher);
        verlange(pruefeElf(nochmal) == grund, "the result is always the same, however much is in memory");
    }
    Speicher zumLesen(daten, laenge, 0);
    Bibliotheksinhalt inhalt;
    const std::string beimLesen = liesElf(zumLesen, inhalt); // refuses a little more: too many names
    verlange(grund.empty() || beimLesen == grund, "what does not pass the check is not read");
    return 0;
}
