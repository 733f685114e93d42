// Plugins that throw or change the settings while they describe themselves or are closed.

#include <orvoplugin/plugin/OrvoPluginManager.h>

#include <orvoplugin/plugin/OrvoPluginLoader.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>
#include <orvoutil/LogSink.h>
#include <orvoutil/Logger.h>

#include "orvoplugin/plugin/Faelle.h"
#include "orvoplugin/plugin/Werkstatt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>

using orvo::orvoutil::Einstellungen;
using orvo::orvoutil::LogEntry;
using orvo::orvoutil::Logger;
using orvo::orvoutil::LogLevel;
using testing::ElementsAre;

namespace {

/// The text as the log shows it.
std::string imLog(const Bibliotheksfall& fall) {
    return std::string("Plugin nicht geladen: ") + (fall.text ? fall.text : "unbekannte Ausnahme");
}

/// Records whether a library is open when its refusal is written.
struct Horcher : orvo::orvoutil::LogSink {
    explicit Horcher(std::string p) : pfad(std::move(p)) {}
    void write(const LogEntry& eintrag) override {
        if (eintrag.text.starts_with("Plugin nicht geladen: ")) {
            text = eintrag.text;
            offen = istEingeblendet(pfad);
        }
    }
    std::string pfad;
    std::string text;
    bool offen = false;
};

/// Calls a function when a certain entry is written.
struct Besteller : orvo::orvoutil::LogSink {
    explicit Besteller(std::string wann) : wann_(std::move(wann)) {}
    void write(const LogEntry& eintrag) override {
        if (!eintrag.text.starts_with(wann_))
            return;
        ++anzahl;
        if (auftrag)
            auftrag();
    }
    std::function<void()> auftrag;
    int anzahl = 0;

private:
    std::string wann_;
};

class OrvoPluginManagerThrowing : public testing::TestWithParam<Bibliotheksfall> {};
class OrvoPluginManagerHomeChanging : public testing::TestWithParam<Bibliotheksfall> {};

} // namespace

TEST_P(OrvoPluginManagerThrowing, LogsTheTextUnchangedWhileTheLibraryIsOpenAndClosesItThen) {
    const Heimat heimat;
    OrvoPluginManager manager(nullptr);
    const std::string pfad = heimat.lege(GetParam().bibliothek, "libx.dylib");
    const auto horcher = std::make_shared<Horcher>(pfad);
    const int deskriptoren = offeneDeskriptoren();
    Logger::setSink(horcher);
    OrvoPluginManager mitLog(nullptr);
    Logger::setSink(nullptr);

    EXPECT_EQ(horcher->text, imLog(GetParam()));
    EXPECT_TRUE(horcher->offen);
    EXPECT_FALSE(istEingeblendet(pfad));
    EXPECT_EQ(offeneDeskriptoren(), deskriptoren);
    EXPECT_NO_THROW(EXPECT_FALSE(manager.ladePlugin(pfad)));
    EXPECT_FALSE(istEingeblendet(pfad));
}

TEST_P(OrvoPluginManagerThrowing, CostsNoOtherPluginAnything) {
    const Heimat heimat;
    heimat.beschreibe("liba.dylib");
    heimat.lege(GetParam().bibliothek, "libb.dylib");
    heimat.beschreibe("libc.dylib");
    Zeilen ereignisse;
    Zeuge zeuge(ereignisse);
    const Mitschnitt log;
    OrvoPluginManager manager(&zeuge);
    EXPECT_THAT(plugins(manager), ElementsAre("liba.dylib", "libc.dylib"));
    manager.reload();
    EXPECT_THAT(plugins(manager), ElementsAre("liba.dylib", "libc.dylib"));
    EXPECT_THAT(ereignisse, ElementsAre("+liba.dylib", "+libc.dylib", "-liba.dylib", "-libc.dylib",
                                        "+liba.dylib", "+libc.dylib"));
    EXPECT_EQ(log.anzahl(markiert(imLog(GetParam()))), 2);
    const Zeilen zeilen = log.zeilen();
    EXPECT_EQ(std::count(zeilen.begin(), zeilen.end(), "+> OrvoPluginV1()"),
              std::count(zeilen.begin(), zeilen.end(), "~> OrvoPluginV1") + 2)
        << "no record of a refused plugin is left";
}

INSTANTIATE_TEST_SUITE_P(Plugins, OrvoPluginManagerThrowing, testing::ValuesIn(werfendePlugins()),
                         nameDesFalls);

