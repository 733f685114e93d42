// The cost of getting and giving back a service, without that of the plugin's factory.

#include "Zaehler.h"

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/ServiceGriff.h>
#include <orvoplugin/registry/OrvoErweiterungsManager.h>
#include <orvoplugin/service/PruefErgebnis.h>
#include <orvoplugin/service/SteuerfallListe.h>
#include <orvoplugin/service/ValidierungsService.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/ObjectLifetimeManager.h>

#include "TestPlugins.h"
#include "support/Verzeichnis.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

constexpr int kMal = 10;

class ServiceAufwand : public testing::Test {
protected:
    ~ServiceAufwand() override { orvo::orvoutil::ObjectLifetimeManager::instance().destroyAll(); }

    /// Starts with one plugin that offers a check service for 10 and 2009.
    OrvoValidierungsServiceErweiterung& starte(const std::string& auftraege) {
        home_.kopiere(test_plugins::DescribedByFile, kDatei);
        home_.schreibe(std::string(kDatei) + ".txt", auftraege + "\ncheck 10 2009\n");
        orvo::orvoutil::Einstellungen().setze("basis.home_dir", home_.pfad());
        return *OrvoErweiterungsManager::getInstanz()->findeValidierungsServiceErweiterung(10,
                                                                                           {2009, "YYYY"});
    }

    static void holeUndGib(OrvoValidierungsServiceErweiterung& erweiterung) {
        Service* const service = erweiterung.holeService();
        ASSERT_NE(service, nullptr);
        erweiterung.release(service);
    }

    static constexpr char kDatei[] = "plugins/libpruefung.dylib";
    const Verzeichnis home_;
};

TEST_F(ServiceAufwand, IsTheSameByAHandle) {
    OrvoValidierungsServiceErweiterung& erweiterung = starte("loeschen");
    const auto mitGriff = [&] {
        ServiceGriff griff(&erweiterung);
        const ServiceGriff anderer(std::move(griff));
        ASSERT_TRUE(anderer);
    };
    for (const bool inBenutzung : {false, true}) {
        SCOPED_TRACE(inBenutzung);
        if (inBenutzung)
            erweiterung.getPlugin()->notifyUse();
        holeUndGib(erweiterung);
        mitGriff();
        const Zaehler gegebene = Zaehler::waehrend([&] { holeUndGib(erweiterung); });
        const Zaehler griff = Zaehler::waehrend(mitGriff);
        EXPECT_EQ(griff.zuteilungen, gegebene.zuteilungen);
        EXPECT_EQ(griff.oeffnungen, gegebene.oeffnungen);
        EXPECT_EQ(griff.schliessungen, gegebene.schliessungen);
        EXPECT_EQ(griff.symbolsuchen, gegebene.symbolsuchen);
    }
    erweiterung.getPlugin()->release();
}

TEST_F(ServiceAufwand, TakesNoMemoryWhileTheLibraryIsInUse) {
    OrvoValidierungsServiceErweiterung& erweiterung = starte("factory gleicherService");
    erweiterung.getPlugin()->notifyUse();
    holeUndGib(erweiterung); // the first one keeps what the next ones use
    const Zaehler zaehler = Zaehler::waehrend([&] {
        for (int i = 0; i < kMal; ++i)
            holeUndGib(erweiterung);
    });
    EXPECT_EQ(zaehler.zuteilungen, 0);
    Service* const gehaltener = erweiterung.holeService();
    holeUndGib(erweiterung); // the first one beside it, too
    EXPECT_EQ(Zaehler::waehrend([&] { holeUndGib(erweiterung); }).zuteilungen, 0);
    erweiterung.release(gehaltener);
    erweiterung.getPlugin()->release();
}

TEST_F(ServiceAufwand, TakesTheMemoryOfTheNewObjectsOnly) {
    OrvoValidierungsServiceErweiterung& erweiterung = starte("loeschen");
    erweiterung.getPlugin()->notifyUse();
    holeUndGib(erweiterung);
    const Zaehler zaehler = Zaehler::waehrend([&] {
        for (int i = 0; i < kMal; ++i)
            holeUndGib(erweiterung);
    });
    EXPECT_EQ(zaehler.zuteilungen, kMal); // the factory's `new`
    erweiterung.getPlugin()->release();
}

