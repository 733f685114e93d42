#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>

#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/service/ValidierungsService.h>

#include "orvoplugin/plugin/erweiterung/Probe.h"

#include <cstddef>
#include <stdexcept>
#include <typeinfo>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class OrvoServiceErweiterungTest : public Probe {};

TEST_F(OrvoServiceErweiterungTest, StartsWithItsKindAndFactoryAndNothingHandedOut) {
    const Erweiterungsprobe neue("meine_fabrik", ORVO_CHECK_SERVICE_ERWEITERUNG);
    EXPECT_EQ(neue.getTyp(), ORVO_CHECK_SERVICE_ERWEITERUNG);
    EXPECT_EQ(neue.getServiceFactoryName(), "meine_fabrik");
    EXPECT_EQ(neue.getAusgegeben(), 0);
    EXPECT_THAT(neue.getInstanzen(), IsEmpty());
    EXPECT_EQ(neue.getPlugin(), nullptr);
}

TEST_F(OrvoServiceErweiterungTest, UsesThePluginThenLooksTheFactoryUpThenCallsIt) {
    Dienst dienst;
    naechster = &dienst;
    EXPECT_EQ(erweiterung.holeService(), &dienst);
    EXPECT_THAT(seither(), ElementsAre("notifyUse", "symbol fabrik", "fabrik"));
    EXPECT_THAT(erweiterung.getInstanzen(), ElementsAre(Pair(&dienst, 1)));
    EXPECT_EQ(erweiterung.getAusgegeben(), 1);
    EXPECT_EQ(plugin.getUseCount(), 1);
}

TEST_F(OrvoServiceErweiterungTest, GivesTheUseBackWhenTheServiceComesBack) {
    Dienst dienst;
    naechster = &dienst;
    erweiterung.holeService();
    seither();
    erweiterung.release(&dienst);
    EXPECT_THAT(seither(), ElementsAre("release")) << "and the service was not deleted";
    EXPECT_THAT(erweiterung.getInstanzen(), IsEmpty());
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
    EXPECT_EQ(plugin.getUseCount(), 0);
}

TEST_F(OrvoServiceErweiterungTest, NoLongerCountsAServiceWhoseUseItGivesBack) {
    struct Nachzaehlende : Pluginprobe {
        using Pluginprobe::Pluginprobe;
        void release() override {
            ausgegeben = erweiterung->getAusgegeben();
            Pluginprobe::release();
        }
        const OrvoServiceErweiterung* erweiterung = nullptr;
        int ausgegeben = -1;
    };
    auto* const andere = new Attrappe(notizen);
    andere->exportiere("fabrik", &fabrik);
    Nachzaehlende nachzaehlende(ablauf, andere);
    nachzaehlende.erweiterung = &erweiterung;
    erweiterung.setPlugin(&nachzaehlende);
    Dienst dienst;
    naechster = &dienst;
    erweiterung.release(erweiterung.holeService());
    EXPECT_EQ(nachzaehlende.ausgegeben, 0);
}

TEST_F(OrvoServiceErweiterungTest, GivesTheUseBackAtOnceWithoutAFactory) {
    erweiterung.setServiceFactoryName("fehlt");
    EXPECT_EQ(erweiterung.holeService(), nullptr);
    EXPECT_THAT(seither(), ElementsAre("notifyUse", "symbol fehlt", "release"));
    EXPECT_THAT(erweiterung.getInstanzen(), IsEmpty());
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
}

TEST_F(OrvoServiceErweiterungTest, GivesTheUseBackAtOnceWhenTheFactoryMakesNothing) {
    EXPECT_EQ(erweiterung.holeService(), nullptr);
    EXPECT_THAT(seither(), ElementsAre("notifyUse", "symbol fabrik", "fabrik", "release"));
    EXPECT_THAT(erweiterung.getInstanzen(), IsEmpty()) << "null is never entered";
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
}

