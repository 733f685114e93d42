// Random sequences of operations, run on the libraries with real plugin files and on a naive model of them. Any
// difference is a fault, and so is a crash; the shortest sequence found that still shows it is printed.
//
//     ORVO_MODELL_SAAT     seed of the first sequence; the next ones count up from it
//     ORVO_MODELL_FOLGEN   how many sequences

#include "Kindprozess.h"
#include "Lauf.h"

#include "support/Mitschnitt.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>

using modell::Aufbau;
using modell::Folge;
using modell::Lauf;

namespace {

constexpr std::size_t kSchritte = 30;
constexpr std::uint64_t kJeProzess = 100; // sequences that run one after the other in one process

std::uint64_t umgebung(const char* name, std::uint64_t sonst) {
    const char* const wert = std::getenv(name);
    return wert && *wert ? std::strtoull(wert, nullptr, 10) : sonst;
}

class ModellTest : public testing::Test {
protected:
    Folge folge(std::uint64_t saat) const {
        return modell::Erzeuger(saat).folge(kSchritte, aufbau_.dateien().size(), aufbau_.anzahlHomes());
    }

    /// Every sequence runs on plugins that are asked, and on plugins that are loaded from their descriptions. Every fourth
    /// one runs with a log.
    std::optional<std::string> unterschied(const Folge& folge, std::uint64_t saat) {
        for (const bool eingebettet : {false, true}) {
            std::optional<Mitschnitt> mitschnitt;
            if (saat % 4 == 0)
                mitschnitt.emplace();
            if (auto erster =
                    Lauf(aufbau_, eingebettet, mitschnitt ? &*mitschnitt : nullptr).fuehreAus(folge))
                return (eingebettet ? "from descriptions: " : "") + *erster;
        }
        return std::nullopt;
    }

    std::optional<std::string> unterschiedEinzeln(const Folge& folge, std::uint64_t saat) {
        return imKindprozess([&] { return unterschied(folge, saat); });
    }

    /// Leaves steps out, in smaller and smaller groups, as long as a difference remains.
    Folge verkuerze(Folge folge, std::uint64_t saat) {
        for (std::size_t gruppe = folge.size() / 2; gruppe > 0;) {
            bool kuerzer = false;
            for (std::size_t ab = 0; ab + gruppe <= folge.size();) {
                Folge versuch = folge;
                const auto von = versuch.begin() + static_cast<std::ptrdiff_t>(ab);
                versuch.erase(von, von + static_cast<std::ptrdiff_t>(gruppe));
                if (unterschiedEinzeln(versuch, saat)) {
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

    std::string bericht(std::uint64_t saat) {
        const Folge kurze = verkuerze(folge(saat), saat);
        std::string text = "seed " + std::to_string(saat) + ", " + std::to_string(kurze.size()) + " steps:\n";
        for (const modell::Schritt& schritt : kurze)
            text += "    " + schritt.text() + "\n";
        return text + unterschiedEinzeln(kurze, saat).value_or("(not seen again)");
    }

    /// Runs the sequences of those seeds in one process. Returns: the failure, if any.
    std::optional<std::string> pruefe(std::uint64_t von, std::uint64_t bis) {
        const auto gemeinsam = imKindprozess([&] {
            std::optional<std::string> erster;
            for (std::uint64_t saat = von; saat < bis && !erster; ++saat)
                erster = unterschied(folge(saat), saat);
            return erster;
        });
        if (!gemeinsam)
            return std::nullopt;
        for (std::uint64_t saat = von; saat < bis; ++saat)
            if (unterschiedEinzeln(folge(saat), saat))
                return bericht(saat);
        return "seeds " + std::to_string(von) + " to " + std::to_string(bis - 1) + " together: " + *gemeinsam;
    }

    Aufbau aufbau_;
};

} // namespace

TEST_F(ModellTest, AgreesWithTheLibrariesInRandomSequences) {
    const std::uint64_t saat = umgebung("ORVO_MODELL_SAAT", 20090101);
    const std::uint64_t ende = saat + umgebung("ORVO_MODELL_FOLGEN", FOLGEN);
    std::cout << "ORVO_MODELL_SAAT=" << saat << " ORVO_MODELL_FOLGEN=" << ende - saat << std::endl;
    for (std::uint64_t von = saat; von < ende; von += kJeProzess)
        if (const auto fehler = pruefe(von, std::min(von + kJeProzess, ende)))
            FAIL() << *fehler;
}
