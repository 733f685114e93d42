// Which plugins are resident. The list is read once per process, so each of these tests needs its own process. ctest
// gives it one; in a shared process all but the first are skipped.

#include <orvoplugin/plugin/OrvoPluginManager.h>

#include "orvoplugin/plugin/Werkstatt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using orvo::orvoutil::Einstellungen;
using testing::ElementsAre;

namespace {

struct OrvoPluginManagerResidency : testing::Test {
    Heimat heimat;
    OrvoPluginManager manager{nullptr};

    void SetUp() override {
        static bool gelesen = false;
        if (gelesen)
            GTEST_SKIP() << "needs a process of its own";
        gelesen = true;
    }
    void TearDown() override { stelleEin(""); }

    static void stelleEin(const std::string& liste) {
        Einstellungen().setze("basis.resident_plugins", liste);
    }

    bool resident(const std::string& pfad) const { return manager.isResidentPlugin(pfad); }

    /// What the query writes to standard output.
    std::string ausgabe(const std::string& pfad) const {
        testing::internal::CaptureStdout();
        resident(pfad);
        return testing::internal::GetCapturedStdout();
    }
};

} // namespace

TEST_F(OrvoPluginManagerResidency, GoesByTheStrippedNameInLowerCase) {
    stelleEin("foo,");
    EXPECT_TRUE(resident("/plugins/libfoo.dylib"));
    EXPECT_TRUE(resident("libfoo.dylib"));
    EXPECT_TRUE(resident("/a/libfoo.dylib/libFOO.dylib"));
    EXPECT_TRUE(resident("foo"));
    EXPECT_FALSE(resident("/plugins/libfoobar.dylib"));
    EXPECT_FALSE(resident("/foo/libbar.dylib"));
    EXPECT_FALSE(resident(""));
}

TEST_F(OrvoPluginManagerResidency, DoesNotMatchTheFullFileName) {
    stelleEin("libfoo.dylib,");
    EXPECT_FALSE(resident("/plugins/libfoo.dylib"));
}

TEST_F(OrvoPluginManagerResidency, DoesNotMatchAnEntryWithCapitals) {
    stelleEin("Foo,ALLE,");
    EXPECT_FALSE(resident("/plugins/libFoo.dylib"));
    EXPECT_FALSE(resident("/plugins/libfoo.dylib"));
    EXPECT_FALSE(resident("/plugins/liballe.dylib"));
}

TEST_F(OrvoPluginManagerResidency, TakesEntriesAsWrittenWithoutTrimming) {
    stelleEin("a, b,c ,,");
    EXPECT_TRUE(resident("liba.dylib"));
    EXPECT_FALSE(resident("libb.dylib"));
    EXPECT_TRUE(resident("lib b.dylib"));
    EXPECT_FALSE(resident("libc.dylib"));
    EXPECT_TRUE(resident("lib.dylib")) << "the empty entry matches the empty name";
}

TEST_F(OrvoPluginManagerResidency, DropsTheTextBehindTheLastComma) {
    stelleEin("a,b");
    EXPECT_TRUE(resident("liba.dylib"));
    EXPECT_FALSE(resident("libb.dylib"));
}

TEST_F(OrvoPluginManagerResidency, HoldsForAllWithTheEntryAlle) {
    stelleEin("alle,");
    EXPECT_TRUE(resident("/plugins/libirgendwas.dylib"));
    EXPECT_TRUE(resident(""));
}

TEST_F(OrvoPluginManagerResidency, HoldsForNoneWithAlleWithoutItsCommaAndIsReadAgainThen) {
    stelleEin("alle");
    EXPECT_EQ(ausgabe("libx.dylib"), "");
    EXPECT_FALSE(resident("libx.dylib"));
    stelleEin("alle,");
    EXPECT_TRUE(resident("libx.dylib"));
}

TEST_F(OrvoPluginManagerResidency, IsReadOnceForTheProcessFromTheFirstEntryOn) {
    EXPECT_FALSE(resident("liba.dylib"));
    stelleEin("a,");
    EXPECT_TRUE(resident("liba.dylib"));
    stelleEin("b,");
    EXPECT_TRUE(resident("liba.dylib"));
    EXPECT_FALSE(resident("libb.dylib"));
    const OrvoPluginManager zweiter(nullptr);
    EXPECT_TRUE(zweiter.isResidentPlugin("liba.dylib")) << "the list is the process's, not the manager's";
}

TEST_F(OrvoPluginManagerResidency, EchoesEachEntryOnceInItsOrder) {
    stelleEin("zwei,eins, drei ,,eins,rest");
    EXPECT_EQ(ausgabe("liba.dylib"),
              "Resident Plugin: zwei\nResident Plugin: eins\nResident Plugin:  drei \nResident Plugin: \n"
              "Resident Plugin: eins\n");
    EXPECT_EQ(ausgabe("liba.dylib"), "") << "but not again";
}

TEST_F(OrvoPluginManagerResidency, StripsTheFirstLibWhereverItStandsAndThenTheSuffix) {
    stelleEin("xlibtest,fooy,foo.dy,");
    EXPECT_TRUE(resident("libxlibtest.dylib")) << "only the first goes";
    EXPECT_TRUE(resident("foolib.dyliby")) << "the suffix goes from the middle, too";
    EXPECT_TRUE(resident("foo.dylib")) << "without the prefix, the suffix loses its own";
    EXPECT_FALSE(resident("LIBxlibtest.dylib")) << "in capitals it is no prefix";
}

TEST_F(OrvoPluginManagerResidency, IsSetOnThePluginBeforeTheObserversAreTold) {
    heimat.beschreibe("liba.dylib");
    heimat.beschreibe("libb.dylib");
    stelleEin("a,");
    Zeilen ereignisse;
    Zeuge zeuge(ereignisse);
    zeuge.beimErzeugen = [&](OrvoPlugin& plugin) {
        ereignisse.push_back(plugin.isResident() ? "ja" : "nein");
    };
    const OrvoPluginManager ladend(&zeuge);
    EXPECT_THAT(ereignisse, ElementsAre("+liba.dylib", "ja", "+libb.dylib", "nein"));
}

TEST_F(OrvoPluginManagerResidency, StaysWithAPluginThatDeclaresItselfResidentWithoutAskingTheList) {
    heimat.beschreibe("liba.dylib", "resident\n");
    stelleEin("a,");
    testing::internal::CaptureStdout();
    const Mitschnitt log;
    OrvoPluginManager ladend(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(ladend.getRegistriertePlugins().front()->isResident());
    EXPECT_EQ(log.anzahl("> OrvoPlugin::setResident"), 1) << "the plugin's own call";
}

TEST_F(OrvoPluginManagerResidency, KeepsALibraryOpenAfterItsLastUserUntilItIsUnloaded) {
    const std::string pfad = heimat.beschreibe("liba.dylib");
    stelleEin("alle,");
    OrvoPluginManager ladend(nullptr);
    OrvoPlugin& plugin = *ladend.getRegistriertePlugins().front();
    EXPECT_TRUE(plugin.isResident());
    EXPECT_FALSE(istEingeblendet(pfad)) << "resident from its first use on";
    plugin.notifyUse();
    plugin.release();
    EXPECT_TRUE(istEingeblendet(pfad));
    ladend.entladePlugins();
    EXPECT_FALSE(istEingeblendet(pfad));
}