TEST_P(OrvoPluginManagerHomeChanging, IsFollowedWhenTheRunHasEndedAndTheOtherPluginsKeepTheirPlaceUntilThen) {
    const Heimat heimat;
    heimat.beschreibe("liba.dylib");
    heimat.lege(GetParam().bibliothek, "libb.dylib");
    heimat.beschreibe("libc.dylib");
    const Verzeichnis neues;
    neues.kopiere(test_plugins::DescribedByFile, "plugins/libz.dylib");
    Zeilen ereignisse;
    Zeuge zeuge(ereignisse);
    const Mitschnitt log(LogLevel::Info);
    OrvoPluginManager manager(&zeuge);
    const std::size_t anzahl = manager.getRegistriertePlugins().size();
    for (OrvoPlugin* const plugin : manager.getRegistriertePlugins()) {
        plugin->notifyUse(); // leaves a resident plugin's library open
        plugin->release();
    }
    ereignisse.clear();

    Einstellungen().setze("test.neues_home", neues.pfad());
    manager.reload();

    EXPECT_THAT(plugins(manager), ElementsAre("libz.dylib"));
    EXPECT_EQ(manager.getPluginSuchPfad(), neues.pfad("plugins"));
    EXPECT_EQ(ereignisse.back(), "+libz.dylib");
    EXPECT_THAT(ereignisse.size(), testing::AnyOf(anzahl + 1, 3 * anzahl + 1)) << "after whole runs only";
    EXPECT_EQ(
        log.anzahl("W Plugins werden gerade geladen, entladen oder gerufen. Aufgeschoben: basis.home_dir"),
        1);
    EXPECT_FALSE(istEingeblendet(heimat.ort("libb.dylib")));
}

const Bibliotheksfall kAendernde[] = {
    {"FromTypes", test_plugins::ChangesHomeFromTypes, nullptr},
    {"FromInitialize", test_plugins::ChangesHomeFromInitialize, nullptr},
    {"FromTheTextOfAnException", test_plugins::ChangesHomeFromWhat, nullptr},
    {"WhenClosed", test_plugins::ChangesHomeWhenClosed, nullptr},
};
INSTANTIATE_TEST_SUITE_P(Plugins, OrvoPluginManagerHomeChanging, testing::ValuesIn(kAendernde), nameDesFalls);

class OrvoPluginManagerHomeChangingInUse : public testing::TestWithParam<Bibliotheksfall> {};

TEST_P(OrvoPluginManagerHomeChangingInUse, IsFollowedByTheManagersNextRunAndTheServiceIsUsableUntilThen) {
    const Heimat heimat;
    heimat.lege(GetParam().bibliothek, "liba.dylib");
    const Verzeichnis neues;
    neues.kopiere(test_plugins::DescribedByFile, "plugins/libz.dylib");
    const Mitschnitt log(LogLevel::Info);
    OrvoPluginManager manager(nullptr);
    ASSERT_THAT(plugins(manager), ElementsAre("liba.dylib"));
    auto* const plugin = dynamic_cast<OrvoPluginV1*>(manager.getRegistriertePlugins().front());
    auto* const erweiterung = dynamic_cast<OrvoServiceErweiterung*>(plugin->listeErweiterungen().front());

    Einstellungen().setze("test.neues_home", neues.pfad());
    Service* const service = erweiterung->holeService();
    ASSERT_NE(service, nullptr);
    erweiterung->release(service);

    EXPECT_THAT(plugins(manager), ElementsAre("liba.dylib"));
    EXPECT_EQ(
        log.anzahl("W Plugins werden gerade geladen, entladen oder gerufen. Aufgeschoben: basis.home_dir"),
        1);
    EXPECT_FALSE(istEingeblendet(heimat.ort("liba.dylib")));
    manager.reload();
    EXPECT_THAT(plugins(manager), ElementsAre("libz.dylib"));
}

