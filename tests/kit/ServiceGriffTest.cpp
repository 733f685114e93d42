// Handles on services of a real plugin library: which use each one holds, and what remains after it.

#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/ServiceGriff.h>
#include <orvoplugin/service/DatensatzReaderService.h>

#include "orvoplugin/plugin/Attrappe.h"
#include "orvoplugin/plugin/erweiterung/Plugindatei.h"
#include "support/Mitschnitt.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using orvo::service::IXPathMappingService;
using orvo::service::ValidierungsService;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Griff = ServiceGriff<ValidierungsService>;

static_assert(!std::is_copy_constructible_v<Griff> && !std::is_copy_assignable_v<Griff>);
static_assert(std::is_nothrow_move_constructible_v<Griff>, "a growing vector moves its handles");
template <class G>
concept GibtHer = requires(G&& g) {
    std::forward<G>(g).get();
};
static_assert(GibtHer<Griff&> && GibtHer<const Griff&> && !GibtHer<Griff>,
              "what a handle holds that ends at once is no longer held");
static_assert(std::is_same_v<decltype(ServiceGriff(std::declval<OrvoFADatenServiceErweiterung*>())),
                             ServiceGriff<Service>>);
static_assert(std::is_same_v<decltype(ServiceGriff(std::declval<OrvoXPathMappingServiceErweiterung*>())),
                             ServiceGriff<IXPathMappingService>>);

class ServiceGriffTest : public testing::Test {
protected:
    ServiceGriffTest() { erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true); }

    /// Makes each request return the same object, which the library owns.
    void gibDenselben() {
        erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, false);
        erweiterung.setServiceFactoryName("gibtStaendigenService");
    }

    void erwarteUnbenutzt() const {
        EXPECT_EQ(plugin.getUseCount(), 0);
        EXPECT_EQ(erweiterung.getAusgegeben(), 0);
        EXPECT_THAT(erweiterung.getInstanzen(), IsEmpty());
        EXPECT_FALSE(datei.istOffen());
    }

    Mitschnitt mitschnitt{orvo::orvoutil::LogLevel::Info};
    const Plugindatei datei;
    OrvoPluginV1& plugin = *datei.plugin;
    OrvoValidierungsServiceErweiterung& erweiterung = datei.erweiterung<OrvoValidierungsServiceErweiterung>();
};

TEST_F(ServiceGriffTest, GivesItsServiceBackAtItsEnd) {
    {
        const Griff griff(&erweiterung); // one use: `griff`
        ASSERT_TRUE(griff);
        EXPECT_NE(griff.get(), nullptr);
        EXPECT_EQ(griff.getErweiterung(), &erweiterung);
        EXPECT_EQ(griff->getSupportedFeatures().size(), 0u);
        EXPECT_EQ(&*griff, griff.get());
        EXPECT_EQ(plugin.getUseCount(), 1);
        EXPECT_EQ(datei.lebende(), 1);
    }
    erwarteUnbenutzt();
    EXPECT_THAT(mitschnitt.meldungen(), Not(testing::Contains(HasSubstr("ServiceGriff"))));
}

TEST_F(ServiceGriffTest, GivesItsServiceBackBeforeItsEndWhenAsked) {
    const Griff anderer(&erweiterung); // keeps the library open, so that its counter can be read
    Griff griff(&erweiterung);
    EXPECT_EQ(datei.lebende(), 2);
    griff.gibZurueck();
    EXPECT_EQ(datei.lebende(), 1);
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_FALSE(griff);
    EXPECT_EQ(griff.get(), nullptr);
    EXPECT_EQ(griff.getErweiterung(), nullptr);
    EXPECT_FALSE(griff.istVerwaist());
    griff.gibZurueck();
    EXPECT_EQ(plugin.getUseCount(), 1) << "a second time changes nothing";
    EXPECT_EQ(mitschnitt.anzahlMit("Ein ServiceGriff h"), 0);
}

