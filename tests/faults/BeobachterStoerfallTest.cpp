// Faults in observers of the plugin manager: null, registered twice, leaving while they are told, throwing.

#include "faults/Stoerfall.h"

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/PluginObserver.h>
#include <orvoutil/SharedLib.h>

#include "TestPlugins.h"

#include <stdexcept>

namespace {

/// Records what it is told, then calls a function.
class Beobachter : public PluginObserver {
public:
    using Tat = std::function<void(const std::string& ereignis)>;

    explicit Beobachter(Tat tat = [](const std::string&) {}) : tat_(std::move(tat)) {}
    void pluginErzeugt(OrvoPlugin* plugin) override { melde("+", plugin); }
    void pluginZerstoert(OrvoPlugin* plugin) override { melde("-", plugin); }

    std::vector<std::string> gehoert; ///< "+libaaa.dylib", "-libaaa.dylib"

private:
    void melde(const std::string& was, OrvoPlugin* plugin) {
        const std::string& pfad = plugin->getSharedLib()->getName();
        gehoert.push_back(was + pfad.substr(pfad.rfind('/') + 1));
        tat_(gehoert.back());
    }

    Tat tat_;
};

class BeobachterStoerfall : public Stoerfall {
protected:
    /// All plugins here are healthy; the observer is bad.
    void SetUp() override {
        ASSERT_TRUE(starte());
        erwarteHeileBrauchbar();
    }

    void erwarteAllesWieVorher() {
        EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libzzz.dylib"}));
        erwarteSpurlos();
        erwarteHeileBrauchbar();
    }

    /// Reloads with these observers, then removes them.
    bool ladeNeuMit(const std::vector<Beobachter*>& beobachter) {
        for (Beobachter* const einer : beobachter)
            manager->addObserver(einer);
        const bool erfolg = ladeNeu();
        for (Beobachter* const einer : beobachter)
            manager->removeObserver(einer);
        return erfolg;
    }

    const Zeilen alles{"-libaaa.dylib", "-libzzz.dylib", "+libaaa.dylib", "+libzzz.dylib"};
};

} // namespace

TEST_F(BeobachterStoerfall, NullIsNoObserver) {
    manager->addObserver(nullptr);
    EXPECT_TRUE(ladeNeu());
    manager->removeObserver(nullptr);
    EXPECT_TRUE(ladeNeu());
    EXPECT_EQ(warnungen(), Zeilen{});
    erwarteAllesWieVorher();
}

TEST_F(BeobachterStoerfall, OneRegisteredTwiceIsToldTwice) {
    Beobachter doppelter;
    EXPECT_TRUE(ladeNeuMit({&doppelter, &doppelter}));
    EXPECT_EQ(doppelter.gehoert,
              (Zeilen{"-libaaa.dylib", "-libaaa.dylib", "-libzzz.dylib", "-libzzz.dylib", "+libaaa.dylib",
                      "+libaaa.dylib", "+libzzz.dylib", "+libzzz.dylib"}));
    erwarteAllesWieVorher();
}

TEST_F(BeobachterStoerfall, OneThatWasNeverRegisteredCanBeRemoved) {
    Beobachter fremder;
    manager->removeObserver(&fremder);
    EXPECT_TRUE(ladeNeu());
    EXPECT_EQ(fremder.gehoert, Zeilen{});
    erwarteAllesWieVorher();
}

TEST_F(BeobachterStoerfall, OneThatRemovesItselfWhileToldIsToldNoMoreAndTheOthersAre) {
    Beobachter davor;
    Beobachter gehender([&](const std::string&) { manager->removeObserver(&gehender); });
    Beobachter danach;
    EXPECT_TRUE(ladeNeuMit({&davor, &gehender, &danach}));
    EXPECT_EQ(davor.gehoert, alles);
    EXPECT_EQ(gehender.gehoert, Zeilen{"-libaaa.dylib"});
    EXPECT_EQ(danach.gehoert, alles);
    erwarteAllesWieVorher();
}

