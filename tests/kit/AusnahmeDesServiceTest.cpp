// A service that throws: unwinding ends the client's handle, which is the plugin's last use, and the exception outlives
// it. The library stays open as long as the exception lives, and is closed then.

#include <orvoplugin/registry/HoleService.h>

#include "orvoplugin/plugin/Werkstatt.h"

#include <gmock/gmock.h>

#include <exception>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

enum Wurf { NICHTS = 0, EIGENE = 1, EIGENE_STANDARD = 2, ZAHL = 3, STANDARD = 4 };

class KeineFaelle : public orvo::data::SteuerfallListe {
public:
    std::size_t getAnzahl() const override { return 0; }
    const std::string& getDatensatz(std::size_t) const override { return leer_; }

private:
    std::string leer_;
};

const Veranlagungszeitraum kJahr(2009, "YYYY");

class AusnahmeDesService : public testing::Test {
protected:
    bool istOffen() const { return istEingeblendet(pfad); }

    /// Like a client: the handle ends with the block, also when the service throws.
    static void pruefe(Wurf wurf) {
        PruefErgebnis ergebnis;
        if (const auto griff = holeValidierungsService(10, kJahr))
            griff->pruefe(KeineFaelle(), static_cast<int>(wurf), kJahr, ergebnis);
    }

    OrvoPlugin& plugin() const {
        return *OrvoPluginManager::getInstanz(nullptr)->getRegistriertePlugins().front();
    }

    /// The exception is gone: the next use closes the library.
    void erwarteGeschlossenNachDerNaechstenNutzung() {
        EXPECT_EQ(plugin().getUseCount(), 0);
        EXPECT_EQ(plugin().getStatus(), ORVO_PLUGIN_ENTLADEN);
        pruefe(NICHTS);
        EXPECT_FALSE(istOffen());
        EXPECT_EQ(plugin().getUseCount(), 0);
    }

    const Heimat heimat;
    const std::string pfad = heimat.lege(test_plugins::ThrowsFromItsService, "libw.dylib");
};

} // namespace

TEST_F(AusnahmeDesService, OfAClassDerivedFromAStandardOneHasItsTextWhenItIsCaught) {
    try {
        pruefe(EIGENE_STANDARD);
        FAIL() << "did not throw";
    } catch (const std::exception& ausnahme) {
        EXPECT_STREQ(ausnahme.what(), "eine Ausnahme, deren Klasse und deren Text beide im Plugin liegen");
        EXPECT_TRUE(istOffen());
    }
    erwarteGeschlossenNachDerNaechstenNutzung();
}

TEST_F(AusnahmeDesService, OfItsOwnClassIsCaughtWhateverItIs) {
    for (const Wurf wurf : {EIGENE, EIGENE_STANDARD, ZAHL, STANDARD}) {
        SCOPED_TRACE(wurf);
        try {
            pruefe(wurf);
            ADD_FAILURE() << "did not throw";
        } catch (...) {
            EXPECT_TRUE(istOffen());
        }
        erwarteGeschlossenNachDerNaechstenNutzung();
    }
}

TEST_F(AusnahmeDesService, IsCaughtByValue) {
    try {
        pruefe(ZAHL);
        FAIL() << "did not throw";
    } catch (int zahl) {
        EXPECT_EQ(zahl, 42);
    }
    erwarteGeschlossenNachDerNaechstenNutzung();
}

TEST_F(AusnahmeDesService, IsThrownOnAndCaughtFurtherOut) {
    for (const Wurf wurf : {EIGENE, EIGENE_STANDARD, ZAHL}) {
        SCOPED_TRACE(wurf);
        try {
            try {
                pruefe(wurf);
            } catch (...) {
                pruefe(NICHTS); // a use in between
                EXPECT_TRUE(istOffen());
                throw;
            }
        } catch (...) {
            EXPECT_TRUE(istOffen());
        }
        erwarteGeschlossenNachDerNaechstenNutzung();
    }
}

TEST_F(AusnahmeDesService, LetsTheLibraryBeUsedOnWhileItIsBeingHandled) {
    try {
        pruefe(EIGENE_STANDARD);
    } catch (const std::exception& ausnahme) {
        const auto griff = holeValidierungsService(10, kJahr);
        EXPECT_TRUE(griff);
        EXPECT_EQ(plugin().getStatus(), ORVO_PLUGIN_GELADEN);
        EXPECT_STREQ(ausnahme.what(), "eine Ausnahme, deren Klasse und deren Text beide im Plugin liegen");
    }
    erwarteGeschlossenNachDerNaechstenNutzung();
}

TEST_F(AusnahmeDesService, LeavesALibraryThatIsInUseAgainOpen) {
    try {
        pruefe(EIGENE);
    } catch (...) {
    }
    const auto griff = holeValidierungsService(10, kJahr);
    EXPECT_TRUE(griff);
    { const auto zweiter = holeValidierungsService(10, kJahr); }
    EXPECT_TRUE(istOffen());
}

TEST_F(AusnahmeDesService, KeepsTheLibraryAlsoWhenThePluginIsUnloadedMeanwhile) {
    try {
        pruefe(EIGENE_STANDARD);
    } catch (const std::exception& ausnahme) {
        OrvoPluginManager::getInstanz(nullptr)->entladePlugins();
        EXPECT_TRUE(istOffen());
        EXPECT_STREQ(ausnahme.what(), "eine Ausnahme, deren Klasse und deren Text beide im Plugin liegen");
    }
    OrvoPluginManager::getInstanz(nullptr)->ladePlugins();
    EXPECT_FALSE(istOffen());
}

TEST_F(AusnahmeDesService, IsFollowedByAnUnloadThatClosesTheLibrary) {
    try {
        pruefe(EIGENE);
    } catch (...) {
    }
    OrvoPluginManager::getInstanz(nullptr)->entladePlugins();
    EXPECT_FALSE(istOffen());
}

TEST_F(AusnahmeDesService, ClosesTheLibraryWithTheReleaseOfAnotherPluginsService) {
    heimat.beschreibe("liba.dylib", "loeschen\ncheck 50 2009\n");
    auto anderer = holeValidierungsService(50, kJahr);
    ASSERT_TRUE(anderer);
    try {
        pruefe(EIGENE);
    } catch (...) {
    }
    EXPECT_TRUE(istOffen());
    anderer.gibZurueck();
    EXPECT_FALSE(istOffen());
}

TEST_F(AusnahmeDesService, OfTheClientKeepsNoLibraryOpenForLong) {
    try {
        const auto griff = holeValidierungsService(10, kJahr);
        throw std::runtime_error("somewhere in the client");
    } catch (const std::exception&) {
        EXPECT_TRUE(istOffen()) << "whose the exception is cannot be seen";
    }
    erwarteGeschlossenNachDerNaechstenNutzung();
}