TEST_F(ServiceAufwand, LooksNoSymbolUpWhileTheLibraryIsInUse) {
    if (!Zaehler::zaehltLader())
        GTEST_SKIP() << "the loader's calls are not counted here";
    OrvoValidierungsServiceErweiterung& erweiterung = starte("loeschen");
    erweiterung.getPlugin()->notifyUse();
    const Zaehler erste = Zaehler::waehrend([&] { holeUndGib(erweiterung); });
    EXPECT_EQ(erste.symbolsuchen, 1); // the factory
    const Zaehler weitere = Zaehler::waehrend([&] {
        for (int i = 0; i < kMal; ++i)
            holeUndGib(erweiterung);
    });
    EXPECT_EQ(weitere.symbolsuchen, 0);
    EXPECT_EQ(weitere.oeffnungen, 0);
    EXPECT_EQ(weitere.schliessungen, 0);
    erweiterung.getPlugin()->release();
}

TEST_F(ServiceAufwand, OpensLooksUpAndClosesOnceForAServiceAlone) {
    if (!Zaehler::zaehltLader())
        GTEST_SKIP() << "the loader's calls are not counted here";
    OrvoValidierungsServiceErweiterung& erweiterung = starte("loeschen");
    for (int i = 0; i < 3; ++i) { // the address of the factory is dropped each time
        const Zaehler zaehler = Zaehler::waehrend([&] { holeUndGib(erweiterung); });
        EXPECT_EQ(zaehler.oeffnungen, 1);
        EXPECT_EQ(zaehler.symbolsuchen, 1);
        EXPECT_EQ(zaehler.schliessungen, 1);
    }
}

TEST_F(ServiceAufwand, LooksTheHooksUpOnceBesides) {
    if (!Zaehler::zaehltLader())
        GTEST_SKIP() << "the loader's calls are not counted here";
    OrvoValidierungsServiceErweiterung& erweiterung =
        starte("loeschen\nonload zaehleOnLoad\nonunload zaehleOnUnload");
    const Zaehler zaehler = Zaehler::waehrend([&] {
        Service* const einer = erweiterung.holeService();
        Service* const anderer = erweiterung.holeService();
        erweiterung.release(einer);
        erweiterung.release(anderer);
    });
    EXPECT_EQ(zaehler.oeffnungen, 1);
    EXPECT_EQ(zaehler.symbolsuchen, 3);
    EXPECT_EQ(zaehler.schliessungen, 1);
}

class KeineSteuerfaelle : public orvo::data::SteuerfallListe {
public:
    std::size_t getAnzahl() const override { return 0; }
    const std::string& getDatensatz(std::size_t) const override { return datensatz_; }

private:
    std::string datensatz_;
};

TEST_F(ServiceAufwand, UsesTheNewLibraryAfterAnUpdateOfTheFile) {
    OrvoValidierungsServiceErweiterung& erweiterung = starte("loeschen");
    const auto pruefe = [&] {
        orvo::service::ValidierungsService* const service = erweiterung.holeService();
        PruefErgebnis ergebnis;
        const int antwort = service ? service->pruefe(KeineSteuerfaelle(), 10, {2009, "YYYY"}, ergebnis) : -1;
        erweiterung.release(service);
        return antwort;
    };
    EXPECT_EQ(pruefe(), 0);
    home_.entferne(kDatei);
    home_.kopiere(test_plugins::OffersEverything, kDatei);
    EXPECT_EQ(pruefe(), 42);
}

TEST_F(ServiceAufwand, TellsObjectsOfTheInterfaceFromOthersEachTime) {
    OrvoValidierungsServiceErweiterung& erweiterung = starte("produktversion 1");
    erweiterung.getPlugin()->notifyUse();
    for (int i = 0; i < 3; ++i) {
        erweiterung.setServiceFactoryName("gleicherService");
        orvo::service::ValidierungsService* const service = erweiterung.holeService();
        EXPECT_NE(service, nullptr);
        EXPECT_EQ(dynamic_cast<orvo::service::ValidierungsService*>(static_cast<Service*>(service)), service);
        erweiterung.release(service);
        erweiterung.setServiceFactoryName("keinService");
        EXPECT_EQ(erweiterung.holeService(), nullptr);
        erweiterung.setServiceFactoryName("falscherService");
        EXPECT_EQ(erweiterung.holeService(), nullptr);
        Service* const falscher = erweiterung.getInstanzen().begin()->first;
        erweiterung.release(falscher);
        delete falscher;
    }
    erweiterung.getPlugin()->release();
}

} // namespace