TEST(OrvoPluginManagerForeignCode, FollowsAPostponedChangeOfTheHomeAtTheNextCallWhicheverThatIs) {
    using Aufruf = std::function<void(OrvoPluginManager&)>;
    const std::pair<Aufruf, Zeilen> faelle[] = {
        {[](auto& manager) { manager.reload(); }, {"libz.dylib"}},
        {[](auto& manager) { manager.ladePlugins(); }, {"libz.dylib"}},
        {[](auto& manager) { manager.entladePlugins(); }, {}},
        {[](auto& manager) { manager.ladePlugin("/nirgends/libn.dylib"); }, {"libz.dylib"}},
        {[](auto& manager) { manager.ladePluginsRekursiv("/nirgends"); }, {"libz.dylib"}},
    };
    for (const auto& [aufruf, erwartet] : faelle) {
        const Heimat heimat;
        heimat.lege(test_plugins::ChangesHomeFromOnLoad, "liba.dylib");
        const Verzeichnis neues;
        neues.kopiere(test_plugins::DescribedByFile, "plugins/libz.dylib");
        Zeilen ereignisse;
        Zeuge zeuge(ereignisse);
        OrvoPluginManager manager(&zeuge);
        Einstellungen().setze("test.neues_home", neues.pfad());
        manager.getRegistriertePlugins().front()->notifyUse();
        manager.getRegistriertePlugins().front()->release();
        ereignisse.clear();
        aufruf(manager);
        EXPECT_EQ(ereignisse.front(), "-liba.dylib");
        EXPECT_EQ(ereignisse.size(), 1 + erwartet.size()) << "nothing of the old home is loaded again";
        EXPECT_EQ(plugins(manager), erwartet);
        EXPECT_EQ(manager.getPluginSuchPfad(), neues.pfad("plugins"));
    }
}

TEST(OrvoPluginManagerForeignCode, LoadsTheLibraryAskedForBesideThoseOfAHomeChangedBefore) {
    const Heimat heimat;
    heimat.lege(test_plugins::ChangesHomeFromOnLoad, "liba.dylib");
    const Verzeichnis neues;
    neues.kopiere(test_plugins::DescribedByFile, "plugins/libz.dylib");
    const std::string einzelne = neues.kopiere(test_plugins::DescribedByFile, "libeinzeln.dylib");
    OrvoPluginManager manager(nullptr);
    Einstellungen().setze("test.neues_home", neues.pfad());
    manager.getRegistriertePlugins().front()->notifyUse();
    manager.getRegistriertePlugins().front()->release();
    EXPECT_TRUE(manager.ladePlugin(einzelne));
    EXPECT_THAT(plugins(manager), ElementsAre("libz.dylib", "libeinzeln.dylib"));
}

TEST(OrvoPluginManagerForeignCode, LoadsTheLibraryOfAPluginThatAHomeChangedBeforeUnloads) {
    const Heimat heimat;
    const std::string pfad = heimat.lege(test_plugins::ChangesHomeFromOnLoad, "liba.dylib");
    const Verzeichnis neues;
    OrvoPluginManager manager(nullptr);
    OrvoPlugin& plugin = *manager.getRegistriertePlugins().front();
    Einstellungen().setze("test.neues_home", neues.pfad());
    plugin.notifyUse();
    plugin.release();
    EXPECT_TRUE(manager.ladePlugin(plugin.getSharedLib()->getName()));
    ASSERT_THAT(plugins(manager), ElementsAre("liba.dylib"));
    EXPECT_EQ(manager.getRegistriertePlugins().front()->getSharedLib()->getName(), pfad);
}

TEST(OrvoPluginManagerForeignCode, FollowsAHomeThatTheLibraryAskedForChanges) {
    const Heimat heimat;
    const Verzeichnis neues;
    neues.kopiere(test_plugins::DescribedByFile, "plugins/libz.dylib");
    const std::string einzelne = neues.kopiere(test_plugins::ChangesHomeFromInitialize, "libeinzeln.dylib");
    OrvoPluginManager manager(nullptr);
    Einstellungen().setze("test.neues_home", neues.pfad());
    EXPECT_TRUE(manager.ladePlugin(einzelne));
    EXPECT_THAT(plugins(manager), ElementsAre("libz.dylib"));
}

TEST(OrvoPluginManagerForeignCode, IsNotKeptBusyForEverByAnObserverThatChangesTheHomeEachTime) {
    const Heimat heimat;
    const Verzeichnis anderes;
    heimat.beschreibe("liba.dylib");
    anderes.kopiere(test_plugins::DescribedByFile, "plugins/libb.dylib");
    Zeilen ereignisse;
    Zeuge zeuge(ereignisse);
    OrvoPluginManager manager(&zeuge);
    zeuge.beimErzeugen = [&](OrvoPlugin& plugin) {
        Einstellungen().setze("basis.home_dir",
                              dateiname(plugin) == "liba.dylib" ? anderes.pfad() : heimat.verzeichnis.pfad());
    };
    manager.reload();
    EXPECT_THAT(ereignisse,
                ElementsAre("+liba.dylib", "-liba.dylib", "+liba.dylib", "-liba.dylib", "+libb.dylib"));
    manager.reload();
    EXPECT_THAT(plugins(manager), ElementsAre("libb.dylib"));
    zeuge.beimErzeugen = nullptr;
}

