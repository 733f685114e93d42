// The verdict over a long run.

#include "soak/Verlauf.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

enum Groesse : std::size_t { HAUFEN, RESIDENT, ABBILDUNGEN, DESKRIPTOREN };

constexpr int kProben = 200;
constexpr long kZyklenJeProbe = 500; // as in a night

/// A run in which that figure is as the function says for a cycle.
template <class Funktion>
Verlauf verlauf(Groesse groesse, Funktion wert) {
    static std::ostringstream csv;
    Verlauf neuer(csv);
    for (long probe = 0; probe < kProben; ++probe) {
        Messung messung{};
        messung[groesse] = wert(probe * kZyklenJeProbe);
        neuer.nimmAuf(probe * kZyklenJeProbe, messung);
    }
    return neuer;
}

TEST(VerlaufTest, AHundredBytesInEachCycleAreFoundInANight) {
    const Verlauf leckt = verlauf(HAUFEN, [](long zyklus) { return 100.0 * static_cast<double>(zyklus); });
    EXPECT_FALSE(leckt.istEben(HAUFEN));
    EXPECT_TRUE(leckt.istEben(RESIDENT));
    EXPECT_NEAR(leckt.anstieg(HAUFEN), 100.0 * kZyklenJeProbe * (kProben * 3 / 4 - 1), 1);

    const auto resident = [](long zyklus) {
        return std::floor(100.0 * static_cast<double>(zyklus) / 4096) * 4;
    };
    EXPECT_FALSE(verlauf(RESIDENT, resident).istEben(RESIDENT));
}

TEST(VerlaufTest, ADescriptorThatIsLostOnceInAWhileIsFound) {
    const auto offene = [](long zyklus) { return 5.0 + static_cast<double>(zyklus / 20000); };
    EXPECT_FALSE(verlauf(DESKRIPTOREN, offene).istEben(DESKRIPTOREN));
}

TEST(VerlaufTest, MemoryThatSettlesIsLevel) {
    const auto setztSich = [](long zyklus) {
        return 9000 - 5000 * std::exp(-static_cast<double>(zyklus) / 10000);
    };
    EXPECT_TRUE(verlauf(RESIDENT, setztSich).istEben(RESIDENT));
}

TEST(VerlaufTest, SingleJumpsAreLevel) {
    const auto springt = [](long zyklus) {
        return 9000.0 + (zyklus > 80000 ? 4000 : 0) + (zyklus % 7000 == 0 ? 9e6 : 0);
    };
    EXPECT_TRUE(verlauf(RESIDENT, springt).istEben(RESIDENT));
}

TEST(VerlaufTest, TheTableHasALineForEachSample) {
    std::ostringstream csv, urteil;
    Verlauf kurzer(csv);
    kurzer.nimmAuf(0, {1, 2, 3, 4, 5, 6});
    EXPECT_TRUE(kurzer.urteile(urteil));
    kurzer.nimmAuf(8, {1e6, 2, 3, 4, 5, 6});
    EXPECT_EQ(
        csv.str(),
        "cycle,heap in use (bytes),resident memory (KiB),mappings,descriptors,libraries,services in use\n"
        "0,1,2,3,4,5,6\n8,1000000,2,3,4,5,6\n");
    EXPECT_FALSE(kurzer.urteile(urteil));
    EXPECT_NE(urteil.str().find("NOT LEVEL  heap in use: rises by 999999.0 bytes (up to 16384.0)\n"),
              std::string::npos);
}

} // namespace