TEST_F(ServiceGriffTest, IsEmptyWithoutAnExtension) {
    Griff leer;
    EXPECT_FALSE(leer);
    const Griff ohne(static_cast<OrvoValidierungsServiceErweiterung*>(nullptr));
    EXPECT_FALSE(ohne);
    EXPECT_EQ(ohne.get(), nullptr);
    EXPECT_FALSE(ohne.istVerwaist());
    leer.gibZurueck();
    EXPECT_FALSE(leer);
}

TEST_F(ServiceGriffTest, IsEmptyAndHoldsNothingWhenTheFactoryGivesNothing) {
    for (const char* factory : {"gibtKeinenService", "gibtEsNicht", "wirftStandardausnahme", "wirftZahl"}) {
        SCOPED_TRACE(factory);
        erweiterung.setServiceFactoryName(factory);
        const Griff griff(&erweiterung);
        EXPECT_FALSE(griff);
        EXPECT_EQ(griff.getErweiterung(), nullptr);
        erwarteUnbenutzt();
    }
}

TEST_F(ServiceGriffTest, GivesAnObjectOfAnotherInterfaceBackAtOnce) {
    erweiterung.setServiceFactoryName("gibtDatenService");
    const Griff griff(&erweiterung);
    EXPECT_FALSE(griff);
    EXPECT_FALSE(griff.istVerwaist());
    erwarteUnbenutzt();
    EXPECT_THAT(mitschnitt.zeilen("orvo.plugin.erweiterung.ServiceGriff"),
                ElementsAre(std::string("W Service hat nicht die verlangte Schnittstelle: ") +
                            typeid(ValidierungsService).name()));
}

TEST_F(ServiceGriffTest, HoldsWhateverAnExtensionGivesAsAService) {
    erweiterung.setServiceFactoryName("gibtDatenService");
    {
        const ServiceGriff<Service> griff(&erweiterung);
        EXPECT_TRUE(griff);
        EXPECT_EQ(plugin.getUseCount(), 1);
    }
    erwarteUnbenutzt();
}

TEST_F(ServiceGriffTest, MovesItsServiceAndNothingElse) {
    {
        Griff erster(&erweiterung);
        ValidierungsService* const service = erster.get();
        Griff zweiter(std::move(erster));
        EXPECT_FALSE(erster); // NOLINT(bugprone-use-after-move): a handle moved from is empty
        EXPECT_EQ(erster.getErweiterung(), nullptr);
        EXPECT_EQ(zweiter.get(), service);
        Griff dritter;
        dritter = std::move(zweiter);
        EXPECT_FALSE(zweiter); // NOLINT(bugprone-use-after-move)
        EXPECT_EQ(dritter.get(), service);
        EXPECT_EQ(plugin.getUseCount(), 1);
        EXPECT_EQ(datei.lebende(), 1);
    }
    erwarteUnbenutzt();
}

TEST_F(ServiceGriffTest, GivesBackWhatItHeldWhenAnotherMovesIn) {
    Griff erster(&erweiterung);
    Griff zweiter(&erweiterung);
    ValidierungsService* const service = zweiter.get();
    erster = std::move(zweiter);
    EXPECT_EQ(erster.get(), service);
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_EQ(datei.lebende(), 1);
    erster = Griff();
    EXPECT_FALSE(erster);
    erwarteUnbenutzt();
}

TEST_F(ServiceGriffTest, StaysAsItIsWhenMovedOntoItself) {
    Griff griff(&erweiterung);
    ValidierungsService* const service = griff.get();
    Griff& derselbe = griff;
    griff = std::move(derselbe);
    EXPECT_EQ(griff.get(), service);
    EXPECT_EQ(datei.lebende(), 1);
    Griff leer;
    Griff& auchLeer = leer;
    leer = std::move(auchLeer);
    EXPECT_FALSE(leer);
}

TEST_F(ServiceGriffTest, ChangesPlacesWithAnother) {
    Griff erster(&erweiterung);
    Griff zweiter(&erweiterung);
    ValidierungsService* const service = erster.get();
    std::swap(erster, zweiter);
    EXPECT_EQ(zweiter.get(), service);
    EXPECT_NE(erster.get(), service);
    EXPECT_EQ(plugin.getUseCount(), 2);
}