const Bibliotheksfall kAenderndeImGebrauch[] = {
    {"WhenOpened", test_plugins::ChangesHomeWhenOpened, nullptr},
    {"FromOnLoad", test_plugins::ChangesHomeFromOnLoad, nullptr},
    {"FromOnUnload", test_plugins::ChangesHomeFromOnUnload, nullptr},
    {"FromFactory", test_plugins::ChangesHomeFromFactory, nullptr},
    {"WhenItsServiceEnds", test_plugins::ChangesHomeWhenItsServiceEnds, nullptr},
};
INSTANTIATE_TEST_SUITE_P(Plugins, OrvoPluginManagerHomeChangingInUse, testing::ValuesIn(kAenderndeImGebrauch),
                         nameDesFalls);

TEST(OrvoPluginManagerForeignCode, FollowsAHomeThatAPluginChangesDuringTheFirstRun) {
    const Heimat heimat;
    heimat.lege(test_plugins::ChangesHomeFromInitialize, "liba.dylib");
    heimat.beschreibe("libb.dylib");
    const Verzeichnis neues;
    neues.kopiere(test_plugins::DescribedByFile, "plugins/libz.dylib");
    Einstellungen().setze("test.neues_home", neues.pfad());
    Zeilen ereignisse;
    Zeuge zeuge(ereignisse);
    OrvoPluginManager manager(&zeuge);
    EXPECT_THAT(ereignisse,
                ElementsAre("+liba.dylib", "+libb.dylib", "-liba.dylib", "-libb.dylib", "+libz.dylib"));
    EXPECT_EQ(manager.getPluginSuchPfad(), neues.pfad("plugins"));
}

TEST(OrvoPluginManagerForeignCode, LoadsTheCompanionOfAPluginForAnObserver) {
    const Heimat heimat;
    heimat.beschreibe("liba.dylib");
    const Verzeichnis daneben;
    const std::string begleiter = daneben.kopiere(test_plugins::DescribedByFile, "libbegleiter.dylib");
    Zeilen ereignisse;
    Zeuge zeuge(ereignisse);
    OrvoPluginManager* manager = nullptr;
    zeuge.beimErzeugen = [&](OrvoPlugin& plugin) {
        if (ereignisse.size() > 2) // otherwise it would never end
            return;
        if (dateiname(plugin) == "liba.dylib")
            EXPECT_TRUE(manager->ladePlugin(begleiter));
        else
            EXPECT_FALSE(manager->ladePlugin(begleiter)) << "it is being loaded";
        EXPECT_FALSE(manager->ladePlugin(heimat.ort("liba.dylib"))) << "with and after its companion";
    };
    const Mitschnitt log(LogLevel::Info);
    OrvoPluginManager leer(nullptr);
    leer.entladePlugins();
    manager = &leer;
    leer.addObserver(&zeuge);
    EXPECT_TRUE(leer.ladePlugins());
    EXPECT_THAT(plugins(leer), ElementsAre("liba.dylib", "libbegleiter.dylib"));
    EXPECT_THAT(ereignisse, ElementsAre("+liba.dylib", "+libbegleiter.dylib"));
    EXPECT_EQ(log.anzahl("W Plugins werden gerade geladen, entladen oder gerufen. Abgelehnt: ladePlugin()"),
              3);
    leer.removeObserver(&zeuge);
}

TEST(OrvoPluginManagerForeignCode, RefusesAnExtensionOfThePluginsOwnClassByItsName) {
    const Heimat heimat;
    const std::string pfad = heimat.lege(test_plugins::AddsExtensionOfItsOwnClass, "libx.dylib");
    const Mitschnitt log(LogLevel::Info);
    OrvoPluginManager manager(nullptr);
    EXPECT_TRUE(manager.getRegistriertePlugins().empty());
    EXPECT_EQ(
        log.anzahl(markiert("Plugin nicht geladen: INITIALISIERUNGS_FEHLER: Klasse der Erweiterung liegt in "
                            "der Plugin-Bibliothek: 21ErweiterungDesPlugins")),
        1);
    EXPECT_FALSE(istEingeblendet(pfad));
}

