// The guard around an author's own code: how it handles exceptions, alone and in a real plugin.

#include <orvoplugin/plugin/Absicherung.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/registry/HoleService.h>

#include "TestPlugins.h"
#include "orvoplugin/registry/Registratur.h"
#include "support/Mitschnitt.h"
#include "support/Prozess.h"

#include <gmock/gmock.h>

#include <exception>
#include <new>
#include <stdexcept>
#include <string>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class AusnahmeOhneText : public std::exception {
public:
    const char* what() const noexcept override { return nullptr; }
};

TEST(Absicherung, GivesWhatTheCallGives) {
    const Mitschnitt mitschnitt;
    int aufrufe = 0;
    int ziel = 7;
    EXPECT_TRUE(abgesichert([] { return true; }));
    EXPECT_EQ(abgesichert([&] { return &ziel; }), &ziel);
    EXPECT_EQ(abgesichert([] { return 42; }), 42);
    abgesichert([&] { ++aufrufe; });
    EXPECT_EQ(aufrufe, 1);
    EXPECT_THAT(mitschnitt.zeilen(), IsEmpty());
}

TEST(Absicherung, GivesNothingInsteadOfAnException) {
    EXPECT_FALSE(abgesichert([]() -> bool { throw std::runtime_error("nein"); }));
    EXPECT_EQ(abgesichert([]() -> Service* { throw 42; }), nullptr);
    EXPECT_EQ(abgesichert([]() -> int { throw AusnahmeOhneText(); }), 0);
    abgesichert([] { throw std::bad_alloc(); });
    static_assert(noexcept(abgesichert([] { throw 1; })), "nothing leaves it");
}

void eineFunktion() {
    abgesichert([] { throw std::runtime_error("kann nicht"); });
}

TEST(Absicherung, TellsTheFunctionAndTheReason) {
    const Mitschnitt mitschnitt;
    eineFunktion();
    abgesichert([] { throw 42; }, "Factory");
    abgesichert([] { throw AusnahmeOhneText(); }, "Hook");
    EXPECT_THAT(mitschnitt.zeilen("orvo.plugin.Absicherung"),
                ElementsAre("E Ausnahme in eineFunktion: kann nicht",
                            "E Ausnahme in Factory: unbekannte Ausnahme", "E Ausnahme in Hook: "));
}

TEST(Absicherung, CallsWithoutASinkAllTheSame) {
    EXPECT_FALSE(abgesichert([]() -> bool { throw 1; }));
}

class AbgesichertesPlugin : public Registratur {
protected:
    std::string legePlugin(const char* bibliothek) const {
        return home_.kopiere(bibliothek, "plugins/libplugin.dylib");
    }
    const Mitschnitt mitschnitt{orvo::orvoutil::LogLevel::Info};
};

TEST_F(AbgesichertesPlugin, IsRefusedWhenItsInitialisationThrows) {
    const std::string pfad = legePlugin(test_plugins::GuardsAThrowingInitialize);
    starte();
    EXPECT_THAT(OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins(), IsEmpty());
    EXPECT_THAT(mitschnitt.meldungen(),
                Contains("E Ausnahme in orvo_plugin_initialize: eigene Ausnahme des Plugins"));
    EXPECT_THAT(mitschnitt.meldungen(), Contains(HasSubstr("Fehler im Aufruf von orvo_plugin_initalize.")));
    EXPECT_FALSE(istEingeblendet(pfad));
}

TEST_F(AbgesichertesPlugin, IsRefusedWhenItsTypesThrow) {
    const std::string pfad = legePlugin(test_plugins::GuardsThrowingTypes);
    starte();
    EXPECT_THAT(OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins(), IsEmpty());
    EXPECT_THAT(mitschnitt.meldungen(),
                Contains("E Ausnahme in orvo_plugin_get_types: eigene Ausnahme des Plugins"));
    EXPECT_FALSE(istEingeblendet(pfad));
}

TEST_F(AbgesichertesPlugin, GivesNoServiceWhenItsFactoryThrows) {
    const std::string pfad = legePlugin(test_plugins::GuardsAThrowingFactory);
    starte();
    EXPECT_FALSE(holeFADatenService());
    EXPECT_THAT(
        mitschnitt.meldungen(),
        Contains("E Ausnahme in orvo_plugin_get_finanzamt_daten_service: eigene Ausnahme des Plugins"));
    EXPECT_EQ(mitschnitt.anzahlMit("Ausnahme in Funktion"), 0) << "nothing is left for the library to catch";
    EXPECT_TRUE(holeValidierungsService(10, jahr(2009))) << "the plugin serves on";
    EXPECT_FALSE(istEingeblendet(pfad));
}

} // namespace
