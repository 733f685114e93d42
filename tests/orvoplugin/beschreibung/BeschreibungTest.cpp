#include <orvoplugin/beschreibung/Beschreibung.h>

#include <orvoplugin/plugin/OrvoPluginV1.h>

#include "TestPlugins.h"
#include "support/Beschriftung.h"
#include "support/Verzeichnis.h"

#include <gtest/gtest.h>

TEST(BeschreibungTest, AFileIsFilledAndReadBack) {
    const Verzeichnis v;
    const std::string pfad = v.kopiere(test_plugins::OffersEverything, "liba.dylib");
    EXPECT_EQ(liesBeschreibung(pfad).stand, Beschreibungsfund::LEER);
    beschrifte(pfad);
    const Beschreibungsfund fund = liesBeschreibung(pfad);
    EXPECT_EQ(fund.stand, Beschreibungsfund::GEFUNDEN) << fund.grund;
    EXPECT_EQ(fund.bytes, erfragteBeschreibung(pfad));
}