TEST_F(OrvoServiceErweiterungTest, GivesTheUseBackAtOnceWhenTheFactoryThrows) {
    bibliothek->exportiere(
        "fabrik", +[]() -> Service* { throw std::runtime_error("kann nicht"); });
    EXPECT_EQ(erweiterung.holeService(), nullptr);
    EXPECT_THAT(seither(), ElementsAre("notifyUse", "symbol fabrik", "release"));
    EXPECT_THAT(erweiterung.getInstanzen(), IsEmpty());
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
}

TEST_F(OrvoServiceErweiterungTest, CountsAServiceThatIsHandedOutTwice) {
    Dienst dienst;
    naechster = &dienst;
    EXPECT_EQ(erweiterung.holeService(), erweiterung.holeService());
    EXPECT_THAT(erweiterung.getInstanzen(), ElementsAre(Pair(&dienst, 2)));
    EXPECT_EQ(erweiterung.getAusgegeben(), 2);
    EXPECT_EQ(plugin.getUseCount(), 2);

    erweiterung.release(&dienst);
    EXPECT_THAT(erweiterung.getInstanzen(), ElementsAre(Pair(&dienst, 1)));
    EXPECT_EQ(erweiterung.getAusgegeben(), 1);
    EXPECT_EQ(plugin.getUseCount(), 1);

    erweiterung.release(&dienst);
    EXPECT_THAT(erweiterung.getInstanzen(), IsEmpty());
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
    EXPECT_EQ(plugin.getUseCount(), 0);

    seither();
    erweiterung.release(&dienst); // one time too many
    EXPECT_THAT(seither(), IsEmpty());
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
    EXPECT_EQ(plugin.getUseCount(), 0);
}

TEST_F(OrvoServiceErweiterungTest, KeepsSeveralServicesApart) {
    Dienst dienste[2];
    for (Dienst& dienst : dienste) {
        naechster = &dienst;
        erweiterung.holeService();
    }
    EXPECT_THAT(erweiterung.getInstanzen(), ElementsAre(Pair(&dienste[0], 1), Pair(&dienste[1], 1)));
    EXPECT_EQ(erweiterung.getAusgegeben(), 2);
    erweiterung.release(&dienste[0]);
    EXPECT_THAT(erweiterung.getInstanzen(), ElementsAre(Pair(&dienste[1], 1)));
    EXPECT_EQ(erweiterung.getAusgegeben(), 1);
    EXPECT_EQ(plugin.getUseCount(), 1);
}

TEST_F(OrvoServiceErweiterungTest, IgnoresAServiceThatItDidNotHandOut) {
    Dienst dienst, fremder;
    naechster = &dienst;
    erweiterung.holeService();
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    seither();
    erweiterung.release(&fremder);
    erweiterung.release(nullptr);
    EXPECT_THAT(seither(), IsEmpty()) << "neither deleted nor given back to the plugin";
    EXPECT_THAT(erweiterung.getInstanzen(), ElementsAre(Pair(&dienst, 1)));
    EXPECT_EQ(erweiterung.getAusgegeben(), 1);
    EXPECT_EQ(plugin.getUseCount(), 1);
}

TEST_F(OrvoServiceErweiterungTest, DeletesTheServiceBeforeItGivesTheUseBack) {
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    naechster = new Dienst;
    Service* const service = erweiterung.holeService();
    seither();
    erweiterung.release(service);
    EXPECT_THAT(seither(), ElementsAre("delete", "release"));
    EXPECT_THAT(erweiterung.getInstanzen(), IsEmpty());
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
}

TEST_F(OrvoServiceErweiterungTest, DeletesAServiceThatIsOutTwiceAtItsFirstReturn) {
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    Service* const anderer = new Dienst;
    naechster = new Dienst;
    Service* const service = erweiterung.holeService();
    erweiterung.holeService();
    seither();
    erweiterung.release(service);
    EXPECT_THAT(seither(), ElementsAre("delete", "release"));
    EXPECT_THAT(erweiterung.getInstanzen(), ElementsAre(Pair(service, 1)));
    EXPECT_EQ(erweiterung.getAusgegeben(), 1);
    EXPECT_EQ(plugin.getUseCount(), 1);

    naechster = anderer;
    erweiterung.holeService();
    seither();
    erweiterung.release(anderer);
    EXPECT_THAT(seither(), ElementsAre("delete", "release"));

    erweiterung.release(service);
    EXPECT_THAT(seither(), ElementsAre("release")) << "and never a second time";
    EXPECT_THAT(erweiterung.getInstanzen(), IsEmpty());
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
}

