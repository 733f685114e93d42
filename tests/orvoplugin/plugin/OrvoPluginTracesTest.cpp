// What each operation of a plugin writes to the log: with the level at debug, above it, and without a sink.

#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

#include "orvoplugin/plugin/Attrappe.h"
#include "orvoplugin/plugin/Faelle.h"
#include "orvoplugin/plugin/Werkstatt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

using orvo::orvoutil::LogLevel;

namespace {

bool gelingt(OrvoPluginV1*) { return true; }
bool misslingt(OrvoPluginV1*) { return false; }
void hook() {}
[[noreturn]] void werfenderHook() { throw 42; }

/// A plugin with a fake library.
struct Werkstueck {
    Attrappe::Notizen notizen;
    Attrappe* bibliothek = new Attrappe(notizen, "/p/libx.dylib");
    std::unique_ptr<OrvoPluginV1> plugin = std::make_unique<OrvoPluginV1>(bibliothek);
};

using Schritt = std::function<void(Werkstueck&)>;

struct Fall {
    const char* name;
    Schritt vorher; ///< not compared
    Schritt schritt;
    Zeilen mitDebug;
    Zeilen ohneDebug;
};

std::ostream& operator<<(std::ostream& out, const Fall& fall) { return out << fall.name; }

const Schritt nichts = [](Werkstueck&) {};

template <class Funktion>
Schritt initialisiere(Funktion funktion) {
    return [=](Werkstueck& w) {
        w.bibliothek->exportiere("orvo_plugin_initialize", funktion);
        try {
            w.plugin->initialize();
        } catch (const std::exception&) {
        }
    };
}

/// One operation's entry and exit at debug level; nothing at higher levels.
Fall paar(const char* name, const std::string& operation, Schritt schritt) {
    return {name, nichts, std::move(schritt), {"> " + operation, "< " + operation}, {}};
}

constexpr char kLade[] = "[Plugin|99|Lade Plugin: /p/libx.dylib|99]";
constexpr char kEntlade[] = "[Plugin|99|Entlade Plugin: /p/libx.dylib|99]";

const Schritt benutze = [](Werkstueck& w) { w.plugin->notifyUse(); };
const Schritt gibZurueck = [](Werkstueck& w) { w.plugin->release(); };

std::vector<Fall> faelleDesPlugins() {
    const auto hookNamens = [](const char* name) {
        return [=](Werkstueck& w) {
            w.bibliothek->exportiere("hook", hook);
            w.bibliothek->exportiere("werfenderHook", werfenderHook);
            w.plugin->setOnLoadFuncName(name);
            w.plugin->setOnUnloadFuncName(name);
        };
    };
    const auto benutztMit = [=](const char* name) {
        return [=](Werkstueck& w) {
            hookNamens(name)(w);
            w.plugin->notifyUse();
        };
    };
    return {
        {"Construct",
         nichts,
         [](Werkstueck& w) { OrvoPluginV1 anderes(new Attrappe(w.notizen, "/p/libx.dylib")); },
         {"+> OrvoPlugin()", "+< OrvoPlugin()", "+> OrvoPluginV1()", "+< OrvoPluginV1()", "~> OrvoPluginV1",
          "~< OrvoPluginV1", "~> OrvoPlugin()", "~< OrvoPlugin()"},
         {}},
        paar("SetProduktVersion", "OrvoPlugin::setProduktVersion",
             [](Werkstueck& w) { w.plugin->setProduktVersion("1"); }),
        paar("SetFileVersion", "OrvoPlugin::setFileVersion",
             [](Werkstueck& w) { w.plugin->setFileVersion("1"); }),
        paar("AddLabelInformation", "OrvoPlugin::addLabel",
             [](Werkstueck& w) { w.plugin->addLabelInformation(OrvoPlugin::LabelEintrag()); }),
        paar("SetResident", "OrvoPlugin::setResident", [](Werkstueck& w) { w.plugin->setResident(true); }),
        paar("SetStatus", "OrvoPlugin::setStatus",
             [](Werkstueck& w) { w.plugin->setStatus(ORVO_PLUGIN_GELADEN); }),
        {"SetHookNamesAndAccessorsSayNothing",
         nichts,
         [](Werkstueck& w) {
             w.plugin->setOnLoadFuncName("a");
             w.plugin->setOnUnloadFuncName("b");
             static_cast<void>(w.plugin->getStatus() + w.plugin->getUseCount() + w.plugin->getTyp());
             static_cast<void>(w.plugin->toString() + w.plugin->getProduktVersion());
             static_cast<void>(w.plugin->listeErweiterungen().size() + w.plugin->getLabels().size());
         },
         {},
         {}},
        {"InitializeHasNoExit", nichts, initialisiere(gelingt), {"> OrvoPluginV1::initialize"}, {}},
        {"InitializeRefused", nichts, initialisiere(misslingt), {"> OrvoPluginV1::initialize"}, {}},
        {"AddErweiterung",
         nichts,
         [](Werkstueck& w) { w.plugin->addErweiterung(OrvoFADatenServiceErweiterung()); },
         {"> OrvoPluginV1::addErweiterung", "D F\xFCge Erweiterung an Erweiterungsliste an",
          "< OrvoPluginV1::addErweiterung"},
         {}},
        {"AddErweiterungRefused",
         [](Werkstueck&) {},
         [](Werkstueck& w) {
             struct OhneEigenenKlon : OrvoFADatenServiceErweiterung {};
             EXPECT_ANY_THROW(w.plugin->addErweiterung(OhneEigenenKlon()));
         },
         {"> OrvoPluginV1::addErweiterung"},
         {}},
        {"ProvidesSaysNothing",
         [](Werkstueck& w) {
             w.plugin->addErweiterung(
                 OrvoValidierungsServiceErweiterung(Unterfallart("10"), Veranlagungszeitraum(2009, "YYYY")));
             w.plugin->addErweiterung(OrvoFADatenServiceErweiterung());
         },
         [](Werkstueck& w) {
             w.plugin->providesUnterfallartUndVeranlagungszeitraum(Unterfallart("10"),
                                                                   Veranlagungszeitraum());
         },
         {},
         {}},
        {"FirstUse",
         nichts,
         benutze,
         {"> OrvoPluginV1::notifyUse", kLade, "< OrvoPluginV1::notifyUse(useCount=1)"},
         {kLade}},
        {"SecondUse",
         benutze,
         benutze,
         {"> OrvoPluginV1::notifyUse", "D Plugin: /p/libx.dylib schon geladen.",
          "< OrvoPluginV1::notifyUse(useCount=2)"},
         {}},
        {"FirstUseThatDoesNotOpen",
         [](Werkstueck& w) { w.bibliothek->laesstSichOeffnen = false; },
         benutze,
         {"> OrvoPluginV1::notifyUse", kLade, "E Konnte Plugin nicht laden: geht nicht auf",
          "< OrvoPluginV1::notifyUse(useCount=0)"},
         {kLade, "E Konnte Plugin nicht laden: geht nicht auf"}},
        {"FirstUseWithHook",
         hookNamens("hook"),
         benutze,
         {"> OrvoPluginV1::notifyUse", kLade, "< OrvoPluginV1::notifyUse(useCount=1)"},
         {kLade}},
        {"FirstUseWithoutItsHook",
         hookNamens("fehlt"),
         benutze,
         {"> OrvoPluginV1::notifyUse", kLade, "W Konnte Onload Funktion in Plugin nicht laden",
          "< OrvoPluginV1::notifyUse(useCount=1)"},
         {kLade, "W Konnte Onload Funktion in Plugin nicht laden"}},
        {"FirstUseWithThrowingHook",
         hookNamens("werfenderHook"),
         benutze,
         {"> OrvoPluginV1::notifyUse", kLade, "W Ausnahme in Onload Funktion: unbekannte Ausnahme",
          "< OrvoPluginV1::notifyUse(useCount=1)"},
         {kLade, "W Ausnahme in Onload Funktion: unbekannte Ausnahme"}},
        {"UseFromBelowZero",
         gibZurueck,
         benutze,
         {"> OrvoPluginV1::notifyUse", "D Plugin: /p/libx.dylib schon geladen.",
          "< OrvoPluginV1::notifyUse(useCount=0)"},
         {}},
        {"LastRelease",
         benutztMit("hook"),
         gibZurueck,
         {"> OrvoPluginV1::release", kEntlade, "< OrvoPluginV1::release(useCount=0)"},
         {kEntlade}},
        {"ReleaseWithUsersLeft",
         [](Werkstueck& w) {
             w.plugin->notifyUse();
             w.plugin->notifyUse();
         },
         gibZurueck,
         {"> OrvoPluginV1::release", "< OrvoPluginV1::release(useCount=1)"},
         {}},
        {"ReleaseTooMany",
         nichts,
         gibZurueck,
         {"> OrvoPluginV1::release", "< OrvoPluginV1::release(useCount=-1)"},
         {}},
        {"LastReleaseOfAResident",
         [](Werkstueck& w) {
             w.plugin->setResident(true);
             w.plugin->notifyUse();
         },
         gibZurueck,
         {"> OrvoPluginV1::release", "< OrvoPluginV1::release(useCount=0)"},
         {}},
        {"LastReleaseWithoutItsHook",
         benutztMit("fehlt"),
         gibZurueck,
         {"> OrvoPluginV1::release", kEntlade, "W Konnte OnUnload Funktion in Plugin nicht laden",
          "< OrvoPluginV1::release(useCount=0)"},
         {kEntlade, "W Konnte OnUnload Funktion in Plugin nicht laden"}},
        {"LastReleaseThatDoesNotClose",
         [](Werkstueck& w) {
             w.plugin->notifyUse();
             w.bibliothek->laesstSichSchliessen = false;
         },
         gibZurueck,
         {"> OrvoPluginV1::release", kEntlade, "W Konnte Plugin nicht entladen:geht nicht zu",
          "< OrvoPluginV1::release(useCount=0)"},
         {kEntlade, "W Konnte Plugin nicht entladen:geht nicht zu"}},
    };
}

class PluginTraces : public testing::TestWithParam<Fall> {};

/// The plugin's own lines of a step, in order.
Zeilen mitschrift(const Fall& fall, LogLevel stufe) {
    Mitschnitt log(stufe);
    Werkstueck w;
    fall.vorher(w);
    log.leere();
    fall.schritt(w);
    Zeilen zeilen;
    for (const auto& eintrag : log.eintraege())
        if (eintrag.category.starts_with("orvo.plugin.OrvoPlugin"))
            zeilen.push_back(Mitschnitt::zeile(eintrag));
    return zeilen;
}

/// The state of a plugin after a step.
std::string zustand(const Werkstueck& w) {
    std::string text = w.plugin->toString() + std::to_string(w.plugin->getStatus()) + " " +
                       std::to_string(w.plugin->getUseCount()) + (w.plugin->isResident() ? " resident" : "");
    for (const std::string& aufruf : w.notizen.aufrufe)
        text += " " + aufruf;
    return text;
}

} // namespace

