// The loader with real libraries: why they are refused, what they throw, and that they leave the process.

#include <orvoplugin/plugin/OrvoPluginLoader.h>

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/PluginInitException.h>
#include <orvoplugin/plugin/PluginLoaderException.h>

#include "orvoplugin/plugin/Faelle.h"
#include "orvoplugin/plugin/Werkstatt.h"
#include "support/Beschriftung.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>

using orvo::orvoutil::SharedLib;

namespace {

/// Loads and returns the text of the exception; reads everything that the exception refers to.
template <class Ladevorgang>
std::optional<std::string> grund(const std::string& pfad, Ladevorgang lade, bool offenErwartet) {
    try {
        lade();
        ADD_FAILURE() << "did not throw";
    } catch (const std::exception& ausnahme) {
        EXPECT_EQ(istEingeblendet(pfad), offenErwartet);
        return ausnahme.what();
    } catch (...) {
        EXPECT_EQ(istEingeblendet(pfad), offenErwartet);
    }
    return std::nullopt;
}

std::optional<std::string> erwartet(const Bibliotheksfall& fall) {
    return fall.text ? std::optional<std::string>(fall.text) : std::nullopt;
}

constexpr char kUngueltig[] = "UNGUELTIGE_PLUGIN_VERSION: Ung\xFCltige Pluginversion";

const Bibliotheksfall kAbgelehnte[] = {
    {"WithoutEntryPoints", test_plugins::WithoutEntryPoints,
     "STRUKTUR_FEHLER: Einsprungpunkt(orvo_plugin_get_types) in Bibliothek nicht gefunden."},
    {"WithoutInitialize", test_plugins::WithoutInitialize,
     "UNGUELTIGER_AUFBAU: Initialisierungsfunktion \"orvo_plugin_initialize\" nicht gefunden."},
    {"DeclaresNoType", test_plugins::DeclaresNoType,
     "STRUKTUR_FEHLER: Einsprungpunkt(orvo_plugin_get_types) nennt keine Pluginversion."},
    {"DeclaresTypeTwo", test_plugins::DeclaresTypeTwo, kUngueltig},
    {"DeclaresTypeZero", test_plugins::DeclaresTypeZero, kUngueltig},
    {"DeclaresNegativeType", test_plugins::DeclaresNegativeType, kUngueltig},
    {"DeclaresTypesOneAndTwo", test_plugins::DeclaresTypesOneAndTwo, kUngueltig},
    {"DeclaresTypesTwoAndOne", test_plugins::DeclaresTypesTwoAndOne, kUngueltig},
};

struct Bibliothek {
    explicit Bibliothek(const char* quelle) : pfad(ort.kopiere(quelle, "libx.dylib")) {}
    SharedLib* griff() const { return new SharedLib(pfad, false); }

    const Verzeichnis ort;
    const std::string pfad;
};

class OrvoPluginLoaderRefused : public testing::TestWithParam<Bibliotheksfall> {};
class OrvoPluginLoaderThrowing : public testing::TestWithParam<Bibliotheksfall> {};

} // namespace

TEST_P(OrvoPluginLoaderRefused, SaysWhyAndHasClosedTheLibraryAlready) {
    const Bibliothek bibliothek(GetParam().bibliothek);
    const int deskriptoren = offeneDeskriptoren();
    OrvoPluginLoader loader;
    EXPECT_EQ(grund(
                  bibliothek.pfad, [&] { loader.loadPlugin(bibliothek.griff()); }, false),
              erwartet(GetParam()));
    EXPECT_EQ(offeneDeskriptoren(), deskriptoren);
}

INSTANTIATE_TEST_SUITE_P(Libraries, OrvoPluginLoaderRefused, testing::ValuesIn(kAbgelehnte), nameDesFalls);

TEST_P(OrvoPluginLoaderThrowing, KeepsTheLibraryOpenAsLongAsTheLoaderLives) {
    const Bibliothek bibliothek(GetParam().bibliothek);
    const int deskriptoren = offeneDeskriptoren();
    {
        OrvoPluginLoader loader;
        EXPECT_EQ(grund(
                      bibliothek.pfad, [&] { loader.loadPlugin(bibliothek.griff()); }, true),
                  erwartet(GetParam()));
        EXPECT_TRUE(istEingeblendet(bibliothek.pfad));
    }
    EXPECT_FALSE(istEingeblendet(bibliothek.pfad));
    EXPECT_EQ(offeneDeskriptoren(), deskriptoren);
}

