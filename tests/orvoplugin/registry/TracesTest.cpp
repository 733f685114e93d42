// The log of the registry, line by line: with traces, above their level, and without a sink.

#include "Registratur.h"

#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

#include "support/DeutscheZahlen.h"
#include "support/Mitschnitt.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

using orvo::orvoutil::LogLevel;

namespace {

using Check = OrvoValidierungsServiceErweiterung;
using Zeilen = std::vector<std::string>;

constexpr char kKategorie[] = "orvo.plugin.OrvoErweiterungsManager";
const std::string kKlasse = "OrvoErweiterungsManager::";

Zeilen spur(const std::string& operation) { return {"> " + kKlasse + operation, "< " + kKlasse + operation}; }

/// Without traces and debug messages.
Zeilen ohneSpuren(const Zeilen& alle) {
    Zeilen uebrige;
    for (const std::string& zeile : alle)
        if (zeile[0] == '[' || zeile[0] == 'W')
            uebrige.push_back(zeile);
    return uebrige;
}

/// An extension of a kind that should serve pairs, but of a class that does not.
class OhnePaare : public OrvoServiceErweiterung {
public:
    OhnePaare() : OrvoServiceErweiterung(ORVO_CHECK_SERVICE_ERWEITERUNG, "factory") {}
    OrvoErweiterung* clone() const override { return new OhnePaare(*this); }
};

} // namespace

class TracesTest : public Registratur {
protected:
    /// What `operation` on a registry writes in the registry's category, at each level and without a sink.
    void erwarte(const std::function<void(OrvoErweiterungsManager&)>& operation, const Zeilen& zeilen) {
        for (const LogLevel level : {LogLevel::Debug, LogLevel::Info}) {
            Mitschnitt mitschnitt(level);
            OrvoErweiterungsManager registry;
            mitschnitt.leere();
            operation(registry);
            EXPECT_EQ(mitschnitt.zeilen(kKategorie), level == LogLevel::Debug ? zeilen : ohneSpuren(zeilen));
        }
        OrvoErweiterungsManager stumm; // has no logger, because there was no sink
        operation(stumm);
        const Mitschnitt mitschnitt;
        operation(stumm);
        EXPECT_EQ(mitschnitt.zeilen(kKategorie), Zeilen());
    }

    void erwarteSpur(const std::function<void(OrvoErweiterungsManager&)>& operation,
                     const std::string& name) {
        erwarte(operation, spur(name));
    }
};

TEST_F(TracesTest, TellsOfTheFirstRequest) {
    const Mitschnitt mitschnitt;
    starte();
    EXPECT_EQ(mitschnitt.zeilen(kKategorie),
              (Zeilen{"> OrvoErweiterungsManager::getInstanz", "D Hole OrvoErweiterungsManager",
                      "D OrvoErweiterungsManger nicht gefunden. Starte Manager",
                      "> OrvoErweiterungsManager::OrvoErweiterungsManager",
                      "> OrvoErweiterungsManager::initialisiere", "[Registriere am PluginManager..|99||99]",
                      "< OrvoErweiterungsManager::initialisiere",
                      "< OrvoErweiterungsManager::OrvoErweiterungsManager",
                      "< OrvoErweiterungsManager::getInstanz"}));
}

TEST_F(TracesTest, RegistersWithThePluginManagerBetweenItsTwoLines) {
    const Mitschnitt mitschnitt;
    starte();
    const Zeilen zeilen = mitschnitt.zeilen();
    const auto stelle = [&](const std::string& zeile) {
        return std::find(zeilen.begin(), zeilen.end(), zeile) - zeilen.begin();
    };
    EXPECT_LT(stelle("[Registriere am PluginManager..|99||99]"), stelle("> getInstanz()"));
    EXPECT_LT(stelle("< getInstanz()"), stelle("< OrvoErweiterungsManager::initialisiere"));
    EXPECT_LT(stelle("< getInstanz()"), static_cast<std::ptrdiff_t>(zeilen.size()));
}

TEST_F(TracesTest, TellsOfALaterRequest) {
    starte();
    const Mitschnitt mitschnitt;
    starte();
    EXPECT_EQ(mitschnitt.zeilen(),
              (Zeilen{"> OrvoErweiterungsManager::getInstanz", "D Hole OrvoErweiterungsManager",
                      "< OrvoErweiterungsManager::getInstanz"}));
}

TEST_F(TracesTest, TellsOfTheFirstRequestAboveDebugByItsEventAlone) {
    const Mitschnitt mitschnitt(LogLevel::Error);
    starte();
    EXPECT_EQ(mitschnitt.zeilen(kKategorie), Zeilen{"[Registriere am PluginManager..|99||99]"});
}

TEST_F(TracesTest, TellsOfItsEnd) {
    Mitschnitt mitschnitt;
    auto registry = std::make_unique<OrvoErweiterungsManager>();
    mitschnitt.leere();
    registry.reset();
    EXPECT_EQ(mitschnitt.zeilen(),
              (Zeilen{"> OrvoErweiterungsManager::~OrvoErweiterungsManager",
                      "[OrvoErweiterungsManager|99|Deregistriere Instanz am PluginManager..|99]",
                      "> getInstanz()", "D Hole OrvoPluginManager", "< getInstanz()",
                      "< OrvoErweiterungsManager::~OrvoErweiterungsManager"}));
}