TEST_F(OrvoServiceErweiterungTest, DeletesANewServiceThatStandsWhereADeletedOneStood) {
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    alignas(Ortsfest) unsigned char platz[sizeof(Ortsfest)];
    naechster = new (platz) Ortsfest;
    erweiterung.holeService();
    erweiterung.holeService();
    erweiterung.release(naechster);
    naechster = new (platz) Ortsfest;
    erweiterung.holeService();
    seither();
    erweiterung.release(naechster);
    EXPECT_THAT(seither(), ElementsAre("delete", "release"));
}

TEST_F(OrvoServiceErweiterungTest, DeletesForTheFirstFlagOnly) {
    for (const auto flag : {FLAG_RESERVIERT_1, FLAG_RESERVIERT_2, FLAG_RESERVIERT_3, FLAG_RESERVIERT_4})
        erweiterung.setzeFlag(flag, true);
    Dienst dienst;
    naechster = &dienst;
    erweiterung.release(erweiterung.holeService());
    EXPECT_THAT(seither(), ElementsAre("notifyUse", "symbol fabrik", "fabrik", "release"));
}

TEST_F(OrvoServiceErweiterungTest, LooksAtTheFlagWhenTheServiceComesBack) {
    naechster = new Dienst;
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, false);
    Service* const service = erweiterung.holeService();
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    seither();
    erweiterung.release(service);
    EXPECT_THAT(seither(), ElementsAre("delete", "release"));
}

TEST_F(OrvoServiceErweiterungTest, LooksForAnotherFactoryFromItsRenamingOn) {
    Dienst dienst;
    naechster = &dienst;
    bibliothek->exportiere("andere", &fabrik);
    erweiterung.setServiceFactoryName("andere");
    EXPECT_EQ(erweiterung.getServiceFactoryName(), "andere");
    EXPECT_EQ(erweiterung.holeService(), &dienst);
    EXPECT_THAT(seither(), ElementsAre("notifyUse", "symbol andere", "fabrik"));
}

TEST_F(OrvoServiceErweiterungTest, CarriesTheCountIntoACopyButNotTheServices) {
    Dienst dienst;
    naechster = &dienst;
    erweiterung.holeService();
    erweiterung.holeService();
    erweiterung.setzeFlag(FLAG_RESERVIERT_4, true);
    erweiterung.addAbhaengigkeit(UfaVzAbhaengigkeit(Unterfallart(10)));
    seither();

    const Erweiterungsprobe kopie(erweiterung);
    EXPECT_EQ(kopie.getAusgegeben(), 2);
    EXPECT_THAT(kopie.getInstanzen(), IsEmpty());
    EXPECT_EQ(kopie.getPlugin(), &plugin);
    EXPECT_EQ(kopie.getServiceFactoryName(), "fabrik");
    EXPECT_TRUE(kopie.istFlagGesetzt(FLAG_RESERVIERT_4));
    EXPECT_EQ(kopie.getAbhaengigkeiten().size(), 1u);
    EXPECT_THAT(erweiterung.getInstanzen(), ElementsAre(Pair(&dienst, 2))) << "the original keeps its own";
    EXPECT_THAT(seither(), IsEmpty());
}

TEST_F(OrvoServiceErweiterungTest, DoesNotTakeBackInACopyWhatTheOriginalHandedOut) {
    Dienst dienst;
    naechster = &dienst;
    erweiterung.holeService();
    Erweiterungsprobe kopie(erweiterung);
    seither();
    kopie.release(&dienst);
    EXPECT_THAT(seither(), IsEmpty());
    EXPECT_EQ(kopie.getAusgegeben(), 1);
    EXPECT_EQ(plugin.getUseCount(), 1);
    // The copy takes back what it handed out itself.
    EXPECT_EQ(kopie.holeService(), &dienst);
    EXPECT_EQ(kopie.getAusgegeben(), 2);
    kopie.release(&dienst);
    EXPECT_EQ(kopie.getAusgegeben(), 1);
}

