// Services from a real plugin library: when it is open, which services live, and what remains.

#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/ServiceGriff.h>
#include <orvoutil/Latin1.h>

#include "orvoplugin/plugin/erweiterung/Plugindatei.h"
#include "support/Mitschnitt.h"

#include <gmock/gmock.h>

#include <ostream>
#include <stdexcept>

namespace {

using orvo::orvoutil::Latin1Text;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr char kKategorie[] = "orvo.plugin.erweiterung.OrvoServiceErweiterung";

class ServiceAusPlugin : public testing::Test {
protected:
    const Mitschnitt mitschnitt{orvo::orvoutil::LogLevel::Info};
    Plugindatei datei;
    OrvoPluginV1& plugin = *datei.plugin;
    OrvoValidierungsServiceErweiterung& erweiterung = datei.erweiterung<OrvoValidierungsServiceErweiterung>();
};

TEST_F(ServiceAusPlugin, HoldsTheLibraryOpenWhileItIsOut) {
    EXPECT_FALSE(datei.istOffen());
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    auto* const eines = erweiterung.holeService(); // one use: `eines`
    auto* const anderes = erweiterung.holeService();
    ASSERT_NE(eines, nullptr);
    ASSERT_NE(anderes, eines);
    EXPECT_TRUE(datei.istOffen());
    EXPECT_EQ(plugin.getUseCount(), 2);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_GELADEN);
    EXPECT_EQ(datei.lebende(), 2);

    erweiterung.release(eines);
    EXPECT_TRUE(datei.istOffen()) << "`anderes` holds it";
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_EQ(datei.lebende(), 1);

    erweiterung.release(anderes);
    EXPECT_FALSE(datei.istOffen());
    EXPECT_EQ(plugin.getUseCount(), 0);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_ENTLADEN);
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
    EXPECT_THAT(mitschnitt.zeilen(kKategorie), IsEmpty());
}

TEST_F(ServiceAusPlugin, DoesWhatThePluginWrote) {
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    class Leer : public orvo::data::SteuerfallListe {
        std::size_t getAnzahl() const override { return 0; }
        const std::string& getDatensatz(std::size_t) const override { throw std::out_of_range("leer"); }
    };
    auto* const service = erweiterung.holeService();
    ASSERT_NE(service, nullptr);
    PruefErgebnis ergebnis;
    EXPECT_EQ(service->pruefe(Leer(), Unterfallart(10), Veranlagungszeitraum(), ergebnis), 42);
    EXPECT_EQ(service->checkSammeldatenKonsistenz(Leer(), Unterfallart(10), Veranlagungszeitraum(), ergebnis),
              0);
    erweiterung.release(service);
}

TEST_F(ServiceAusPlugin, IsMadeAnewAfterEachReload) {
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    for (int mal = 0; mal < 3; ++mal) {
        auto* const service = erweiterung.holeService();
        ASSERT_NE(service, nullptr);
        EXPECT_EQ(datei.lebende(), 1);
        erweiterung.release(service);
        EXPECT_FALSE(datei.istOffen());
    }
}

TEST_F(ServiceAusPlugin, StaysThePluginsWithoutTheFlag) {
    plugin.notifyUse(); // keeps the library open for inspection
    auto* const service = erweiterung.holeService();
    ASSERT_NE(service, nullptr);
    erweiterung.release(service);
    EXPECT_EQ(datei.lebende(), 1);
    delete service;
    EXPECT_EQ(datei.lebende(), 0);
    plugin.release();
}

TEST_F(ServiceAusPlugin, HandedOutTwiceIsOneEntryWithTwoUses) {
    erweiterung.setServiceFactoryName("gibtDenselbenService");
    auto* const service = erweiterung.holeService();
    ASSERT_NE(service, nullptr);
    EXPECT_EQ(erweiterung.holeService(), service);
    EXPECT_THAT(erweiterung.getInstanzen(), ElementsAre(Pair(service, 2)));
    EXPECT_EQ(erweiterung.getAusgegeben(), 2);
    EXPECT_EQ(plugin.getUseCount(), 2);
    EXPECT_EQ(datei.lebende(), 1);

    erweiterung.release(service);
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_EQ(datei.lebende(), 1);

    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true); // the last release deletes it
    erweiterung.release(service);
    EXPECT_THAT(erweiterung.getInstanzen(), IsEmpty());
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
    EXPECT_FALSE(datei.istOffen());
}

TEST_F(ServiceAusPlugin, HandedOutTwiceUnderTheFlagIsGoneAtItsFirstReturn) {
    erweiterung.setServiceFactoryName("gibtDenselbenService");
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    auto* const service = erweiterung.holeService();
    ASSERT_EQ(erweiterung.holeService(), service);
    EXPECT_EQ(datei.lebende(), 1);

    erweiterung.release(service);
    EXPECT_EQ(datei.lebende(), 0) << "deleted although it is still out once";
    EXPECT_THAT(erweiterung.getInstanzen(), ElementsAre(Pair(service, 1)));
    EXPECT_EQ(erweiterung.getAusgegeben(), 1);
    EXPECT_EQ(plugin.getUseCount(), 1);

    // With the flag the second release would delete it again; without it only the use is given back.
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, false);
    erweiterung.release(service);
    EXPECT_FALSE(datei.istOffen());
}

