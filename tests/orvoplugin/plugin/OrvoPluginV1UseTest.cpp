// The use count of a version-1 plugin: opening, hooks, closing.

#include <orvoplugin/plugin/OrvoPluginV1.h>

#include "orvoplugin/plugin/Attrappe.h"
#include "orvoplugin/plugin/Werkstatt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <new>
#include <stdexcept>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

int gerufen = 0;
OrvoPluginV1* beobachtet = nullptr;
orvo_plugin_status_t statusImHook = ORVO_PLUGIN_ERZEUGT;
int zaehlerImHook = 0;

void hook() {
    ++gerufen;
    statusImHook = beobachtet->getStatus();
    zaehlerImHook = beobachtet->getUseCount();
}
void wirftText() { throw std::runtime_error("Hook f\xFCr nichts"); }
void wirftZahl() { throw 42; }
void wirftOhneText() {
    struct OhneText : std::exception {
        const char* what() const noexcept override { return nullptr; }
    };
    throw OhneText();
}

/// A library whose own code throws when it is opened and closed.
struct Werfende : Attrappe {
    using Attrappe::Attrappe;
    bool load() override { throw std::runtime_error("beim Start"); }
    bool unload() override { throw std::runtime_error("beim Ende"); }
};

/// A library that looks at its plugin's status when it is closed.
struct Nachsehende : Attrappe {
    using Attrappe::Attrappe;
    bool unload() override {
        status = beobachtet->getStatus();
        return Attrappe::unload();
    }
    orvo_plugin_status_t status = ORVO_PLUGIN_ERZEUGT;
};

/// A library that has no memory to look a symbol up.
struct Speicherlose : Attrappe {
    using Attrappe::Attrappe;
    void* getSymbol(const std::string&) override { throw std::bad_alloc(); }
};

/// A plugin with a fake library, and a log of the levels above debug.
struct OrvoPluginV1UseTest : testing::Test {
    Mitschnitt log{orvo::orvoutil::LogLevel::Info};
    Attrappe::Notizen notizen;
    Attrappe* const bibliothek = new Attrappe(notizen, "/irgendwo/libx.dylib");
    OrvoPluginV1 plugin{bibliothek};

    void SetUp() override {
        gerufen = 0;
        beobachtet = &plugin;
        bibliothek->exportiere("hook", hook);
        bibliothek->exportiere("wirftText", wirftText);
        bibliothek->exportiere("wirftZahl", wirftZahl);
        bibliothek->exportiere("wirftOhneText", wirftOhneText);
    }

    static constexpr char kLade[] = "[Plugin|99|Lade Plugin: /irgendwo/libx.dylib|99]";
    static constexpr char kEntlade[] = "[Plugin|99|Entlade Plugin: /irgendwo/libx.dylib|99]";
};

std::string inhalt(const std::string& datei) {
    std::ifstream strom(datei);
    return std::string(std::istreambuf_iterator<char>(strom), {});
}

} // namespace

TEST_F(OrvoPluginV1UseTest, OpensForTheFirstUserAndClosesAfterTheLast) {
    plugin.notifyUse(); // the first user
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_GELADEN);
    plugin.notifyUse(); // the second user
    EXPECT_EQ(plugin.getUseCount(), 2);
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load"));

    plugin.release(); // the second user is still there
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_GELADEN);
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load"));
    plugin.release(); // no user is left
    EXPECT_EQ(plugin.getUseCount(), 0);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_ENTLADEN);
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load", "unload"));
    EXPECT_THAT(log.meldungen(), ElementsAre(kLade, kEntlade));
}

TEST_F(OrvoPluginV1UseTest, OpensAgainAfterItWasClosed) {
    plugin.notifyUse();
    plugin.release();
    plugin.notifyUse();
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_GELADEN);
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load", "unload", "load"));
}

TEST_F(OrvoPluginV1UseTest, DoesNotOpenALibraryThatIsOpenAlready) {
    bibliothek->offen = true;
    plugin.notifyUse();
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_THAT(notizen.aufrufe, IsEmpty());
}

TEST_F(OrvoPluginV1UseTest, CountsNoUserWhenTheLibraryCannotBeOpenedAndTriesAgain) {
    plugin.setOnLoadFuncName("hook");
    bibliothek->laesstSichOeffnen = false;
    plugin.notifyUse();
    EXPECT_EQ(plugin.getUseCount(), 0);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_ERZEUGT);
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load")) << "the hook is not looked for";
    EXPECT_THAT(log.meldungen(), ElementsAre(kLade, "E Konnte Plugin nicht laden: geht nicht auf"));

    bibliothek->laesstSichOeffnen = true;
    plugin.notifyUse();
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_GELADEN);
    EXPECT_EQ(gerufen, 1);
}

