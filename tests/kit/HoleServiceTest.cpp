// One look-up, one service: through the process's registry, with plugins from files.

#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/registry/HoleService.h>
#include <orvoutil/ObjectLifetimeManager.h>

#include "orvoplugin/registry/Registratur.h"
#include "support/Mitschnitt.h"
#include "support/Prozess.h"

#include <gmock/gmock.h>

#include <string>
#include <type_traits>

namespace {

using testing::HasSubstr;

class HoleService : public Registratur {
protected:
    static int nutzer(const std::string& name) { return erweiterungVon(name)->getPlugin()->getUseCount(); }
};

TEST_F(HoleService, HoldsTheServiceOfEachKind) {
    lege("pruefung", "loeschen\ncheck 10 2009");
    lege("feldinfo", "loeschen\nfeldinfo 10 2009");
    lege("fehlertext", "loeschen\nfehlertext 10 2009");
    lege("finanzamt", "loeschen\nfinanzamt");
    lege("xpath", "loeschen\nxpath 10 2009");
    lege("leser", "loeschen\nreader 10 2009");
    starte();
    const auto benutztVon = [](const auto& griff, const std::string& name) {
        return griff && griff.getErweiterung() == erweiterungVon(name) && nutzer(name) == 1;
    };
    EXPECT_TRUE(benutztVon(holeValidierungsService(10, jahr(2009)), "pruefung"));
    EXPECT_TRUE(benutztVon(holeFeldInfoDatenService(10, jahr(2009)), "feldinfo"));
    EXPECT_TRUE(benutztVon(holeFehlertextDatenService(10, jahr(2009)), "fehlertext"));
    EXPECT_TRUE(benutztVon(holeFADatenService(), "finanzamt"));
    EXPECT_TRUE(benutztVon(holeXPathMappingService(10, jahr(2009)), "xpath"));
    EXPECT_TRUE(benutztVon(holeDatensatzReaderService(10, jahr(2009)), "leser"));
    for (const char* name : {"pruefung", "feldinfo", "fehlertext", "finanzamt", "xpath", "leser"})
        EXPECT_EQ(nutzer(name), 0) << name;
}

TEST_F(HoleService, GivesEachKindItsOwnInterface) {
    using namespace orvo::service;
    static_assert(
        std::is_same_v<decltype(holeValidierungsService(10, jahr(2009))), ServiceGriff<ValidierungsService>>);
    static_assert(std::is_same_v<decltype(holeXPathMappingService(10, jahr(2009))),
                                 ServiceGriff<IXPathMappingService>>);
    static_assert(std::is_same_v<decltype(holeDatensatzReaderService(10, jahr(2009))),
                                 ServiceGriff<DatensatzReaderService>>);
    static_assert(std::is_same_v<decltype(holeFADatenService()), ServiceGriff<Service>>);
    static_assert(std::is_same_v<decltype(holeFADatenService<ValidierungsService>()),
                                 ServiceGriff<ValidierungsService>>);
}

TEST_F(HoleService, AnswersAsTheLookUpOfTheRegistryDoes) {
    lege("jahr", "loeschen\ncheck 10 2009\nreader 10 2009");
    lege("immer", "loeschen\ncheck 10 immer");
    OrvoErweiterungsManager& registry = starte();
    const Veranlagungszeitraum mai = Veranlagungszeitraum::parse("2009-05", "YYYY-MM");
    for (const Veranlagungszeitraum& vz : {jahr(2009), mai, jahr(2010), Veranlagungszeitraum()})
        for (const char* ua : {"10", "010", "11", "unbekannt"})
            EXPECT_EQ(holeValidierungsService(ua, vz).getErweiterung(),
                      registry.findeValidierungsServiceErweiterung(ua, vz))
                << ua << " " << vz.getText();
    EXPECT_FALSE(holeDatensatzReaderService(10, jahr(2010)));
    EXPECT_FALSE(holeFADatenService());
}

TEST_F(HoleService, IsEmptyForAnInterfaceThatTheServiceHasNot) {
    class EigeneSchnittstelle : public Service {};
    const std::string pfad = lege("finanzamt", "loeschen\nfinanzamt");
    starte();
    EXPECT_FALSE(holeFADatenService<EigeneSchnittstelle>());
    EXPECT_EQ(nutzer("finanzamt"), 0);
    EXPECT_FALSE(istEingeblendet(pfad)) << "nothing keeps the library open";
}

TEST_F(HoleService, OpensTheLibraryForAsLongAsTheServiceIsHeld) {
    const std::string pfad =
        lege("pruefung", "loeschen\ncheck 10 2009\nonload zaehleOnLoad\nonunload zaehleOnUnload");
    starte();
    EXPECT_FALSE(istEingeblendet(pfad));
    {
        const auto pruefung = holeValidierungsService(10, jahr(2009));
        EXPECT_TRUE(istEingeblendet(pfad));
    }
    EXPECT_FALSE(istEingeblendet(pfad));
}

TEST_F(HoleService, MayBeHeldNoLongerThanTheNextReload) {
    const Mitschnitt mitschnitt(orvo::orvoutil::LogLevel::Error);
    lege("pruefung", "factory gleicherService\ncheck 10 2009");
    starte();
    auto pruefung = holeValidierungsService(10, jahr(2009));
    ASSERT_TRUE(pruefung);
    OrvoPluginManager::getInstanz(nullptr)->reload();
    EXPECT_FALSE(pruefung);
    EXPECT_TRUE(pruefung.istVerwaist());
    EXPECT_EQ(mitschnitt.anzahlMit("Ein ServiceGriff h"), 1);
    EXPECT_EQ(nutzer("pruefung"), 0) << "the plugin that was loaded anew is another one";

    pruefung = holeValidierungsService(10, jahr(2009));
    EXPECT_TRUE(pruefung);
    EXPECT_FALSE(pruefung.istVerwaist());
    pruefung.gibZurueck();
}

/// Gives its service back when a plugin is unloaded.
class Ruecksicht : public PluginObserver {
public:
    explicit Ruecksicht(ServiceGriffBasis& griff) : griff_(griff) {
        OrvoPluginManager::getInstanz(nullptr)->addObserver(this);
    }
    ~Ruecksicht() override { OrvoPluginManager::getInstanz(nullptr)->removeObserver(this); }
    void pluginErzeugt(OrvoPlugin*) override {}
    void pluginZerstoert(OrvoPlugin* plugin) override {
        griff_.gibZurueck();
        nutzer_ = plugin->getUseCount();
    }