TEST_F(ServiceGriffTest, StandsInAVectorThatGrowsAndShrinks) {
    std::vector<Griff> griffe;
    for (int i = 0; i < 20; ++i)
        griffe.emplace_back(&erweiterung);
    EXPECT_EQ(plugin.getUseCount(), 20);
    griffe.erase(griffe.begin() + 3, griffe.begin() + 10);
    EXPECT_EQ(plugin.getUseCount(), 13);
    EXPECT_EQ(datei.lebende(), 13);
    griffe.clear();
    erwarteUnbenutzt();
}

TEST_F(ServiceGriffTest, CountsEachTimeAnObjectIsOut) {
    gibDenselben();
    {
        const Griff erster(&erweiterung);
        Griff zweiter(&erweiterung);
        EXPECT_EQ(erster.get(), zweiter.get());
        EXPECT_EQ(plugin.getUseCount(), 2);
        zweiter.gibZurueck();
        EXPECT_TRUE(erster) << "the other one still holds it";
        EXPECT_EQ(plugin.getUseCount(), 1);
    }
    erwarteUnbenutzt();
}

TEST_F(ServiceGriffTest, LeavesAResidentPluginOpen) {
    plugin.setResident(true);
    { const Griff griff(&erweiterung); }
    EXPECT_EQ(plugin.getUseCount(), 0);
    EXPECT_TRUE(datei.istOffen());
    EXPECT_EQ(datei.lebende(), 0);
}

TEST_F(ServiceGriffTest, EndsWithTheBlockThatAnExceptionLeaves) {
    try {
        const Griff griff(&erweiterung);
        throw std::runtime_error("somewhere in the client");
    } catch (const std::runtime_error&) {
        EXPECT_EQ(plugin.getUseCount(), 0);
        EXPECT_THAT(erweiterung.getInstanzen(), IsEmpty());
    }
    { const Griff griff(&erweiterung); } // the library was kept open for the exception
    erwarteUnbenutzt();
}

// The text says "Griff hält": its letters beyond ASCII are Latin-1.
constexpr char kUeberlebt[] = "E Ein ServiceGriff h\xE4lt einen Service \xFC"
                              "ber das Ende seines Plugins hinaus. Factory: ";

TEST_F(ServiceGriffTest, LeavesTheUseCountAsItWasWhenTheLibraryCannotBeOpened) {
    const std::string beiseite = datei.pfad + ".beiseite";
    std::filesystem::rename(datei.pfad, beiseite);
    { EXPECT_FALSE(Griff(&erweiterung)); }
    EXPECT_EQ(plugin.getUseCount(), 0);
    EXPECT_EQ(erweiterung.holeService(), nullptr);
    EXPECT_EQ(plugin.getUseCount(), -1) << "without a handle the use that was never counted is given back";
    plugin.notifyUse();
    std::filesystem::rename(beiseite, datei.pfad);
    EXPECT_TRUE(Griff(&erweiterung)) << "one failed opening disables nothing";
    erwarteUnbenutzt();
}

/// An extension class of the host. Its own `holeService` returns another interface than its plugin's objects have.
class ErweiterungDesHosts : public OrvoFADatenServiceErweiterung {
public:
    orvo::service::IXPathMappingService* holeService() {
        return dynamic_cast<orvo::service::IXPathMappingService*>(OrvoServiceErweiterung::holeService());
    }
};

TEST_F(ServiceGriffTest, TrustsNoInterfaceThatAnObjectWasFoundToHaveAsAnother) {
    ErweiterungDesHosts eigene;
    eigene.setPlugin(&plugin);
    eigene.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    eigene.setServiceFactoryName("orvo_plugin_get_check_service");
    const ServiceGriff<ValidierungsService> pruefung(&eigene);
    EXPECT_TRUE(pruefung);
    const ServiceGriff<IXPathMappingService> falsche(&eigene);
    EXPECT_FALSE(falsche);
    const ServiceGriff<orvo::service::DatensatzReaderService> auchFalsche(&eigene);
    EXPECT_FALSE(auchFalsche);
    EXPECT_EQ(plugin.getUseCount(), 1);
}

