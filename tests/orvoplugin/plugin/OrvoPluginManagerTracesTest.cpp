// What each operation of the loader and the manager writes to the log: with the level at debug, above it, and without
// a sink.

#include <orvoplugin/plugin/OrvoPluginManager.h>

#include <orvoplugin/plugin/OrvoPluginLoader.h>

#include "orvoplugin/plugin/Faelle.h"
#include "orvoplugin/plugin/Werkstatt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>

using orvo::orvoutil::AenderungsNachricht;
using orvo::orvoutil::LogLevel;
using orvo::orvoutil::SharedLib;

namespace {

/// A manager over a directory with the plugin liba.dylib; libz.dylib, which is no plugin, is elsewhere.
struct Werkstueck {
    Werkstueck() {
        heimat.beschreibe("liba.dylib", "produktversion 1\nfileversion 2\n");
        keins = heimat.verzeichnis.kopiere(test_plugins::WithoutEntryPoints, "libz.dylib");
        manager.emplace(nullptr);
    }
    Heimat heimat;
    std::string keins;
    std::optional<OrvoPluginManager> manager;
    std::unique_ptr<OrvoPluginManager> zweiter;
};

using Schritt = std::function<void(Werkstueck&)>;

struct Fall {
    const char* name;
    Schritt schritt;
    Zeilen mitDebug; ///< of loader and manager, with @ for the plugin directory
};

std::ostream& operator<<(std::ostream& out, const Fall& fall) { return out << fall.name; }

constexpr char kGefunden[] = "[Kompatibles Plugin gefunden : Type=1,Version=1 Fileversion=2|99||99]";

Zeilen operator+(Zeilen a, const Zeilen& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Zeilen geladen() {
    return {"> ladePlugin()", markiert("Lese Bibliothek: @/liba.dylib"), "> loadPlugin()", kGefunden,
            "< loadPlugin()", markiert("Plugin erfolgreich geladen"),    "< ladePlugin()"};
}
Zeilen alleGeladen() {
    return Zeilen{"> ladePlugins()", "> ladePluginsRekursiv()", markiert("Suche Plugins im Verzeichnis: @")} +
           geladen() + Zeilen{"< ladePluginsRekursiv()", "< ladePlugins()"};
}
Zeilen gestartet() {
    return Zeilen{"> OrvoPluginManager::startup", markiert("Starte OrvoPluginManager")} + alleGeladen() +
           Zeilen{markiert("erfolgreich gestartet")};
}
Zeilen entladen() { return {"> entladePlugins()", "< entladePlugins()"}; }

std::vector<Fall> faelle() {
    const std::string keinEinsprung =
        "STRUKTUR_FEHLER: Einsprungpunkt(orvo_plugin_get_types) in Bibliothek nicht gefunden.";
    return {
        {"Construct", [](Werkstueck& w) { w.zweiter = std::make_unique<OrvoPluginManager>(nullptr); },
         Zeilen{"+> OrvoPluginManager()"} + gestartet() + Zeilen{"+< OrvoPluginManager()"}},
        {"Destroy",
         [](Werkstueck& w) { w.manager.reset(); },
         {"~> OrvoPluginManager()", "> entladePlugins()", "< entladePlugins()", "~< OrvoPluginManager()"}},
        {"Initialisiere", [](Werkstueck& w) { w.manager->initialisiere(); }, gestartet()},
        {"EntladePlugins", [](Werkstueck& w) { w.manager->entladePlugins(); }, entladen()},
        {"EntladePluginsOfOneInUse",
         [](Werkstueck& w) {
             w.manager->getRegistriertePlugins().front()->notifyUse();
             w.manager->entladePlugins();
         },
         {"> entladePlugins()", markiert("entlade Plugin @/liba.dylib"), "< entladePlugins()"}},
        {"Reload", [](Werkstueck& w) { w.manager->reload(); },
         Zeilen{markiert("Reload OrvoPluginManager")} + entladen() + alleGeladen() +
             Zeilen{markiert("Reload OrvoPluginManager erfolgt.")}},
        {"HomeDirectoryChanged",
         [](Werkstueck& w) {
             w.manager->empfangeAenderungsNachricht(AenderungsNachricht(3, "basis.home_dir"));
         },
         entladen() + alleGeladen()},
        {"AnythingElseChanged",
         [](Werkstueck& w) {
             w.manager->empfangeAenderungsNachricht(AenderungsNachricht(2, "basis.home_dir"));
             w.manager->empfangeAenderungsNachricht(AenderungsNachricht(3, "basis.Home_dir"));
         },
         {}},
        {"LadePlugins", [](Werkstueck& w) { w.manager->ladePlugins(); }, alleGeladen()},
        {"LadePlugin", [](Werkstueck& w) { w.manager->ladePlugin(w.heimat.ort("liba.dylib")); }, geladen()},
        {"LadePluginThatFailsHasNoExit",
         [](Werkstueck& w) {
             w.manager->setPluginSuchPfad(w.heimat.verzeichnis.pfad()); // for which @ stands now
             w.manager->ladePlugin(w.keins);
         },
         {"> ladePlugin()", markiert("Lese Bibliothek: @/libz.dylib"), "> loadPlugin()",
          markiert("Plugin nicht geladen: " + keinEinsprung)}},
        {"LoaderThatFailsHasNoExit",
         [](Werkstueck& w) {
             EXPECT_ANY_THROW(OrvoPluginLoader().loadPlugin(new SharedLib(w.keins, false)));
         },
         {"> loadPlugin()"}},
        {"LoaderWithoutALibraryHasNoExit",
         [](Werkstueck&) { EXPECT_ANY_THROW(OrvoPluginLoader().loadPlugin(nullptr)); },
         {"> loadPlugin()"}},
        {"LadePluginsRekursivSkipsQuietlyAndSaysWhatIsBlocked",
         [](Werkstueck& w) {
             w.heimat.verzeichnis.entferne("plugins/liba.dylib");
             w.heimat.verzeichnis.schreibe("plugins/libbrosmat.dylib", "");
             w.heimat.verzeichnis.schreibe("plugins/t.txt", "");
             w.heimat.verzeichnis.legeAn("plugins/u");
             w.manager->ladePluginsRekursiv(w.heimat.ort());
         },
         {"> ladePluginsRekursiv()", markiert("Suche Plugins im Verzeichnis: @"),
          markiert("Plugin libbrosmat.dylib in Sperrliste. Wird ignoriert"), "> ladePluginsRekursiv()",
          markiert("Suche Plugins im Verzeichnis: @/u"), "< ladePluginsRekursiv()",
          "< ladePluginsRekursiv()"}},
        {"QuestionsAndObserversSayNothing",
         [](Werkstueck& w) {
             w.manager->isPluginGesperrt("libbrosmat.dylib");
             w.manager->isResidentPlugin("libbrosmat.dylib");
             w.manager->initPluginSuchPfad();
             w.manager->setPluginSuchPfad(w.manager->getPluginSuchPfad());
             Zeilen ereignisse;
             Zeuge zeuge(ereignisse);
             w.manager->addObserver(&zeuge);
             w.manager->addObserver(nullptr);
             w.manager->notifyLoad(w.manager->getRegistriertePlugins().front());
             w.manager->notifyUnload(w.manager->getRegistriertePlugins().front());
             w.manager->removeObserver(&zeuge);
         },
         {}},
    };
}

/// Above debug there are no traces and no debug messages.
Zeilen ohneDebug(const Zeilen& zeilen) {
    Zeilen uebrig;
    for (const std::string& zeile : zeilen)
        if (zeile.front() == '[')
            uebrig.push_back(zeile);
    return uebrig;
}

std::string ersetze(std::string text, const std::string& was, const std::string& durch) {
    for (std::size_t stelle = 0; (stelle = text.find(was, stelle)) != std::string::npos;
         stelle += durch.size())
        text.replace(stelle, was.size(), durch);
    return text;
}

/// The lines of manager and loader for a step.
Zeilen mitschrift(const Fall& fall, LogLevel stufe) {
    Mitschnitt log(stufe);
    Werkstueck w;
    log.leere();
    fall.schritt(w);
    const std::string ort = w.manager ? w.manager->getPluginSuchPfad() : w.heimat.ort();
    Zeilen zeilen;
    for (const auto& eintrag : log.eintraege())
        if (eintrag.category == "orvo.plugin.OrvoPluginManager" ||
            eintrag.category == "orvo.plugin.loader.OrvoPluginLoader")
            zeilen.push_back(ersetze(Mitschnitt::zeile(eintrag), ort, "@"));
    return zeilen;
}

class PluginManagerTraces : public testing::TestWithParam<Fall> {};

} // namespace

TEST_P(PluginManagerTraces, AreExactAtDebugLevel) {
    EXPECT_EQ(mitschrift(GetParam(), LogLevel::Debug), GetParam().mitDebug);
}

TEST_P(PluginManagerTraces, AreGoneAboveDebugLevelAndOnlyEventsStay) {
    EXPECT_EQ(mitschrift(GetParam(), LogLevel::Error), ohneDebug(GetParam().mitDebug));
}

TEST_P(PluginManagerTraces, ChangeNothingElseWithoutASink) {
    Werkstueck mitLog;
    Zeilen mit;
    {
        const Mitschnitt log;
        GetParam().schritt(mitLog);
        mit = mitLog.manager ? plugins(*mitLog.manager) : Zeilen();
    }
    Werkstueck ohneLog;
    GetParam().schritt(ohneLog);
    EXPECT_EQ(ohneLog.manager ? plugins(*ohneLog.manager) : Zeilen(), mit);
}

INSTANTIATE_TEST_SUITE_P(Operations, PluginManagerTraces, testing::ValuesIn(faelle()), nameDesFalls);

TEST(PluginManagerTrace, StandsUnderTheCategoriesOfManagerAndLoader) {
    Mitschnitt log;
    { const Werkstueck w; }
    for (const auto& eintrag : log.eintraege())
        if (eintrag.tag == "OrvoPluginManager") {
            EXPECT_EQ(eintrag.category, "orvo.plugin.OrvoPluginManager") << eintrag.text;
        }
    EXPECT_EQ(log.zeilen("orvo.plugin.loader.OrvoPluginLoader"),
              (Zeilen{"> loadPlugin()", kGefunden, "< loadPlugin()"}));
    EXPECT_FALSE(log.zeilen("orvo.plugin.OrvoPluginV1(liba.dylib)").empty());
}
