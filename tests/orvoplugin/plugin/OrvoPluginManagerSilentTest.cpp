#include <orvoplugin/plugin/OrvoPluginManager.h>

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>

#include "orvoplugin/plugin/Werkstatt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

using testing::ElementsAre;
using testing::IsEmpty;

// The results are the same without a sink, and with one that takes errors only.

namespace {

/// An extension that serves no pairs.
class Andere : public OrvoErweiterung {
public:
    Andere() : OrvoErweiterung(NONE) {}
    OrvoErweiterung* clone() const override { return new Andere(*this); }
};

/// A plugin that claims interface 1 but is of another class.
class Falschgelabelt : public OrvoPlugin {
public:
    Falschgelabelt() : OrvoPlugin({1}, nullptr) {}
    void notifyUse() override {}
    void release() override {}
    void initialize() override {}
};

void ladeMitStoerendenBeobachtern() {
    const Heimat heimat;
    heimat.beschreibe("liba.dylib");
    Zeilen ereignisse;
    Zeuge wirft(ereignisse, "1"), fordert(ereignisse, "2");
    OrvoPluginManager manager(nullptr);
    wirft.beimErzeugen = wirft.beimZerstoeren = [](OrvoPlugin&) { throw std::runtime_error("nein"); };
    fordert.beimErzeugen = fordert.beimZerstoeren = [&](OrvoPlugin&) {
        manager.reload();
        EXPECT_FALSE(manager.ladePlugins());
        EXPECT_TRUE(manager.entladePlugins());
    };
    manager.addObserver(&wirft);
    manager.addObserver(&fordert);
    manager.reload();
    EXPECT_THAT(plugins(manager), ElementsAre("liba.dylib"));
    EXPECT_THAT(ereignisse, ElementsAre("1-liba.dylib", "2-liba.dylib", "1+liba.dylib", "2+liba.dylib"));
    manager.removeObserver(&wirft);
    manager.removeObserver(&fordert);
}

void frageNachErweiterungenAndererArt() {
    OrvoPluginV1 plugin(nullptr);
    plugin.addErweiterung(Andere());
    EXPECT_THAT(plugin.providesUnterfallartUndVeranlagungszeitraum(10, {2009, "YYYY"}), IsEmpty());
    const Heimat heimat;
    OrvoErweiterungsManager* const registry = OrvoErweiterungsManager::getInstanz();
    registry->pluginErzeugt(&plugin);
    EXPECT_THAT(registry->getRegistrierteErweiterungen(), IsEmpty());
    registry->pluginZerstoert(&plugin);
}

} // namespace

TEST(OrvoPluginManagerSilent, GoesThroughDisturbingObserversWithoutASink) { ladeMitStoerendenBeobachtern(); }

TEST(OrvoPluginManagerSilent, GoesThroughDisturbingObserversWithASinkThatTakesErrorsOnly) {
    const Mitschnitt log(orvo::orvoutil::LogLevel::Error);
    ladeMitStoerendenBeobachtern();
    EXPECT_EQ(log.anzahl("E Ausnahme beim Abmelden eines Plugins: nein"), 1);
    EXPECT_EQ(log.anzahlMit("Abgelehnt"), 0);
}

TEST(OrvoPluginManagerSilent, PassesOverExtensionsOfOtherKindsWithoutASink) {
    frageNachErweiterungenAndererArt();
}

TEST(OrvoPluginManagerSilent, PassesOverExtensionsOfOtherKindsWithASinkThatTakesErrorsOnly) {
    const Mitschnitt log(orvo::orvoutil::LogLevel::Error);
    frageNachErweiterungenAndererArt();
    EXPECT_EQ(log.anzahl("E Cast auf UfaVzServiceErweiterung fehlgeschlagen"), 1)
        << "the registry only warns";
}

TEST(OrvoPluginManagerSilent, RegistersNothingOfNoPluginOrOfOneThatIsNotWhatItSays) {
    const Heimat heimat;
    OrvoErweiterungsManager* const registry = OrvoErweiterungsManager::getInstanz();
    Falschgelabelt falsches;
    for (OrvoPlugin* const plugin :
         {static_cast<OrvoPlugin*>(nullptr), static_cast<OrvoPlugin*>(&falsches)}) {
        registry->pluginErzeugt(plugin);
        registry->pluginZerstoert(plugin);
    }
    EXPECT_THAT(registry->getRegistrierteErweiterungen(), IsEmpty());
}

TEST(OrvoPluginManagerSilent, CopiesALabelOverAnotherWithAllItsParts) {
    OrvoPlugin::LabelEintrag eines, anderes;
    eines.zahl1 = 1;
    eines.text4 = "vier";
    eines.zeitraum = Veranlagungszeitraum(2009, "YYYY");
    anderes = eines;
    EXPECT_EQ(anderes.zahl1, 1);
    EXPECT_EQ(anderes.text4, "vier");
    EXPECT_EQ(anderes.zeitraum.getJahr(), 2009);
}
