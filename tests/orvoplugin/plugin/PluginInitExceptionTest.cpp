#include <orvoplugin/plugin/PluginInitException.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using Art = PluginInitException::orvo_plugin_init_exception_t;

std::string meldung(int art, const std::string& text) {
    return PluginInitException(static_cast<Art>(art), text).what();
}

} // namespace

TEST(PluginInitException, PutsTheNameOfItsKindBeforeTheText) {
    EXPECT_EQ(meldung(1, "Grund"), "UNGUELTIGER_AUFBAU: Grund");
    EXPECT_EQ(meldung(2, "Grund"), "INITIALISIERUNGS_FEHLER: Grund");
    EXPECT_EQ(meldung(3, "Grund"), "GENERELL: Grund");
}

TEST(PluginInitException, NumbersItsKindsFromOne) {
    EXPECT_EQ(PluginInitException::UNGUELTIGER_AUFBAU, 1);
    EXPECT_EQ(PluginInitException::INITIALISIERUNGS_FEHLER, 2);
    EXPECT_EQ(PluginInitException::GENERELL, 3);
    EXPECT_EQ(sizeof(Art), 4U);
}

TEST(PluginInitException, HasNoPrefixForAnyOtherKindButCarriesIt) {
    for (const int art : {0, 4, -1, 2147483647}) {
        EXPECT_EQ(meldung(art, "Grund"), "Grund") << art;
        EXPECT_EQ(PluginInitException(static_cast<Art>(art), "").getTyp(), art);
    }
}

TEST(PluginInitException, IsJustThePrefixWithoutAText) {
    EXPECT_EQ(meldung(1, ""), "UNGUELTIGER_AUFBAU: ");
    EXPECT_EQ(meldung(2, ""), "INITIALISIERUNGS_FEHLER: ");
    EXPECT_EQ(meldung(3, ""), "GENERELL: ");
    EXPECT_EQ(meldung(4, ""), "");
}

TEST(PluginInitException, KeepsLatin1BytesOfTheText) { EXPECT_EQ(meldung(3, "f\xFCr"), "GENERELL: f\xFCr"); }

TEST(PluginInitException, KeepsItsTextAndKindInCopies) {
    auto original = std::make_unique<PluginInitException>(
        PluginInitException::GENERELL, "ein Grund, der lang genug ist, um kopiert zu werden");
    const PluginInitException kopie(*original);
    PluginInitException zugewiesen(PluginInitException::UNGUELTIGER_AUFBAU, "");
    zugewiesen = *original;
    const std::string text = original->what();
    original.reset();

    EXPECT_EQ(kopie.what(), text);
    EXPECT_EQ(kopie.getTyp(), PluginInitException::GENERELL);
    EXPECT_EQ(zugewiesen.what(), text);
    EXPECT_EQ(zugewiesen.getTyp(), PluginInitException::GENERELL);
}

TEST(PluginInitException, IsCaughtAsAStandardException) {
    try {
        throw PluginInitException(PluginInitException::UNGUELTIGER_AUFBAU, "Grund");
    } catch (const std::exception& ausnahme) {
        EXPECT_STREQ(ausnahme.what(), "UNGUELTIGER_AUFBAU: Grund");
        EXPECT_TRUE(noexcept(ausnahme.what()));
    }
}
