#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>

#include "orvoplugin/plugin/erweiterung/Plaetze.h"

#include <gtest/gtest.h>

namespace {

#if ORVO_TEST_KENNT_PLAETZE

TEST(Plaetze, OfExtensionsAreTheDestructorThenClone) {
    EXPECT_EQ(platz(&OrvoErweiterung::clone), 2u);
    EXPECT_EQ(platz(&OrvoServiceErweiterung::clone), 2u);
    EXPECT_EQ(platz(&OrvoFADatenServiceErweiterung::clone), 2u);
    EXPECT_EQ(platz(&OrvoValidierungsServiceErweiterung::clone), 2u);
}

TEST(Plaetze, OfExtensionsForPairsFollowInTheirOrder) {
    using UaVz = OrvoUaVzServiceErweiterung;
    EXPECT_EQ(platz(&UaVz::clone), 2u);
    EXPECT_EQ(platz(&UaVz::getUnterfallArten), 3u);
    EXPECT_EQ(platz(&UaVz::getVeranlagungszeitraeumeFuerUnterfallArt), 4u);
    EXPECT_EQ(platz(&UaVz::getVeranlagungszeitraumUnterfallartMap), 5u);
    EXPECT_EQ(platz(&UaVz::addUnterstuetzteUnterfallArt), 6u);
    EXPECT_EQ(platz(&UaVz::istUnterfallartUndVeranlagungszeitraumUnterstuetzt), 7u);
}

#endif

/// Calls that would reach another function if they were virtual.
template <class Basis>
class NichtUeberschreibbar : public Basis {
public:
    using Basis::Basis;
    void holeService() {} // another result: would not compile if it were virtual
};

TEST(Plaetze, AreNotAddedByTheConcreteClasses) {
    const Unterfallart ua(10);
    const Veranlagungszeitraum vz(2009, "YYYY");
    NichtUeberschreibbar<OrvoFADatenServiceErweiterung>().holeService();
    NichtUeberschreibbar<OrvoValidierungsServiceErweiterung>(ua, vz).holeService();
    NichtUeberschreibbar<OrvoFeldInfoDatenServiceErweiterung>(ua, vz).holeService();
    NichtUeberschreibbar<OrvoFTDatenServiceErweiterung>(ua, vz).holeService();
    NichtUeberschreibbar<OrvoXPathMappingServiceErweiterung>(ua, vz).holeService();
    NichtUeberschreibbar<OrvoDatensatzReaderErweiterung>(ua, vz).holeService();
}

} // namespace
