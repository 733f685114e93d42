// Faults that occur between the listing of the plugin directory and the opening of a file in it.
//
// TauschStoerfallTest.cpp has those between the library's look at a file and the loader's.

#include "faults/Stoerfall.h"

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoplugin/plugin/PluginObserver.h>
#include <orvoutil/SharedLib.h>

#include "TestPlugins.h"

#include <sys/stat.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr char kKeineDatei[] = "keine gew\xF6hnliche Datei";

/// Changes the bad file when it is told of the plugin before it: after the listing, before the opening.
class Eingriff : public PluginObserver {
public:
    Eingriff(std::string davor, std::function<void()> tat) : davor_(std::move(davor)), tat_(std::move(tat)) {}
    void pluginErzeugt(OrvoPlugin* plugin) override {
        if (plugin->getSharedLib()->getName() == davor_)
            tat_();
    }
    void pluginZerstoert(OrvoPlugin*) override {}

private:
    std::string davor_;
    std::function<void()> tat_;
};

class EingriffStoerfall : public Stoerfall {
protected:
    /// Loads with a healthy plugin in the bad one's place, which is changed during the run.
    bool ladeMit(const std::function<void()>& tat) {
        legeSchlechtes(test_plugins::DescribedByFile, kEinCheck);
        EXPECT_TRUE(starte());
        Eingriff eingriff(vorher, [&] {
            fs::remove_all(schlechtes);
            tat();
        });
        manager->addObserver(&eingriff);
        const bool erfolg = ladeNeu();
        manager->removeObserver(&eingriff);
        EXPECT_EQ(warnungen(), Zeilen{});
        erwarteSpurlos();
        erwarteHeileBrauchbar();
        return erfolg;
    }

    void erwarteFehlerNach(const std::function<void()>& tat, const std::string& grund) {
        EXPECT_FALSE(ladeMit(tat));
        EXPECT_EQ(ablehnungen(), Zeilen{ablehnung("BIBLIOTHEK_FEHLER: " + schlechtes + ": " + grund)});
        EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libzzz.dylib"}));
        EXPECT_EQ(finde(kDazwischen), nullptr);
    }
};

} // namespace

TEST_F(EingriffStoerfall, AFileRemovedAfterTheListingIsRefused) {
    erwarteFehlerNach([] {}, kFehlt);
}

TEST_F(EingriffStoerfall, AFileReplacedByATextAfterTheListingIsRefused) {
    erwarteFehlerNach([&] { home.schreibe("plugins/libmmm.dylib", "kein Plugin"); }, "keine ELF-Datei");
}

TEST_F(EingriffStoerfall, AFileReplacedByADirectoryAfterTheListingIsRefused) {
    erwarteFehlerNach([&] { home.legeAn("plugins/libmmm.dylib"); }, kKeineDatei);
}

TEST_F(EingriffStoerfall, AFileReplacedByAFifoAfterTheListingIsRefusedAndNotWaitedFor) {
    erwarteFehlerNach([&] { ASSERT_EQ(mkfifo(schlechtes.c_str(), 0666), 0); }, kKeineDatei);
}

TEST_F(EingriffStoerfall, AFileReplacedByALinkToItselfAfterTheListingIsRefused) {
    erwarteFehlerNach([&] { fs::create_symlink("libmmm.dylib", schlechtes); },
                      "kann nicht ge\xF6"
                      "ffnet werden: Too many levels of symbolic links");
}

TEST_F(EingriffStoerfall, AFileReplacedByAnotherPluginAfterTheListingIsThatOne) {
    EXPECT_TRUE(ladeMit([&] {
        home.kopiere(test_plugins::DescribedByFile, "plugins/libmmm.dylib");
        home.schreibe("plugins/libmmm.dylib.txt", "produktversion 2.0\nloeschen\ncheck 50 2009\n");
    }));
    ASSERT_NE(geladenes(schlechtes), nullptr);
    EXPECT_EQ(geladenes(schlechtes)->getProduktVersion(), "2.0");
    erwarteBrauchbar(kDazwischen, schlechtes);
}

TEST_F(EingriffStoerfall, ADirectoryRemovedAfterTheListingHasNoPlugins) {
    lege(test_plugins::DescribedByFile, "unten/libnnn.dylib");
    EXPECT_TRUE(ladeMit([&] {
        fs::remove_all(plugin("unten"));
        home.kopiere(vorher, "plugins/libmmm.dylib");
    }));
    EXPECT_EQ(geladene(), (Zeilen{"libaaa.dylib", "libmmm.dylib", "libzzz.dylib"}));
}