TEST(OrvoPluginManagerForeignCode, RefusesAPluginThatSaysNoWithTheMisspeltText) {
    const Heimat heimat;
    heimat.beschreibe("libx.dylib", "check 10 2009\nabgelehnt\n");
    const Mitschnitt log(LogLevel::Info);
    OrvoPluginManager manager(nullptr);
    EXPECT_TRUE(manager.getRegistriertePlugins().empty());
    EXPECT_EQ(log.anzahl(markiert("Plugin nicht geladen: INITIALISIERUNGS_FEHLER: Fehler im Aufruf von "
                                  "orvo_plugin_initalize.")),
              1);
    EXPECT_FALSE(istEingeblendet(heimat.ort("libx.dylib")));
}

TEST(OrvoPluginManagerForeignCode, UnloadsAPluginOnceWhenTheLogsReaderGivesOrdersMeanwhile) {
    const Heimat heimat;
    heimat.beschreibe("liba.dylib");
    Zeilen ereignisse;
    Zeuge zeuge(ereignisse);
    const auto besteller = std::make_shared<Besteller>("entlade Plugin ");
    Logger::setSink(besteller);
    OrvoPluginManager manager(&zeuge);
    besteller->auftrag = [&] { manager.reload(); };
    manager.getRegistriertePlugins().front()->notifyUse();
    manager.entladePlugins();
    Logger::setSink(nullptr);
    EXPECT_EQ(besteller->anzahl, 1);
    EXPECT_THAT(ereignisse, ElementsAre("+liba.dylib", "-liba.dylib"));
    EXPECT_TRUE(manager.getRegistriertePlugins().empty());
}

TEST(OrvoPluginManagerForeignCode, KeepsAPluginThatIsBeingOpenedOrClosedFromOrdersOfTheLogsReader) {
    for (const char* const wann : {"Lade Plugin: ", "Konnte Onload Funktion", "Ausnahme in Funktion: ",
                                   "Entlade Plugin: ", "Konnte OnUnload Funktion"}) {
        const Heimat heimat;
        heimat.beschreibe("liba.dylib",
                          "onload fehlt\nonunload fehlt\nfactory werfenderService\nfinanzamt\n");
        const auto besteller = std::make_shared<Besteller>(wann);
        Logger::setSink(besteller);
        Zeilen ereignisse;
        Zeuge zeuge(ereignisse);
        OrvoPluginManager manager(&zeuge);
        besteller->auftrag = [&] { manager.reload(); };
        auto* const plugin = dynamic_cast<OrvoPluginV1*>(manager.getRegistriertePlugins().front());
        dynamic_cast<OrvoServiceErweiterung*>(plugin->listeErweiterungen().front())->holeService();
        Logger::setSink(nullptr);
        EXPECT_EQ(besteller->anzahl, 1) << wann;
        EXPECT_THAT(ereignisse, ElementsAre("+liba.dylib")) << wann;
    }
}

TEST(OrvoPluginManagerForeignCode, ClosesEveryLibraryThatItDescribedAndLeavesNoDescriptor) {
    const Heimat heimat;
    const int deskriptoren = offeneDeskriptoren();
    heimat.beschreibe("liba.dylib", "finanzamt\n");
    heimat.lege(test_plugins::DeclaresTypeTwo, "libb.dylib");
    heimat.lege(test_plugins::WithoutInitialize, "libc.dylib");
    heimat.lege(test_plugins::DeclaresTypesOneAndTwo, "libd.dylib");
    heimat.lege(test_plugins::DeclaresTypeOneTwice, "libe.dylib");
    OrvoPluginManager manager(nullptr);
    EXPECT_THAT(plugins(manager), ElementsAre("liba.dylib", "libe.dylib"));
    for (const char* const name : {"liba.dylib", "libb.dylib", "libc.dylib", "libd.dylib", "libe.dylib"})
        EXPECT_FALSE(istEingeblendet(heimat.ort(name))) << name;
    EXPECT_EQ(offeneDeskriptoren(), deskriptoren);
}

TEST(OrvoPluginManagerForeignCode, IsInStatusTwoWhenItSaysThatItEnds) {
    const Heimat heimat;
    const auto besteller = std::make_shared<Besteller>("OrvoPluginManager()");
    Logger::setLevel(LogLevel::Debug);
    Logger::setSink(besteller);
    auto* const manager = new OrvoPluginManager(nullptr);
    Zeilen status;
    besteller->auftrag = [&] { status.push_back(std::to_string(manager->getStatus())); };
    delete manager;
    Logger::setSink(nullptr);
    Logger::setLevel(LogLevel::Info);
    EXPECT_THAT(status, ElementsAre("1", "2"));
}