TEST_F(BeobachterStoerfall, OneThatRemovesAndDestroysItselfWhileToldIsToldNoMore) {
    class Gehender : public PluginObserver {
    public:
        Gehender(OrvoPluginManager& seiner, int& gehoert) : seiner_(seiner), gehoert_(gehoert) {}
        void pluginErzeugt(OrvoPlugin*) override { ++gehoert_; }
        void pluginZerstoert(OrvoPlugin*) override {
            ++gehoert_;
            seiner_.removeObserver(this);
            delete this;
        }

    private:
        OrvoPluginManager& seiner_;
        int& gehoert_;
    };
    int gehoert = 0;
    manager->addObserver(new Gehender(*manager, gehoert));
    Beobachter danach;
    EXPECT_TRUE(ladeNeuMit({&danach}));
    EXPECT_EQ(gehoert, 1);
    EXPECT_EQ(danach.gehoert, alles);
    erwarteAllesWieVorher();
}

TEST_F(BeobachterStoerfall, OneRemovedByAnEarlierOneWhileToldHearsNothing) {
    Beobachter danach;
    Beobachter werfender([&](const std::string&) { manager->removeObserver(&danach); });
    EXPECT_TRUE(ladeNeuMit({&werfender, &danach}));
    EXPECT_EQ(danach.gehoert, Zeilen{});
    EXPECT_EQ(werfender.gehoert, alles);
    erwarteAllesWieVorher();
}

TEST_F(BeobachterStoerfall, OneRemovedByALaterOneWhileToldHeardOnlyThat) {
    Beobachter davor;
    Beobachter entferner([&](const std::string&) { manager->removeObserver(&davor); });
    Beobachter danach;
    EXPECT_TRUE(ladeNeuMit({&davor, &entferner, &danach}));
    EXPECT_EQ(davor.gehoert, Zeilen{"-libaaa.dylib"});
    EXPECT_EQ(danach.gehoert, alles);
    erwarteAllesWieVorher();
}

TEST_F(BeobachterStoerfall, OneThatAddsAnotherWhileToldHasItToldFromTheNextEventOn) {
    Beobachter neuer;
    bool hinzugefuegt = false;
    Beobachter wirt([&](const std::string&) {
        if (!hinzugefuegt)
            manager->addObserver(&neuer);
        hinzugefuegt = true;
    });
    EXPECT_TRUE(ladeNeuMit({&wirt}));
    manager->removeObserver(&neuer);
    EXPECT_EQ(neuer.gehoert, (Zeilen{"-libzzz.dylib", "+libaaa.dylib", "+libzzz.dylib"}));
    erwarteAllesWieVorher();
}

TEST_F(BeobachterStoerfall, OneThatOrdersRunsWhileToldIsRefused) {
    Beobachter befehlender([&](const std::string&) {
        manager->reload();
        EXPECT_FALSE(manager->ladePlugins());
        EXPECT_FALSE(manager->ladePluginsRekursiv(home.pfad("plugins")));
        EXPECT_TRUE(manager->entladePlugins());
    });
    EXPECT_TRUE(ladeNeuMit({&befehlender}));
    EXPECT_EQ(befehlender.gehoert, alles);
    const std::string abgelehnt = "W Plugins werden gerade geladen, entladen oder gerufen. Abgelehnt: ";
    for (const char* const auftrag :
         {"reload()", "ladePlugins()", "ladePluginsRekursiv()", "entladePlugins()"})
        EXPECT_EQ(log.anzahl(abgelehnt + auftrag), 4) << auftrag;
    EXPECT_EQ(warnungen().size(), 16u);
    erwarteAllesWieVorher();
}