TEST_P(PluginTraces, AreExactAtDebugLevel) {
    EXPECT_EQ(mitschrift(GetParam(), LogLevel::Debug), GetParam().mitDebug);
}

TEST_P(PluginTraces, AreGoneAboveDebugLevel) {
    EXPECT_EQ(mitschrift(GetParam(), LogLevel::Info), GetParam().ohneDebug);
}

TEST_P(PluginTraces, ChangeNothingElse) {
    Werkstueck mitLog, ohneLog, verstummt;
    {
        const Mitschnitt log;
        mitLog.plugin =
            std::make_unique<OrvoPluginV1>(mitLog.bibliothek = new Attrappe(mitLog.notizen, "/p/libx.dylib"));
        GetParam().vorher(mitLog);
        GetParam().schritt(mitLog);
        verstummt.plugin = std::make_unique<OrvoPluginV1>(
            verstummt.bibliothek = new Attrappe(verstummt.notizen, "/p/libx.dylib"));
        GetParam().vorher(verstummt);
    }
    GetParam().schritt(verstummt); // has a logger, but no sink is left
    GetParam().vorher(ohneLog);
    GetParam().schritt(ohneLog);
    EXPECT_EQ(zustand(mitLog), zustand(ohneLog));
    EXPECT_EQ(zustand(verstummt), zustand(ohneLog));
}

INSTANTIATE_TEST_SUITE_P(Operations, PluginTraces, testing::ValuesIn(faelleDesPlugins()), nameDesFalls);