TEST(OrvoPluginManagerForeignCode, IsInStatusZeroWhenItSaysThatItHasStarted) {
    const Heimat heimat;
    alignas(OrvoPluginManager) unsigned char speicher[sizeof(OrvoPluginManager)];
    std::int32_t status = -1;
    const auto besteller = std::make_shared<Besteller>("erfolgreich gestartet");
    besteller->auftrag = [&] { status = reinterpret_cast<OrvoPluginManager*>(speicher)->getStatus(); };
    Logger::setSink(besteller);
    auto* const manager = new (speicher) OrvoPluginManager(nullptr);
    Logger::setSink(nullptr);
    EXPECT_EQ(status, 0);
    manager->~OrvoPluginManager();
}

TEST(OrvoPluginManagerForeignCode, ClosesWhatAnExceptionKeptOpenAlsoWhenItHasNothingToUnload) {
    const Heimat heimat;
    OrvoPluginManager manager(nullptr);
    const std::string pfad = heimat.lege(test_plugins::ThrowsIntFromTypes, "libx.dylib");
    EXPECT_THROW(OrvoPluginLoader().loadPlugin(new orvo::orvoutil::SharedLib(pfad)), int);
    EXPECT_TRUE(istEingeblendet(pfad));
    manager.entladePlugins();
    EXPECT_FALSE(istEingeblendet(pfad));
}

namespace {

/// That a change of the home unloaded nothing, and is followed by the manager's next run.
void erwarteAufgeschoben(OrvoPluginManager& manager, const Mitschnitt& log, const Verzeichnis& neues) {
    EXPECT_THAT(plugins(manager), ElementsAre("liba.dylib"));
    EXPECT_EQ(
        log.anzahl("W Plugins werden gerade geladen, entladen oder gerufen. Aufgeschoben: basis.home_dir"),
        1);
    manager.ladePlugins();
    EXPECT_EQ(manager.getPluginSuchPfad(), neues.pfad("plugins"));
}

} // namespace

class OrvoPluginManagerHomeChangingElsewhere : public testing::TestWithParam<Bibliotheksfall> {};

TEST_P(OrvoPluginManagerHomeChangingElsewhere, IsFollowedByTheManagersNextRun) {
    const Heimat heimat;
    heimat.beschreibe("liba.dylib");
    const Verzeichnis neues;
    const std::string pfad = neues.kopiere(GetParam().bibliothek, "libx.dylib");
    const Mitschnitt log(LogLevel::Info);
    OrvoPluginManager manager(nullptr);
    Einstellungen().setze("test.neues_home", neues.pfad());
    {
        const std::unique_ptr<OrvoPlugin> plugin(
            OrvoPluginLoader().loadPlugin(new orvo::orvoutil::SharedLib(pfad)));
        auto* const erweiterung = dynamic_cast<OrvoServiceErweiterung*>(
            dynamic_cast<OrvoPluginV1&>(*plugin).listeErweiterungen().front());
        erweiterung->release(erweiterung->holeService());
    }
    erwarteAufgeschoben(manager, log, neues);
}

INSTANTIATE_TEST_SUITE_P(FromEntryPoints, OrvoPluginManagerHomeChangingElsewhere,
                         testing::ValuesIn(kAendernde, kAendernde + 2), nameDesFalls);
INSTANTIATE_TEST_SUITE_P(InUse, OrvoPluginManagerHomeChangingElsewhere,
                         testing::ValuesIn(kAenderndeImGebrauch), nameDesFalls);

TEST(OrvoPluginManagerForeignCode, UnloadsNothingForTheLastCodeOfALibraryThatEndsInUse) {
    const Heimat heimat;
    heimat.beschreibe("liba.dylib");
    const Verzeichnis neues;
    const std::string pfad = neues.kopiere(test_plugins::ChangesHomeWhenClosed, "libx.dylib");
    const Mitschnitt log(LogLevel::Info);
    OrvoPluginManager manager(nullptr);
    auto plugin = std::make_unique<OrvoPluginV1>(new orvo::orvoutil::SharedLib(pfad));
    plugin->notifyUse();
    Einstellungen().setze("test.neues_home", neues.pfad());
    plugin.reset();
    erwarteAufgeschoben(manager, log, neues);
}