/// A service besides the one that the extension offers.
class Nebendienst : public Service {};

class Doppeldienst : public ValidierungsService, public Nebendienst {
    int pruefe(const orvo::data::SteuerfallListe&, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis&) override {
        return 0;
    }
};

TEST_F(ServiceGriffTest, HoldsOnlyThePartOfAnObjectThatTheFactoryGave) {
    Attrappe::Notizen notizen;
    auto* const bibliothek = new Attrappe(notizen);
    bibliothek->exportiere(
        "gibtNebendienst", +[]() -> Service* {
            static Doppeldienst dienst;
            return static_cast<Nebendienst*>(&dienst);
        });
    OrvoPluginV1 eigenes(bibliothek);
    OrvoValidierungsServiceErweiterung kopie(erweiterung);
    kopie.setPlugin(&eigenes);
    kopie.setzeFlag(FLAG_SERVICE_LOESCHEN, false);
    kopie.setServiceFactoryName("gibtNebendienst");
    EXPECT_TRUE(ServiceGriff<Nebendienst>(&kopie));
    EXPECT_FALSE(Griff(&kopie)) << "the check service is at another address";
    EXPECT_EQ(eigenes.getUseCount(), 0);
}

// The text says "hält" and "zurückgegeben".
constexpr char kVergeben[] = "E Ein ServiceGriff h\xE4lt einen Service, der schon zur\xFC"
                             "ckgegeben ist. Factory: gibtDenselbenService";

TEST_F(ServiceGriffTest, IsOrphanedWhenItsObjectIsDeletedAtTheFirstReleaseOfSeveral) {
    erweiterung.setServiceFactoryName("gibtDenselbenService");
    Griff erster(&erweiterung), zweiter(&erweiterung), dritter(&erweiterung);
    ASSERT_EQ(erster.get(), zweiter.get());
    EXPECT_EQ(plugin.getUseCount(), 3);
    erster.gibZurueck();
    EXPECT_FALSE(erster.istVerwaist());
    for (const Griff* griff : {&zweiter, &dritter}) {
        EXPECT_TRUE(griff->istVerwaist());
        EXPECT_FALSE(*griff);
        EXPECT_EQ(griff->getErweiterung(), nullptr);
    }
    EXPECT_EQ(mitschnitt.anzahl(kVergeben), 1);
    erwarteUnbenutzt();
}

TEST_F(ServiceGriffTest, IsOrphanedWhenItsObjectIsDeletedWhileACallerHoldsItWithoutAHandle) {
    erweiterung.setServiceFactoryName("gibtDenselbenService");
    ValidierungsService* const lose = erweiterung.holeService();
    const Griff griff(&erweiterung);
    erweiterung.release(lose);
    EXPECT_TRUE(griff.istVerwaist());
    erwarteUnbenutzt();
}

TEST_F(ServiceGriffTest, LeavesTheUseOfACallerWithoutAHandleWhenItDeletesTheObject) {
    erweiterung.setServiceFactoryName("gibtDenselbenService");
    ValidierungsService* const lose = erweiterung.holeService();
    { const Griff griff(&erweiterung); }
    EXPECT_EQ(plugin.getUseCount(), 1);
    erweiterung.release(lose);
    erwarteUnbenutzt();
    EXPECT_EQ(mitschnitt.anzahlMit("ServiceGriff"), 0);
}

TEST_F(ServiceGriffTest, IsOrphanedWhenItsServiceIsGivenBackPastIt) {
    for (const bool loeschen : {true, false}) {
        SCOPED_TRACE(loeschen);
        erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, loeschen);
        erweiterung.setServiceFactoryName(loeschen ? "orvo_plugin_get_check_service"
                                                   : "gibtStaendigenService");
        Griff griff(&erweiterung);
        mitschnitt.leere();
        erweiterung.release(griff.get());
        EXPECT_TRUE(griff.istVerwaist());
        EXPECT_EQ(mitschnitt.anzahlMit("der schon zur"), 1);
        erwarteUnbenutzt();
        Griff spaeterer(&erweiterung); // perhaps at the same address
        griff = Griff();
        EXPECT_TRUE(spaeterer);
        EXPECT_EQ(plugin.getUseCount(), 1) << "the holder of another object keeps it";
        EXPECT_EQ(mitschnitt.anzahlMit("Unbekannte Serviceinstanz"), 0);
    }
}

