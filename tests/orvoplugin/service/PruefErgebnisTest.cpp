#include <orvoplugin/service/PruefErgebnis.h>

#include <gtest/gtest.h>

namespace {

TEST(PruefErgebnis, StartsWithoutMessages) { EXPECT_TRUE(PruefErgebnis().getMeldungen().empty()); }

TEST(PruefErgebnis, KeepsMessagesInTheOrderInWhichTheyWereFound) {
    PruefErgebnis ergebnis;
    const auto& meldungen = ergebnis.getMeldungen();
    ergebnis.fuegeHinzu(7, "Steuernummer", "ung\xFCltig");
    ergebnis.fuegeHinzu(-1, "", "leer");
    ergebnis.fuegeHinzu(7, "Steuernummer", "ung\xFCltig");
    ASSERT_EQ(ergebnis.getMeldungen().size(), 3u) << "equal messages stand beside each other";
    EXPECT_EQ(meldungen.size(), 3u) << "a reference shows the later messages too";
    EXPECT_EQ(ergebnis.getMeldungen()[0].code, 7);
    EXPECT_EQ(ergebnis.getMeldungen()[0].feld, "Steuernummer");
    EXPECT_EQ(ergebnis.getMeldungen()[0].text, "ung\xFCltig");
    EXPECT_EQ(ergebnis.getMeldungen()[1].code, -1);
    EXPECT_EQ(ergebnis.getMeldungen()[1].feld, "");
    EXPECT_EQ(ergebnis.getMeldungen()[1].text, "leer");
}

TEST(PruefErgebnis, IsCopiedWithItsMessages) {
    PruefErgebnis ergebnis;
    ergebnis.fuegeHinzu(7, "Feld", "Text");
    const PruefErgebnis kopie(ergebnis);
    PruefErgebnis andere;
    andere.fuegeHinzu(9, "", "");
    andere = ergebnis;
    ergebnis.fuegeHinzu(8, "", "");
    ASSERT_EQ(kopie.getMeldungen().size(), 1u);
    ASSERT_EQ(andere.getMeldungen().size(), 1u);
    EXPECT_EQ(andere.getMeldungen()[0].code, 7);
}

} // namespace