    int nutzer() const { return nutzer_; }

private:
    ServiceGriffBasis& griff_;
    int nutzer_ = -1;
};

TEST_F(HoleService, MayBeGivenBackWhileAnObserverHearsOfTheUnloading) {
    const Mitschnitt mitschnitt(orvo::orvoutil::LogLevel::Error);
    lege("pruefung", "loeschen\ncheck 10 2009");
    starte();
    auto pruefung = holeValidierungsService(10, jahr(2009));
    ASSERT_TRUE(pruefung);
    const Ruecksicht ruecksicht(pruefung);
    OrvoPluginManager::getInstanz(nullptr)->reload();
    EXPECT_EQ(ruecksicht.nutzer(), 0);
    EXPECT_FALSE(pruefung.istVerwaist());
    EXPECT_EQ(mitschnitt.anzahlMit("ServiceGriff"), 0);
}

bool leerAmProzessende = false;

/// Is destroyed after the registry, and requests a service then.
class SpaeterFrager {
public:
    ~SpaeterFrager() {
        leerAmProzessende =
            !holeValidierungsService(10, jahr(2009)) && !holeFADatenService() &&
            !holeFeldInfoDatenService(10, jahr(2009)) && !holeFehlertextDatenService(10, jahr(2009)) &&
            !holeXPathMappingService(10, jahr(2009)) && !holeDatensatzReaderService(10, jahr(2009));
    }
};

TEST_F(HoleService, GivesNothingOnceTheProcessEnds) {
    auto& objekte = orvo::orvoutil::ObjectLifetimeManager::instance();
    objekte.addObject("frager", new SpaeterFrager);
    lege("pruefung", "loeschen\ncheck 10 2009");
    EXPECT_TRUE(holeValidierungsService(10, jahr(2009)));
    objekte.destroyAll();
    EXPECT_TRUE(leerAmProzessende);
}

} // namespace