TEST_F(ServiceGriffTest, IsOrphanedAsTheLatestOfThoseWhoseObjectIsGivenBackPastThem) {
    gibDenselben();
    Griff erster(&erweiterung), zweiter(&erweiterung), dritter(&erweiterung);
    erweiterung.release(erster.get());
    EXPECT_TRUE(erster);
    EXPECT_TRUE(zweiter);
    EXPECT_TRUE(dritter.istVerwaist());
    EXPECT_EQ(plugin.getUseCount(), 2) << "the others hold it";
    erster.gibZurueck();
    zweiter.gibZurueck();
    erwarteUnbenutzt();
}

TEST_F(ServiceGriffTest, StaysWhenACallerGivesBackItsOwnUseOfTheSameObject) {
    gibDenselben();
    const Griff griff(&erweiterung);
    ValidierungsService* const lose = erweiterung.holeService();
    erweiterung.release(lose);
    EXPECT_TRUE(griff);
    EXPECT_EQ(plugin.getUseCount(), 1);
}

class VerwaisterServiceGriff : public ServiceGriffTest {
protected:
    VerwaisterServiceGriff() { gibDenselben(); }

    void entlade() { const_cast<Plugindatei&>(datei).plugin.reset(); }
};

TEST_F(VerwaisterServiceGriff, IsEmptyAndTouchesNothing) {
    std::optional<Griff> griff(std::in_place, &erweiterung);
    entlade();
    EXPECT_FALSE(datei.istOffen());
    EXPECT_FALSE(*griff);
    EXPECT_EQ(griff->get(), nullptr);
    EXPECT_EQ(griff->getErweiterung(), nullptr);
    EXPECT_TRUE(griff->istVerwaist());
    EXPECT_THAT(mitschnitt.meldungen(), testing::Contains(std::string(kUeberlebt) + "gibtStaendigenService"));
    griff.reset();
}

TEST_F(VerwaisterServiceGriff, IsReportedOnceForEachExtension) {
    const Griff erster(&erweiterung), zweiter(&erweiterung), dritter(&erweiterung);
    auto& finanzamt = datei.erweiterung<OrvoFADatenServiceErweiterung>();
    finanzamt.setServiceFactoryName("gibtStaendigenService");
    const ServiceGriff anderer(&finanzamt);
    entlade();
    EXPECT_EQ(mitschnitt.anzahlMit("Ein ServiceGriff h"), 2);
    for (const ServiceGriffBasis* griff :
         std::initializer_list<const ServiceGriffBasis*>{&erster, &zweiter, &dritter, &anderer})
        EXPECT_TRUE(griff->istVerwaist());
    EXPECT_FALSE(erster || zweiter || dritter || anderer);
}

TEST_F(VerwaisterServiceGriff, IsNoneThatWasGivenBackOrMovedFromInTime) {
    Griff zurueck(&erweiterung), bewegt(&erweiterung), ueberschrieben(&erweiterung);
    Griff letzter(std::move(bewegt));
    zurueck.gibZurueck();
    ueberschrieben = Griff();
    entlade();
    EXPECT_TRUE(letzter.istVerwaist());
    EXPECT_FALSE(bewegt.istVerwaist()); // NOLINT(bugprone-use-after-move)
    EXPECT_FALSE(zurueck.istVerwaist());
    EXPECT_FALSE(ueberschrieben.istVerwaist());
}

TEST_F(VerwaisterServiceGriff, LeavesNoWordInTheLogWhenAllWereGivenBack) {
    { const Griff erster(&erweiterung), zweiter(&erweiterung); }
    entlade();
    EXPECT_EQ(mitschnitt.anzahlMit("ServiceGriff"), 0);
}

