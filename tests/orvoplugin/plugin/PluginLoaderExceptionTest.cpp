#include <orvoplugin/plugin/PluginLoaderException.h>

#include <orvoutil/Latin1.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

using orvo::orvoutil::Latin1Text;

namespace {

constexpr Latin1Text kUngueltig{u8"Ungültige Pluginversion"};

std::string meldung(int art, const std::string& text) {
    return PluginLoaderException(static_cast<orvo_plugin_loader_exception_typ_t>(art), text).what();
}

} // namespace

TEST(PluginLoaderException, PutsTheNameOfItsKindBeforeTheText) {
    EXPECT_EQ(meldung(1, kUngueltig.c_str()), "UNGUELTIGE_PLUGIN_VERSION: Ung\xFCltige Pluginversion");
    EXPECT_EQ(meldung(2, "Grund"), "STRUKTUR_FEHLER: Grund");
    EXPECT_EQ(meldung(3, "Grund"), "BIBLIOTHEK_FEHLER: Grund");
}

TEST(PluginLoaderException, NumbersItsKindsFromOne) {
    EXPECT_EQ(UNGUELTIGE_PLUGIN_VERSION, 1);
    EXPECT_EQ(STRUKTUR_FEHLER, 2);
    EXPECT_EQ(BIBLIOTHEK_FEHLER, 3);
    EXPECT_EQ(sizeof(orvo_plugin_loader_exception_typ_t), 4U);
}

TEST(PluginLoaderException, HasNoPrefixForAnyOtherKindButCarriesIt) {
    EXPECT_EQ(meldung(7, "x"), "x");
    for (const int art : {0, 4, 7, -1, -2147483647}) {
        EXPECT_EQ(meldung(art, "Grund"), "Grund") << art;
        EXPECT_EQ(PluginLoaderException(static_cast<orvo_plugin_loader_exception_typ_t>(art), "").getTyp(),
                  art);
    }
}

TEST(PluginLoaderException, IsJustThePrefixWithoutAText) {
    EXPECT_EQ(meldung(1, ""), "UNGUELTIGE_PLUGIN_VERSION: ");
    EXPECT_EQ(meldung(2, ""), "STRUKTUR_FEHLER: ");
    EXPECT_EQ(meldung(3, ""), "BIBLIOTHEK_FEHLER: ");
    EXPECT_EQ(meldung(0, ""), "");
}

TEST(PluginLoaderException, KeepsItsTextAndKindInCopies) {
    auto original = std::make_unique<PluginLoaderException>(
        STRUKTUR_FEHLER, "ein Grund, der lang genug ist, um kopiert zu werden");
    const PluginLoaderException kopie(*original);
    PluginLoaderException zugewiesen(BIBLIOTHEK_FEHLER, "");
    zugewiesen = *original;
    const std::string text = original->what();
    original.reset();

    EXPECT_EQ(kopie.what(), text);
    EXPECT_EQ(kopie.getTyp(), STRUKTUR_FEHLER);
    EXPECT_EQ(zugewiesen.what(), text);
    EXPECT_EQ(zugewiesen.getTyp(), STRUKTUR_FEHLER);
}

TEST(PluginLoaderException, IsCaughtAsAStandardException) {
    try {
        throw PluginLoaderException(BIBLIOTHEK_FEHLER, "Grund");
    } catch (const std::exception& ausnahme) {
        EXPECT_STREQ(ausnahme.what(), "BIBLIOTHEK_FEHLER: Grund");
        EXPECT_TRUE(noexcept(ausnahme.what()));
    }
}