TEST_F(TracesTest, TellsOfItsEndWhileExtensionsAreFiled) {
    for (const LogLevel level : {LogLevel::Debug, LogLevel::Warn}) {
        Mitschnitt mitschnitt(level);
        auto registry = std::make_unique<OrvoErweiterungsManager>();
        LosesPlugin plugin("1.0");
        plugin.biete(Check(10, jahr(2009)));
        registry->pluginErzeugt(&plugin);
        mitschnitt.leere();
        registry.reset();
        const Zeilen alle = {"> OrvoErweiterungsManager::~OrvoErweiterungsManager",
                             "[OrvoErweiterungsManager|99|Deregistriere Instanz am PluginManager..|99]",
                             "> getInstanz()",
                             "D Hole OrvoPluginManager",
                             "< getInstanz()",
                             "W Noch Erweiterungen registriert. Speicherloch m\xF6"
                             "glich!",
                             "< OrvoErweiterungsManager::~OrvoErweiterungsManager"};
        EXPECT_EQ(mitschnitt.zeilen(), level == LogLevel::Debug ? alle : ohneSpuren(alle));
    }
}

TEST_F(TracesTest, TellsOfAPluginThatComesAndGoes) {
    LosesPlugin plugin("1.0");
    const auto* const check = plugin.biete(Check("LSTB", {jahr(2008), jahr(9), Veranlagungszeitraum()}));
    const auto* const amt = plugin.biete(OrvoFADatenServiceErweiterung());
    erwarte([&](OrvoErweiterungsManager& registry) { registry.pluginErzeugt(&plugin); },
            {"> OrvoErweiterungsManager::pluginErzeugt", registriere(check, " : ua=LSTB vz=2008,2009,0"),
             registriere(amt), "< OrvoErweiterungsManager::pluginErzeugt"});
    erwarteSpur([&](OrvoErweiterungsManager& registry) { registry.pluginZerstoert(&plugin); },
                "pluginZerstoert");
}

TEST_F(TracesTest, WritesNumbersTheSameUnderEveryLocale) {
    LosesPlugin plugin("1.0");
    const auto* const check = plugin.biete(Check("LSTB", {jahr(2008), jahr(2009)}));
    const Zeilen erwartete{registriere(check, " : ua=LSTB vz=2008,2009")};
    Mitschnitt mitschnitt(LogLevel::Error);
    OrvoErweiterungsManager registry;
    mitschnitt.leere();
    const DeutscheZahlen zahlen;
    registry.pluginErzeugt(&plugin);
    EXPECT_EQ(mitschnitt.zeilen(kKategorie), erwartete);
}

TEST_F(TracesTest, TellsOfEachSubCaseTypeInTheirOrder) {
    LosesPlugin plugin("1.0");
    const auto* const erweiterung =
        plugin.biete(Check(std::map<Unterfallart, std::list<Veranlagungszeitraum>>{
            {"LSTB", {jahr(2009)}}, {"010", {jahr(2010)}}, {9, {}}}));
    erwarte([&](OrvoErweiterungsManager& registry) { registry.pluginErzeugt(&plugin); },
            {"> OrvoErweiterungsManager::pluginErzeugt", registriere(erweiterung, " : ua=9 vz="),
             registriere(erweiterung, " : ua=010 vz=2010"), registriere(erweiterung, " : ua=LSTB vz=2009"),
             "< OrvoErweiterungsManager::pluginErzeugt"});
}

// The line is written before the versions are compared. It shows the period's text, not its year.
TEST_F(TracesTest, TellsOfEachSecondExtensionOnce) {
    LosesPlugin altes("1.0"), neues("2.0");
    altes.biete(Check(10, jahr(2009)));
    const auto* const neue = neues.biete(Check("010", {jahr(2008), jahr(9)}));
    Mitschnitt mitschnitt(LogLevel::Error);
    OrvoErweiterungsManager registry;
    registry.pluginErzeugt(&altes);
    mitschnitt.leere();
    registry.pluginErzeugt(&neues);
    EXPECT_EQ(mitschnitt.zeilen(kKategorie), (Zeilen{registriere(neue, " : ua=010 vz=2008,2009"),
                                                     doppelt("ORVO_CHECK_SERVICE_ERWEITERUNG/010/9")}));
    registry.pluginZerstoert(&neues);
    registry.pluginErzeugt(&neues);
    mitschnitt.leere();
    registry.pluginErzeugt(&altes); // loses, and is logged too
    EXPECT_EQ(mitschnitt.anzahl(doppelt("ORVO_CHECK_SERVICE_ERWEITERUNG/10/2009")), 1);
}