TEST_F(BeobachterStoerfall, OneThatOrdersThePluginOfWhichItIsToldIsRefused) {
    Beobachter befehlender(
        [&](const std::string& ereignis) { EXPECT_FALSE(manager->ladePlugin(plugin(ereignis.substr(1)))); });
    EXPECT_TRUE(ladeNeuMit({&befehlender}));
    EXPECT_EQ(befehlender.gehoert, alles);
    EXPECT_EQ(log.anzahl("W Plugins werden gerade geladen, entladen oder gerufen. Abgelehnt: ladePlugin()"),
              4);
    EXPECT_EQ(warnungen().size(), 4u);
    erwarteAllesWieVorher();
}

namespace {

struct EigeneAusnahme {};

struct Ausnahme {
    const char* art;
    std::function<void()> wirf;
    const char* grund;
};

void PrintTo(const Ausnahme& ausnahme, std::ostream* out) { *out << ausnahme.art; }

class BeobachterAusnahme : public BeobachterStoerfall, public testing::WithParamInterface<Ausnahme> {};

const Ausnahme kAusnahmen[] = {
    {"Standard", [] { throw std::runtime_error("Beobachter kann nicht"); }, "Beobachter kann nicht"},
    {"OwnClass", [] { throw EigeneAusnahme(); }, "unbekannte Ausnahme"},
    {"Int", [] { throw 42; }, "unbekannte Ausnahme"},
};

} // namespace

TEST_P(BeobachterAusnahme, OnLoadIsReportedAndThePluginStays) {
    Beobachter davor;
    Beobachter werfender([](const std::string& ereignis) {
        if (ereignis == "+libaaa.dylib")
            GetParam().wirf();
    });
    Beobachter danach;
    EXPECT_FALSE(ladeNeuMit({&davor, &werfender, &danach}));
    EXPECT_EQ(ablehnungen(), Zeilen{ablehnung(GetParam().grund)});
    EXPECT_EQ(warnungen(), Zeilen{});
    EXPECT_EQ(davor.gehoert, alles);
    EXPECT_EQ(danach.gehoert, alles);
    erwarteAllesWieVorher();
}

TEST_P(BeobachterAusnahme, OnUnloadIsReportedAndThePluginGoes) {
    Beobachter davor;
    Beobachter werfender([](const std::string& ereignis) {
        if (ereignis == "-libaaa.dylib")
            GetParam().wirf();
    });
    Beobachter danach;
    EXPECT_TRUE(ladeNeuMit({&davor, &werfender, &danach}));
    EXPECT_EQ(ablehnungen(), Zeilen{});
    EXPECT_EQ(warnungen(),
              Zeilen{std::string("E Ausnahme beim Abmelden eines Plugins: ") + GetParam().grund});
    EXPECT_EQ(davor.gehoert, alles);
    EXPECT_EQ(danach.gehoert, alles);
    erwarteAllesWieVorher();
}

TEST_P(BeobachterAusnahme, OfSeveralTheFirstIsReported) {
    Beobachter erster([](const std::string& ereignis) {
        if (ereignis == "+libzzz.dylib")
            GetParam().wirf();
    });
    Beobachter zweiter([](const std::string& ereignis) {
        if (ereignis == "+libzzz.dylib")
            throw std::logic_error("die zweite");
    });
    EXPECT_FALSE(ladeNeuMit({&erster, &zweiter}));
    EXPECT_EQ(ablehnungen(), Zeilen{ablehnung(GetParam().grund)});
    erwarteAllesWieVorher();
}

TEST_P(BeobachterAusnahme, WhileTheManagerIsDestroyedEndsThere) {
    Beobachter werfender([](const std::string&) { GetParam().wirf(); });
    manager->addObserver(&werfender);
    log.leere();
    Stoerfall::TearDown();
    EXPECT_EQ(werfender.gehoert, (Zeilen{"-libaaa.dylib", "-libzzz.dylib"}));
    EXPECT_EQ(log.anzahl(std::string("E Ausnahme beim Abmelden eines Plugins: ") + GetParam().grund), 2);
}

INSTANTIATE_TEST_SUITE_P(AnException, BeobachterAusnahme, testing::ValuesIn(kAusnahmen),
                         [](const auto& fall) { return std::string(fall.param.art); });