TEST_F(VerwaisterServiceGriff, MovesAndForgetsWhatItWas) {
    Griff griff(&erweiterung);
    entlade();
    Griff anderer(std::move(griff));
    EXPECT_TRUE(anderer.istVerwaist());
    EXPECT_FALSE(griff.istVerwaist()); // NOLINT(bugprone-use-after-move)
    anderer.gibZurueck();
    EXPECT_FALSE(anderer.istVerwaist());
    EXPECT_FALSE(anderer);
}

TEST_F(VerwaisterServiceGriff, TakesAServiceOfAnotherPlugin) {
    Griff griff(&erweiterung);
    entlade();
    const Plugindatei andere;
    auto& neue = andere.erweiterung<OrvoValidierungsServiceErweiterung>();
    neue.setServiceFactoryName("gibtStaendigenService");
    griff = Griff(&neue);
    EXPECT_TRUE(griff);
    EXPECT_FALSE(griff.istVerwaist());
    griff.gibZurueck();
    EXPECT_EQ(andere.plugin->getUseCount(), 0);
}

TEST_F(VerwaisterServiceGriff, IsNotHeldByACopyOfTheExtension) {
    const std::unique_ptr<OrvoErweiterung> klon(erweiterung.clone());
    const Griff griff(&erweiterung);
    entlade();
    EXPECT_TRUE(griff.istVerwaist()) << "the copy has none of the objects out, and none of the handles";
}

TEST_F(VerwaisterServiceGriff, OnAClientsOwnCopyOfTheExtensionTouchesNothingWhenThePluginIsGone) {
    OrvoValidierungsServiceErweiterung kopie(erweiterung), andereKopie(erweiterung);
    Griff griff(&kopie), anderer(&andereKopie);
    ASSERT_TRUE(griff);
    entlade();
    EXPECT_TRUE(griff.istVerwaist());
    EXPECT_TRUE(anderer.istVerwaist());
    griff.gibZurueck();
    EXPECT_EQ(mitschnitt.anzahl(std::string(kUeberlebt) + "gibtStaendigenService"), 2);
}

TEST_F(VerwaisterServiceGriff, OnAClientsOwnCopyOfTheExtensionIsEmptyBeforeTheLibraryCloses) {
    struct Nachsehende : orvo::orvoutil::SharedLib {
        using SharedLib::SharedLib;
        ~Nachsehende() override { *warVerwaist = griff->istVerwaist(); }
        bool* warVerwaist = nullptr;
        const Griff* griff = nullptr;
    };
    auto* const bibliothek = new Nachsehende(datei.pfad);
    auto eigenes = std::make_unique<OrvoPluginV1>(bibliothek);
    OrvoValidierungsServiceErweiterung kopie(erweiterung);
    kopie.setPlugin(eigenes.get());
    const Griff griff(&kopie);
    ASSERT_TRUE(griff);
    bool warVerwaist = false;
    bibliothek->warVerwaist = &warVerwaist;
    bibliothek->griff = &griff;
    eigenes.reset();
    EXPECT_TRUE(warVerwaist) << "the library's last code may look at it";
}

TEST_F(VerwaisterServiceGriff, OnAClientsOwnCopyOfTheExtensionTouchesNothingWhenTheCopyIsGone) {
    auto kopie = std::make_unique<OrvoValidierungsServiceErweiterung>(erweiterung);
    Griff griff(kopie.get());
    kopie.reset();
    EXPECT_TRUE(griff.istVerwaist());
    EXPECT_FALSE(griff);
    entlade();
    EXPECT_EQ(mitschnitt.anzahl(std::string(kUeberlebt) + "gibtStaendigenService"), 1);
}

#ifndef NDEBUG
TEST_F(VerwaisterServiceGriff, EndsADebugBuildThatUsesIt) {
    const Griff griff(&erweiterung);
    entlade();
    EXPECT_DEATH((void)griff->getSupportedFeatures(), "plugin was unloaded while the handle held it");
    EXPECT_DEATH((void)*griff, "plugin was unloaded while the handle held it");
}

TEST_F(ServiceGriffTest, EndsADebugBuildThatUsesAnEmptyOne) {
    const Griff leer;
    EXPECT_DEATH((void)leer->getSupportedFeatures(), "use of an empty handle");
}
#endif

} // namespace