TEST_F(TracesTest, TellsNothingOfASecondTaxOfficeDataExtension) {
    LosesPlugin erstes("1.0"), zweites("2.0");
    erstes.biete(OrvoFADatenServiceErweiterung());
    const auto* const zweite = zweites.biete(OrvoFADatenServiceErweiterung());
    Mitschnitt mitschnitt(LogLevel::Error);
    OrvoErweiterungsManager registry;
    registry.pluginErzeugt(&erstes);
    mitschnitt.leere();
    registry.pluginErzeugt(&zweites);
    EXPECT_EQ(mitschnitt.zeilen(kKategorie), Zeilen{registriere(zweite)});
}

TEST_F(TracesTest, OnlyTracesForAPluginWithoutExtensions) {
    LosesPlugin leer("1.0");
    erwarteSpur([&](OrvoErweiterungsManager& registry) { registry.pluginErzeugt(&leer); }, "pluginErzeugt");
    erwarteSpur([&](OrvoErweiterungsManager& registry) { registry.pluginZerstoert(&leer); },
                "pluginZerstoert");
}

TEST_F(TracesTest, WarnsOfAnExtensionThatServesNoPairs) {
    LosesPlugin plugin("1.0");
    plugin.biete(OhnePaare());
    erwarte([&](OrvoErweiterungsManager& registry) { registry.pluginErzeugt(&plugin); },
            {"> OrvoErweiterungsManager::pluginErzeugt", "W Cast auf UfaVzServiceErweiterung fehlgeschlagen",
             "< OrvoErweiterungsManager::pluginErzeugt"});
    erwarteSpur([&](OrvoErweiterungsManager& registry) { registry.pluginZerstoert(&plugin); },
                "pluginZerstoert");
}

TEST_F(TracesTest, TellsOfOneLookUpOnly) {
    erwarteSpur([](auto& registry) { registry.findeValidierungsServiceErweiterung(10, jahr(2009)); },
                "findeValidierungsServiceErweiterung");
    erwarte(
        [](auto& registry) {
            registry.findeFeldInfoDatenServiceErweiterung(10, jahr(2009));
            registry.findeFehlertextDatenServiceErweiterung(10, jahr(2009));
            registry.findeXPathMappingServiceErweiterung(10, jahr(2009));
            registry.findeDatensatzReaderServiceErweiterung(10, jahr(2009));
            registry.findeFADatenServiceErweiterung();
        },
        {});
}

TEST_F(TracesTest, TellsOfTheSupportTestAndTheListings) {
    erwarteSpur(
        [](auto& r) { r.istUnterfallartUndJahrUnterstuetzt(ORVO_CHECK_SERVICE_ERWEITERUNG, 10, jahr(2009)); },
        "istUnterfallartUndJahrUnterstuetzt");
    erwarteSpur([](auto& r) { r.getRegistrierteErweiterungen(); }, "getRegistrierteErweiterungen");
    erwarteSpur([](auto& r) { r.getRegistrierteValidierungsServiceErweiterungen(); },
                "getRegistrierteValidierungsServiceErweiterungen");
    erwarteSpur([](auto& r) { r.getRegistrierteFeldInfoDatenServiceErweiterungen(); },
                "getRegistrierteFeldInfoDatenServiceErweiterungen");
    erwarteSpur([](auto& r) { r.getRegistrierteFehlertextDatenServiceErweiterungen(); },
                "getRegistrierteFehlertextDatenServiceErweiterungen");
    erwarteSpur([](auto& r) { r.getRegistrierteFinanzamtsDatenErweiterungen(); },
                "getRegistrierteFinanzamtsDatenErweiterungen");
    erwarte([](auto& r) { EXPECT_TRUE(r.checkAbhaengigkeiten()); }, {});
}

TEST_F(TracesTest, SaysThatItEndsWhenItHoldsNothingAnyMore) {
    struct Nachfrage : orvo::orvoutil::LogSink {
        void write(const orvo::orvoutil::LogEntry& eintrag) override {
            if (Mitschnitt::zeile(eintrag) != "< " + kKlasse + "~OrvoErweiterungsManager")
                return;
            const OrvoErweiterungsManager& registry = *std::exchange(gefragte, nullptr);
            EXPECT_TRUE(registry.getRegistrierteErweiterungen().empty());
            EXPECT_EQ(registry.findeValidierungsServiceErweiterung(10, jahr(2009)), nullptr);
        }
        const OrvoErweiterungsManager* gefragte = nullptr;
    };
    const auto nachfrage = std::make_shared<Nachfrage>();
    orvo::orvoutil::Logger::setLevel(LogLevel::Debug);
    orvo::orvoutil::Logger::setSink(nachfrage);
    LosesPlugin plugin("1.0");
    plugin.biete(Check(10, jahr(2009)));
    {
        OrvoErweiterungsManager registry;
        registry.pluginErzeugt(&plugin);
        ASSERT_NE(registry.findeValidierungsServiceErweiterung(10, jahr(2009)), nullptr);
        nachfrage->gefragte = &registry;
    }
    orvo::orvoutil::Logger::setSink(nullptr);
    EXPECT_EQ(nachfrage->gefragte, nullptr);
}
