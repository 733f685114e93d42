// Random sequences of operations, run on the libraries with real plugin files and on a naive model of them. Any
// difference is a fault; the shortest sequence found that still shows it is printed.
//
//     ORVO_MODELL_SAAT     seed of the first sequence; the next ones count on from it
//     ORVO_MODELL_FOLGEN   how many sequences

#include "Lauf.h"

#include "support/Mitschnitt.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

using modell::Aufbau;
using modell::Folge;
using modell::Lauf;

namespace {

constexpr std::size_t kSchritte = 30;

std::uint64_t umgebung(const char* name, std::uint64_t sonst) {
    const char* const wert = std::getenv(name);
    return wert && *wert ? std::strtoull(wert, nullptr, 10) : sonst;
}

std::optional<std::string> unterschied(Aufbau& aufbau, const Folge& folge, bool mitProtokoll) {
    std::optional<Mitschnitt> mitschnitt;
    if (mitProtokoll)
        mitschnitt.emplace();
    return Lauf(aufbau, mitschnitt ? &*mitschnitt : nullptr).fuehreAus(folge);
}

/// Leaves steps out, in ever smaller groups, as long as a difference remains.
Folge verkuerze(Aufbau& aufbau, Folge folge, bool mitProtokoll) {
    for (std::size_t gruppe = folge.size() / 2; gruppe > 0;) {
        bool kuerzer = false;
        for (std::size_t ab = 0; ab + gruppe <= folge.size();) {
            Folge versuch = folge;
            const auto von = versuch.begin() + static_cast<std::ptrdiff_t>(ab);
            versuch.erase(von, von + static_cast<std::ptrdiff_t>(gruppe));
            if (unterschied(aufbau, versuch, mitProtokoll)) {
                folge = std::move(versuch);
                kuerzer = true;
            } else {
                ab += gruppe;
            }
        }
        if (!kuerzer)
            gruppe /= 2;
    }
    return folge;
}

std::string bericht(Aufbau& aufbau, const Folge& folge, std::uint64_t saat, bool mitProtokoll) {
    const Folge kurze = verkuerze(aufbau, folge, mitProtokoll);
    std::string text = "seed " + std::to_string(saat) + ", " + std::to_string(kurze.size()) + " steps:\n";
    for (const modell::Schritt& schritt : kurze)
        text += "    " + schritt.text() + "\n";
    return text + unterschied(aufbau, kurze, mitProtokoll).value_or("(not seen again)");
}

} // namespace

TEST(Modell, AgreesWithTheLibrariesInRandomSequences) {
    const std::uint64_t saat = umgebung("ORVO_MODELL_SAAT", 20090101);
    const std::uint64_t folgen = umgebung("ORVO_MODELL_FOLGEN", 1500);
    std::cout << "ORVO_MODELL_SAAT=" << saat << " ORVO_MODELL_FOLGEN=" << folgen << std::endl;

    Aufbau aufbau;
    for (std::uint64_t i = 0; i < folgen; ++i) {
        modell::Erzeuger erzeuger(saat + i);
        const Folge folge = erzeuger.folge(kSchritte, aufbau.dateien().size(), aufbau.anzahlHomes());
        const bool mitProtokoll = (saat + i) % 4 == 0;
        if (unterschied(aufbau, folge, mitProtokoll))
            FAIL() << bericht(aufbau, folge, saat + i, mitProtokoll);
    }
}