TEST_F(ServiceAusPlugin, ThatIsAVariableOfThePluginIsNotDeleted) {
    erweiterung.setServiceFactoryName("gibtStaendigenService");
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    ServiceGriff eines(&erweiterung);
    ServiceGriff dasselbe(&erweiterung);
    ASSERT_EQ(dasselbe.get(), eines.get());

    eines.gibZurueck();
    const auto meldung = Latin1Text(u8"E Service ist eine Variable des Plugins ").c_str() + datei.pfad +
                         Latin1Text(u8" und wird nicht gelöscht. Factory: gibtStaendigenService").c_str();
    EXPECT_THAT(mitschnitt.zeilen(kKategorie), ElementsAre(meldung));
    EXPECT_TRUE(dasselbe) << "the object is as it was";
    EXPECT_TRUE(datei.istOffen());

    dasselbe.gibZurueck();
    EXPECT_FALSE(datei.istOffen());
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
}

TEST_F(ServiceAusPlugin, ThatIsNeverGivenBackIsNamedWhenThePluginEnds) {
    auto& leser = datei.erweiterung<OrvoDatensatzReaderErweiterung>();
    leser.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    leser.release(leser.holeService());
    erweiterung.setServiceFactoryName("gibtDenselbenService");
    erweiterung.holeService();
    auto* const verlorener = erweiterung.holeService();
    erweiterung.setServiceFactoryName("gibtStaendigenService");
    erweiterung.holeService();
    delete verlorener;                  // only for the sake of tidiness: the client's code would have lost it
    plugin.addErweiterung(erweiterung); // takes over the count, but none of the services
    auto& finanzamt = datei.erweiterung<OrvoFADatenServiceErweiterung>();
    finanzamt.setServiceFactoryName("gibtStaendigenService");
    finanzamt.holeService();

    datei.plugin.reset();
    EXPECT_THAT(mitschnitt.zeilen("orvo.plugin.OrvoPluginV1(libangebot.dylib)"),
                Contains(Latin1Text(u8"W Services beim Entladen nicht zurückgegeben: 3. Erweiterung: "
                                    u8"ORVO_CHECK_SERVICE_ERWEITERUNG, Factory: gibtStaendigenService")
                             .c_str()));
    EXPECT_THAT(mitschnitt.zeilen("orvo.plugin.OrvoPluginV1(libangebot.dylib)"),
                Contains(testing::HasSubstr("ckgegeben: 1. Erweiterung: ORVO_FINANZAMTS_DATEN_SERVICE")));
    EXPECT_EQ(mitschnitt.anzahlMit("beim Entladen"), 2) << "none for the kinds that have everything back";
    EXPECT_FALSE(datei.istOffen());
}

TEST_F(ServiceAusPlugin, IsNotTakenBackByACopyOfItsExtension) {
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    auto* const service = erweiterung.holeService();
    ASSERT_NE(service, nullptr);
    OrvoValidierungsServiceErweiterung kopie(erweiterung);
    kopie.release(service);
    EXPECT_THAT(mitschnitt.zeilen(kKategorie), ElementsAre("W Unbekannte Serviceinstanz. Ignoriere sie."));
    EXPECT_EQ(datei.lebende(), 1);
    EXPECT_EQ(plugin.getUseCount(), 1);
    erweiterung.release(service);
    EXPECT_FALSE(datei.istOffen());
}

TEST_F(ServiceAusPlugin, IsGivenBackAlsoByTheExtensionOfTheBaseClass) {
    auto& finanzamt = datei.erweiterung<OrvoFADatenServiceErweiterung>();
    finanzamt.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    OrvoServiceErweiterung& basis = finanzamt;
    Service* const service = basis.holeService();
    ASSERT_NE(service, nullptr);
    basis.release(service);
    EXPECT_FALSE(datei.istOffen());
}

TEST_F(ServiceAusPlugin, OfAnotherClassIsNotHandedOutButStaysEntered) {
    erweiterung.setServiceFactoryName("gibtDatenService");
    EXPECT_EQ(erweiterung.holeService(), nullptr);
    ASSERT_EQ(erweiterung.getInstanzen().size(), 1u);
    EXPECT_EQ(erweiterung.getAusgegeben(), 1);
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_TRUE(datei.istOffen());
    EXPECT_THAT(mitschnitt.zeilen(kKategorie), IsEmpty());

    // A caller that has the pointer can still give it back.
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    erweiterung.release(erweiterung.getInstanzen().begin()->first);
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
    EXPECT_FALSE(datei.istOffen());
}

/// A factory that makes no service, and its log line: "%" stands for the library's path.
struct Fehlschlag {
    const char* factory;
    const char* meldung;