TEST_F(OrvoPluginV1UseTest, GoesBelowZeroAndThenSkipsTheOpening) {
    plugin.release(); // one too many
    EXPECT_EQ(plugin.getUseCount(), -1);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_ERZEUGT);
    plugin.release();
    EXPECT_EQ(plugin.getUseCount(), -2);
    plugin.notifyUse();
    plugin.notifyUse(); // back to zero; nothing was opened
    EXPECT_EQ(plugin.getUseCount(), 0);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_ERZEUGT);
    EXPECT_THAT(notizen.aufrufe, IsEmpty());
    EXPECT_THAT(log.meldungen(), IsEmpty());

    plugin.notifyUse(); // a first use again
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load"));
}

TEST_F(OrvoPluginV1UseTest, CallsTheHooksWhileTheLibraryIsOpenAndTheUserCounted) {
    plugin.setOnLoadFuncName("hook");
    plugin.setOnUnloadFuncName("hook");
    plugin.notifyUse();
    EXPECT_EQ(gerufen, 1);
    EXPECT_EQ(statusImHook, ORVO_PLUGIN_GELADEN);
    EXPECT_EQ(zaehlerImHook, 1);
    plugin.notifyUse();
    plugin.release();
    EXPECT_EQ(gerufen, 1) << "only the first and the last user matter";
    plugin.release();
    EXPECT_EQ(gerufen, 2);
    EXPECT_EQ(statusImHook, ORVO_PLUGIN_GELADEN);
    EXPECT_EQ(zaehlerImHook, 0);
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load", "symbol hook", "symbol hook", "unload"));
}

TEST_F(OrvoPluginV1UseTest, WarnsOfAMissingOnloadHookAndCountsTheUser) {
    plugin.setOnLoadFuncName("fehlt");
    plugin.notifyUse();
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_GELADEN);
    EXPECT_THAT(log.meldungen(), ElementsAre(kLade, "W Konnte Onload Funktion in Plugin nicht laden"));
}

TEST_F(OrvoPluginV1UseTest, SpellsTheWarningOfAMissingOnUnloadHookWithACapitalUAndClosesAllTheSame) {
    plugin.notifyUse();
    plugin.setOnUnloadFuncName("fehlt");
    log.leere();
    plugin.release();
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_ENTLADEN);
    EXPECT_FALSE(bibliothek->offen);
    EXPECT_THAT(log.meldungen(), ElementsAre(kEntlade, "W Konnte OnUnload Funktion in Plugin nicht laden"));
}

TEST_F(OrvoPluginV1UseTest, TurnsWhatAHookThrowsIntoAWarning) {
    plugin.setOnLoadFuncName("wirftText");
    plugin.setOnUnloadFuncName("wirftZahl");
    plugin.notifyUse();
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_GELADEN);
    plugin.release();
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_ENTLADEN);
    EXPECT_FALSE(bibliothek->offen);
    EXPECT_THAT(log.meldungen(),
                ElementsAre(kLade, "W Ausnahme in Onload Funktion: Hook f\xFCr nichts", kEntlade,
                            "W Ausnahme in OnUnload Funktion: unbekannte Ausnahme"));
}

TEST_F(OrvoPluginV1UseTest, WarnsOfAHooksExceptionThatHasNoText) {
    plugin.setOnLoadFuncName("wirftOhneText");
    plugin.notifyUse();
    EXPECT_THAT(log.meldungen(), ElementsAre(kLade, "W Ausnahme in Onload Funktion: "));
}

TEST_F(OrvoPluginV1UseTest, TakesAnExceptionOfTheLibrarysOwnCodeForAFailure) {
    auto* const werfende = new Werfende(notizen);
    OrvoPluginV1 eines(werfende);
    log.leere();
    eines.notifyUse();
    EXPECT_EQ(eines.getUseCount(), 0);
    EXPECT_EQ(eines.getStatus(), ORVO_PLUGIN_ERZEUGT);
    EXPECT_EQ(log.meldungen().back(), "E Konnte Plugin nicht laden: beim Start");
    werfende->offen = true;
    eines.notifyUse();
    eines.release();
    EXPECT_EQ(eines.getStatus(), ORVO_PLUGIN_ENTLADEN);
    EXPECT_EQ(log.meldungen().back(), "W Konnte Plugin nicht entladen:");
}

TEST_F(OrvoPluginV1UseTest, TakesAnExceptionOfTheLookUpForAMissingHook) {
    OrvoPluginV1 eines(new Speicherlose(notizen));
    eines.setOnLoadFuncName("hook");
    log.leere();
    eines.notifyUse();
    EXPECT_EQ(eines.getUseCount(), 1);
    EXPECT_EQ(log.meldungen().back(), "W Konnte Onload Funktion in Plugin nicht laden");
}