TEST_P(OrvoPluginLoaderThrowing, KeepsTheLibraryOpenUntilTheLoadersNextOne) {
    const Bibliothek bibliothek(GetParam().bibliothek);
    const Bibliothek naechste(test_plugins::DescribedByFile);
    OrvoPluginLoader loader;
    grund(
        bibliothek.pfad, [&] { loader.loadPlugin(bibliothek.griff()); }, true);
    const std::unique_ptr<OrvoPlugin> plugin(loader.loadPlugin(naechste.griff()));
    EXPECT_NE(plugin, nullptr);
    EXPECT_FALSE(istEingeblendet(bibliothek.pfad));
}

TEST_P(OrvoPluginLoaderThrowing, LeavesTheLibraryToTheNextLoaderWhenTheExceptionDestroysIt) {
    const Bibliothek bibliothek(GetParam().bibliothek);
    const Bibliothek naechste(test_plugins::DescribedByFile);
    EXPECT_EQ(grund(
                  bibliothek.pfad, [&] { OrvoPluginLoader().loadPlugin(bibliothek.griff()); }, true),
              erwartet(GetParam()));
    const std::unique_ptr<OrvoPlugin> plugin(OrvoPluginLoader().loadPlugin(naechste.griff()));
    EXPECT_FALSE(istEingeblendet(bibliothek.pfad));
}

TEST_P(OrvoPluginLoaderThrowing, DoesNotCloseTheLibraryUnderAnExceptionThatIsBeingHandled) {
    const Bibliothek bibliothek(GetParam().bibliothek);
    const Bibliothek andere(test_plugins::DescribedByFile);
    EXPECT_EQ(grund(
                  bibliothek.pfad,
                  [&] {
                      try {
                          OrvoPluginLoader().loadPlugin(bibliothek.griff());
                      } catch (...) {
                          const std::unique_ptr<OrvoPlugin> p(OrvoPluginLoader().loadPlugin(andere.griff()));
                          throw;
                      }
                  },
                  true),
              erwartet(GetParam()));
    const std::unique_ptr<OrvoPlugin> plugin(OrvoPluginLoader().loadPlugin(andere.griff()));
    EXPECT_FALSE(istEingeblendet(bibliothek.pfad));
}

INSTANTIATE_TEST_SUITE_P(Libraries, OrvoPluginLoaderThrowing, testing::ValuesIn(werfendePlugins()),
                         nameDesFalls);

TEST(OrvoPluginLoaderReal, RefusesAFileThatIsNoLibraryAndNamesIt) {
    const Verzeichnis ort;
    const std::string pfad = ort.schreibe("libx.dylib", "kein Programm");
    OrvoPluginLoader loader;
    const auto text = grund(
        pfad, [&] { loader.loadPlugin(new SharedLib(pfad, false)); }, false);
    ASSERT_TRUE(text);
    EXPECT_THAT(*text, testing::StartsWith("BIBLIOTHEK_FEHLER: "));
    EXPECT_THAT(*text, testing::HasSubstr(pfad));
}

TEST(OrvoPluginLoaderReal, LeavesALoadedPluginsLibraryClosed) {
    const Bibliothek bibliothek(test_plugins::DescribedByFile);
    const int deskriptoren = offeneDeskriptoren();
    const std::unique_ptr<OrvoPlugin> plugin(OrvoPluginLoader().loadPlugin(bibliothek.griff()));
    EXPECT_FALSE(istEingeblendet(bibliothek.pfad));
    EXPECT_EQ(offeneDeskriptoren(), deskriptoren);
}

TEST(OrvoPluginLoaderReal, TakesTheDescriptionInAFileOnlyWhenToldTo) {
    const Bibliothek bibliothek(test_plugins::DescribedByFile);
    beschrifte(bibliothek.pfad);
    for (const bool nimmt : {false, true})
        EXPECT_EQ(std::unique_ptr<OrvoPlugin>(OrvoPluginLoader(nimmt).loadPlugin(bibliothek.griff()))
                      ->istBeschrieben(),
                  nimmt);
    EXPECT_FALSE(
        std::unique_ptr<OrvoPlugin>(OrvoPluginLoader().loadPlugin(bibliothek.griff()))->istBeschrieben());
}

TEST(OrvoPluginLoaderReal, InitialisesALibraryThatDeclaresTypeOneTwiceTwice) {
    const Bibliothek bibliothek(test_plugins::DeclaresTypeOneTwice);
    const Mitschnitt log;
    std::unique_ptr<OrvoPlugin> plugin(OrvoPluginLoader().loadPlugin(bibliothek.griff()));
    EXPECT_EQ(log.anzahl("> OrvoPluginV1::initialize"), 2);
    EXPECT_EQ(plugin->getProduktVersion(), "1.0");
    plugin->notifyUse();
    EXPECT_TRUE(istEingeblendet(bibliothek.pfad));
    plugin.reset();
    EXPECT_FALSE(istEingeblendet(bibliothek.pfad));
}