TEST_F(OrvoServiceErweiterungTest, LeavesServicesThatAreOutAloneWhenItEnds) {
    Dienst dienst;
    naechster = &dienst;
    {
        Erweiterungsprobe kurzlebige(erweiterung);
        kurzlebige.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
        kurzlebige.holeService();
        seither();
    }
    EXPECT_THAT(seither(), IsEmpty()) << "neither deleted nor given back to the plugin";
    EXPECT_EQ(plugin.getUseCount(), 1);
}

/// An object of a library. Its virtual table has the address at which another library of the same layout has that of
/// another class.
struct Gegenstand {
    struct {
        std::ptrdiff_t anfang = 0;
        const std::type_info* klasse = nullptr;
        void* funktionen[8] = {};
    } tabelle;
    const void* verweis = tabelle.funktionen;

    Service* alsService() { return reinterpret_cast<Service*>(&verweis); }
};

/// A complete class, as only plugins have.
class EinePruefung : public orvo::service::ValidierungsService {
    int pruefe(const orvo::data::SteuerfallListe&, const Unterfallart&, const Veranlagungszeitraum&,
               PruefErgebnis&) override {
        return 0;
    }
};

TEST_F(OrvoServiceErweiterungTest, ChecksTheClassAnewWhenTheLibraryMayHaveBeenAnotherMeanwhile) {
    Gegenstand gegenstand;
    OrvoValidierungsServiceErweiterung pruefung(10, Veranlagungszeitraum(2009, "YYYY"));
    pruefung.setServiceFactoryName("fabrik");
    pruefung.setPlugin(&plugin);
    naechster = gegenstand.alsService();
    gegenstand.tabelle.klasse = &typeid(EinePruefung);
    ASSERT_NE(pruefung.holeService(), nullptr);
    pruefung.release(naechster); // the last use: the library closes, and its file is replaced

    Dienst anderer;
    naechster = &anderer;
    erweiterung.holeService(); // opens the new one
    naechster = gegenstand.alsService();
    gegenstand.tabelle.klasse = &typeid(Dienst);
    EXPECT_EQ(pruefung.holeService(), nullptr) << "the object is of no check service any more";
    EXPECT_EQ(plugin.getUseCount(), 2) << "held by `anderer`, and by the object that stays entered";
}

TEST_F(OrvoServiceErweiterungTest, WithoutAPluginHandsOutNothing) {
    erweiterung.setPlugin(nullptr);
    EXPECT_EQ(erweiterung.holeService(), nullptr);
    EXPECT_THAT(seither(), IsEmpty());
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
}

TEST_F(OrvoServiceErweiterungTest, TakesAServiceBackAlsoWhenItsPluginWasTakenAway) {
    Dienst dienst;
    naechster = &dienst;
    erweiterung.holeService();
    naechster = new Dienst;
    erweiterung.holeService();
    erweiterung.setPlugin(nullptr);
    seither();
    erweiterung.release(&dienst);
    EXPECT_THAT(seither(), IsEmpty());
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    erweiterung.release(naechster);
    EXPECT_THAT(seither(), ElementsAre("delete"));
    EXPECT_THAT(erweiterung.getInstanzen(), IsEmpty());
    EXPECT_EQ(erweiterung.getAusgegeben(), 0);
}

TEST_F(OrvoServiceErweiterungTest, OfAPluginWithoutALibraryHandsOutNothing) {
    Pluginprobe ohne(ablauf, nullptr);
    erweiterung.setPlugin(&ohne);
    EXPECT_EQ(erweiterung.holeService(), nullptr);
    EXPECT_THAT(seither(), ElementsAre("notifyUse", "release"));
}

} // namespace