TEST_F(OrvoPluginV1UseTest, IsUnloadedOnceTheLibraryWasAskedToClose) {
    auto* const nachsehende = new Nachsehende(notizen);
    OrvoPluginV1 eines(nachsehende);
    beobachtet = &eines;
    eines.notifyUse();
    eines.release();
    EXPECT_EQ(nachsehende->status, ORVO_PLUGIN_GELADEN);
    EXPECT_EQ(eines.getStatus(), ORVO_PLUGIN_ENTLADEN);
}

TEST_F(OrvoPluginV1UseTest, WarnsWithoutABlankWhenTheLibraryDoesNotClose) {
    plugin.notifyUse();
    bibliothek->laesstSichSchliessen = false;
    log.leere();
    plugin.release();
    EXPECT_THAT(log.meldungen(), ElementsAre(kEntlade, "W Konnte Plugin nicht entladen:geht nicht zu"));
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_ENTLADEN) << "whether or not it closed";
}

TEST_F(OrvoPluginV1UseTest, AsksTheLibraryToCloseWithoutAskingWhetherItIsOpen) {
    plugin.notifyUse();
    bibliothek->offen = false;
    plugin.release();
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load", "unload"));
    plugin.notifyUse();
    bibliothek->offen = false;
    try {
        throw 1;
    } catch (int) {
        plugin.release();
        EXPECT_THAT(notizen.aufrufe, ElementsAre("load", "unload", "load", "unload"))
            << "there is nothing that an exception needs";
    }
}

TEST_F(OrvoPluginV1UseTest, KeepsAResidentPluginOpenAndItsHookUncalled) {
    plugin.setResident(true);
    plugin.setOnUnloadFuncName("hook");
    plugin.notifyUse();
    plugin.release();
    EXPECT_EQ(plugin.getUseCount(), 0);
    EXPECT_EQ(plugin.getStatus(), ORVO_PLUGIN_GELADEN);
    EXPECT_EQ(gerufen, 0);
    EXPECT_THAT(log.meldungen(), ElementsAre(kLade));

    plugin.notifyUse(); // a first use again: logged as a load, although already open
    EXPECT_EQ(plugin.getUseCount(), 1);
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load"));
    EXPECT_THAT(log.meldungen(), ElementsAre(kLade, kLade));
}

TEST_F(OrvoPluginV1UseTest, OpenAgainUnderAnExceptionStaysOpenWhenTheOthersAreClosedAfterIt) {
    Attrappe::Notizen zweite, dritte;
    OrvoPluginV1 zweites(new Attrappe(zweite)), drittes(new Attrappe(dritte));
    try {
        throw 1;
    } catch (int) {
        for (OrvoPluginV1* const eines : {&plugin, &zweites, &drittes}) {
            eines->notifyUse();
            eines->release();
        }
        zweites.notifyUse();
        plugin.notifyUse();
    }
    drittes.notifyUse();
    EXPECT_THAT(notizen.aufrufe, ElementsAre("load"));
    EXPECT_THAT(zweite.aufrufe, ElementsAre("load"));
    EXPECT_THAT(dritte.aufrufe, ElementsAre("load", "unload", "load"));
}

TEST_F(OrvoPluginV1UseTest, ClosesWhatAnExceptionKeptOpenAtAnyPluginsUseOrReleaseOrEnd) {
    Attrappe::Notizen notizenDesAnderen;
    auto* const andere = new Attrappe(notizenDesAnderen);
    OrvoPluginV1 anderes(andere);
    const auto benutzeUnterAusnahme = [&] {
        try {
            throw 1;
        } catch (int) {
            anderes.notifyUse();
            anderes.release();
            EXPECT_TRUE(andere->offen);
        }
    };
    plugin.notifyUse();
    benutzeUnterAusnahme();
    plugin.notifyUse(); // not the first
    EXPECT_FALSE(andere->offen);
    benutzeUnterAusnahme();
    plugin.release(); // not the last
    EXPECT_FALSE(andere->offen);
    auto drittes = std::make_unique<OrvoPluginV1>(nullptr);
    benutzeUnterAusnahme();
    drittes.reset();
    EXPECT_FALSE(andere->offen);

    andere->laesstSichSchliessen = false;
    log.leere();
    benutzeUnterAusnahme();
    EXPECT_EQ(log.anzahlMit("Konnte Plugin nicht entladen"), 0);
    plugin.release();
    EXPECT_EQ(log.anzahl("W Konnte Plugin nicht entladen:geht nicht zu"), 1) << "in the plugin's own log";
}