    friend void PrintTo(const Fehlschlag& fall, std::ostream* out) { *out << fall.factory; }
};

class ServiceAusPluginOhneErfolg : public ServiceAusPlugin, public testing::WithParamInterface<Fehlschlag> {};

TEST_P(ServiceAusPluginOhneErfolg, LeavesThePluginAsItWas) {
    erweiterung.setServiceFactoryName(GetParam().factory);
    EXPECT_EQ(erweiterung.holeService(), nullptr);
    EXPECT_FALSE(datei.istOffen()) << "nothing of the plugin is left in the process";
    EXPECT_EQ(plugin.getUseCount(), 0);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_ENTLADEN);
    EXPECT_THAT(erweiterung.getInstanzen(), IsEmpty());
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);

    std::string meldung = GetParam().meldung;
    if (meldung.empty()) {
        EXPECT_THAT(mitschnitt.zeilen(kKategorie), IsEmpty());
    } else {
        meldung.replace(meldung.find('%'), 1, datei.pfad);
        EXPECT_THAT(mitschnitt.zeilen(kKategorie), ElementsAre(meldung));
    }

    // The next request succeeds.
    erweiterung.setServiceFactoryName("orvo_plugin_get_check_service");
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    auto* const service = erweiterung.holeService();
    EXPECT_NE(service, nullptr);
    erweiterung.release(service);
}

INSTANTIATE_TEST_SUITE_P(
    Factories, ServiceAusPluginOhneErfolg,
    testing::Values(
        Fehlschlag{"gibtKeinenService", ""},
        Fehlschlag{"gibt_es_nicht", "E Konnte Funktion: gibt_es_nicht in Plugin % nicht finden."},
        Fehlschlag{"wirftStandardausnahme",
                   "E Ausnahme in Funktion: wirftStandardausnahme in Plugin %: kann nicht"},
        Fehlschlag{"wirftEigeneStandardausnahme",
                   "E Ausnahme in Funktion: wirftEigeneStandardausnahme in Plugin %: eine Ausnahme, "
                   "deren Klasse und deren Text beide im Plugin liegen"},
        Fehlschlag{"wirftEigeneAusnahme",
                   "E Ausnahme in Funktion: wirftEigeneAusnahme in Plugin %: unbekannte Ausnahme"},
        Fehlschlag{"wirftZahl", "E Ausnahme in Funktion: wirftZahl in Plugin %: unbekannte Ausnahme"}),
    [](const auto& fall) { return std::string(fall.param.factory); });

TEST_F(ServiceAusPlugin, OfALibraryThatDoesNotOpenTakesTheUseCountBelowZero) {
    datei.verzeichnis.entferne("libangebot.dylib");
    EXPECT_EQ(erweiterung.holeService(), nullptr);
    // By contract an uncounted use is given back too: from now on the plugin is never opened.
    EXPECT_EQ(plugin.getUseCount(), -1);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_ERZEUGT);
    datei.verzeichnis.kopiere(test_plugins::OffersEverything, "libangebot.dylib");
    EXPECT_EQ(erweiterung.holeService(), nullptr);
    EXPECT_EQ(plugin.getUseCount(), -1);
    EXPECT_FALSE(datei.istOffen());
    const std::string fehlt =
        "E Konnte Funktion: orvo_plugin_get_check_service in Plugin " + datei.pfad + " nicht finden.";
    EXPECT_THAT(mitschnitt.zeilen(kKategorie), ElementsAre(fehlt, fehlt));
}

TEST_F(ServiceAusPlugin, OfAResidentPluginLeavesTheLibraryOpen) {
    plugin.setResident(true);
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    erweiterung.release(erweiterung.holeService());
    EXPECT_TRUE(datei.istOffen());
    EXPECT_EQ(plugin.getUseCount(), 0);
    EXPECT_EQ(datei.lebende(), 0);
}

/// A service extension of the host.
class ErweiterungDesHosts : public OrvoServiceErweiterung {
public:
    explicit ErweiterungDesHosts(const std::string& factory) : OrvoServiceErweiterung(NONE, factory) {}
    OrvoErweiterung* clone() const override { return new ErweiterungDesHosts(*this); }
};

TEST(ServiceAusErsterOeffnung, IsOfTheFactoryNamedLast) {
    OrvoPluginV1 plugin(new orvo::orvoutil::SharedLib(test_plugins::OffersEverything));
    ErweiterungDesHosts erweiterung("gibtStaendigenService");
    erweiterung.setPlugin(&plugin);
    EXPECT_NE(erweiterung.holeService(), nullptr); // keeps the library open
    erweiterung.setServiceFactoryName("gibtKeinenService");
    EXPECT_EQ(erweiterung.holeService(), nullptr);
    erweiterung.setServiceFactoryName("gibtStaendigenService");
    erweiterung.release(erweiterung.holeService());
    erweiterung.release(erweiterung.getInstanzen().begin()->first);
}

} // namespace