TEST_F(OrvoPluginV1UseTest, ClosesEverythingThatAnExceptionKeptOpenAtOnce) {
    Attrappe::Notizen andere;
    OrvoPluginV1 erstes(new Attrappe(andere)), zweites(new Attrappe(andere));
    plugin.notifyUse();
    try {
        throw 1;
    } catch (int) {
        for (OrvoPluginV1* const eines : {&erstes, &zweites}) {
            eines->notifyUse();
            eines->release();
        }
    }
    plugin.notifyUse(); // not the first
    EXPECT_THAT(andere.aufrufe, ElementsAre("load", "load", "unload", "unload"));
}

TEST_F(OrvoPluginV1UseTest, ClosesWhatAnExceptionKeptOpenBeforeItEndsItself) {
    Attrappe::Notizen andere;
    auto* const sperrige = new Attrappe(andere);
    auto anderes = std::make_unique<OrvoPluginV1>(sperrige);
    sperrige->laesstSichSchliessen = false;
    try {
        throw 1;
    } catch (int) {
        anderes->notifyUse();
        anderes->release();
    }
    log.leere();
    anderes.reset();
    EXPECT_EQ(log.anzahl("W Konnte Plugin nicht entladen:geht nicht zu"), 1);
    EXPECT_THAT(andere.aufrufe, ElementsAre("load", "unload"));
}

TEST_F(OrvoPluginV1UseTest, EndsUnderAnExceptionAlsoWhenItsLibraryWasClosedMeanwhile) {
    Attrappe::Notizen notizenDesAnderen;
    auto* const andere = new Attrappe(notizenDesAnderen);
    auto anderes = std::make_unique<OrvoPluginV1>(andere);
    try {
        throw 1;
    } catch (int) {
        anderes->notifyUse();
        anderes->release();
        andere->offen = false;
        anderes.reset();
        EXPECT_EQ(notizenDesAnderen.zerstoert, 1);
    }
    plugin.notifyUse();
    EXPECT_THAT(notizenDesAnderen.aufrufe, ElementsAre("load"));
}

TEST_F(OrvoPluginV1UseTest, DoesTheSameWithoutALog) {
    Attrappe::Notizen stille;
    orvo::orvoutil::Logger::setSink(nullptr);
    auto* const stumm = new Attrappe(stille);
    OrvoPluginV1 ohneLog(stumm);
    ohneLog.setOnLoadFuncName("fehlt");
    ohneLog.setOnUnloadFuncName("fehlt");
    ohneLog.notifyUse();
    EXPECT_EQ(ohneLog.getUseCount(), 1);
    EXPECT_EQ(ohneLog.getStatus(), ORVO_PLUGIN_GELADEN);
    ohneLog.notifyUse();
    ohneLog.release();
    stumm->laesstSichSchliessen = false;
    ohneLog.release();
    EXPECT_EQ(ohneLog.getStatus(), ORVO_PLUGIN_ENTLADEN);
    EXPECT_THAT(stille.aufrufe, ElementsAre("load", "symbol fehlt", "symbol fehlt", "unload"));
}

TEST(OrvoPluginV1RealLibrary, IsInTheMemoryMapOnlyWhileItHasUsersAndRunsItsHooks) {
    const Verzeichnis ort;
    const std::string pfad = ort.kopiere(test_plugins::DescribedByFile, "libx.dylib");
    OrvoPluginV1 plugin(new orvo::orvoutil::SharedLib(pfad));
    ort.schreibe("libx.dylib.txt", "onload zaehleOnLoad\nonunload zaehleOnUnload\nfinanzamt\n");
    plugin.initialize();
    EXPECT_FALSE(istEingeblendet(pfad));
    EXPECT_EQ(plugin.listeErweiterungen().size(), 1U);

    plugin.notifyUse();
    EXPECT_TRUE(istEingeblendet(pfad));
    EXPECT_EQ(inhalt(pfad + ".txt.hooks"), "load\n");
    plugin.release();
    EXPECT_FALSE(istEingeblendet(pfad));
    EXPECT_EQ(inhalt(pfad + ".txt.hooks"), "load\nunload\n");
}

TEST(OrvoPluginV1RealLibrary, ClosesAfterAHookThatThrowsFromTheLibrary) {
    const Mitschnitt log(orvo::orvoutil::LogLevel::Info);
    const Verzeichnis ort;
    const std::string pfad = ort.kopiere(test_plugins::DescribedByFile, "libx.dylib");
    OrvoPluginV1 plugin(new orvo::orvoutil::SharedLib(pfad));
    plugin.setOnUnloadFuncName("werfenderHook");
    plugin.notifyUse();
    plugin.release();
    EXPECT_FALSE(istEingeblendet(pfad));
    EXPECT_EQ(log.anzahl("W Ausnahme in OnUnload Funktion: Hook kann nicht"), 1);
}
