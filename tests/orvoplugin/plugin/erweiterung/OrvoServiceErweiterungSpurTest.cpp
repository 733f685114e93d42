// What a service extension writes to the log: per operation and path through it, together with the calls.

#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

#include "orvoplugin/plugin/erweiterung/Plugindatei.h"
#include "orvoplugin/plugin/erweiterung/Probe.h"

#include <functional>
#include <optional>
#include <stdexcept>

namespace {

using orvo::orvoutil::LogLevel;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kAuf = "> OrvoServiceErweiterung::holeService";
const std::string kAb = "< OrvoServiceErweiterung::holeService";
const std::string kFehlt = "E Konnte Funktion: fabrik in Plugin /plugins/libprobe.dylib nicht finden.";
const std::string kRueckAuf = "> OrvoServiceErweiterung::release";
const std::string kRueckAb = "< OrvoServiceErweiterung::release";
const std::string kUnbekannt = "W Unbekannte Serviceinstanz. Ignoriere sie.";
const std::string kOhnePlugin = "E Erweiterung geh\xF6rt zu keinem Plugin. Kein Service.";

/// The calls and lines of one operation, at each level.
class OrvoServiceErweiterungSpur : public Probe {
protected:
    /// Runs `tat` on a new extension made at that level. Returns: the transcript without the construction.
    Ablauf ablaufBei(std::optional<LogLevel> level, const std::function<void(Erweiterungsprobe&)>& tat) {
        std::optional<Mitschreiber> mitschreiber;
        if (level)
            mitschreiber.emplace(ablauf, *level);
        Erweiterungsprobe neue;
        neue.setPlugin(&plugin);
        seither();
        tat(neue);
        return seither();
    }

    static void hole(Erweiterungsprobe& e) { e.holeService(); }
};

TEST_F(OrvoServiceErweiterungSpur, IsWrittenByBothConstructors) {
    const std::string rein = "+> OrvoServiceErweiterung::OrvoServiceErweiterung";
    const std::string raus = "+< OrvoServiceErweiterung::OrvoServiceErweiterung";
    const Mitschreiber mitschreiber(ablauf);
    {
        const Erweiterungsprobe neue;
        EXPECT_THAT(seither(), ElementsAre(rein, raus));
        const Erweiterungsprobe kopie(neue);
        EXPECT_THAT(seither(), ElementsAre(rein, raus));
    }
    EXPECT_THAT(seither(), IsEmpty()) << "the destructor is silent";
}

TEST_F(OrvoServiceErweiterungSpur, OfConstructorsNeedsDebugLevel) {
    const Mitschreiber mitschreiber(ablauf, LogLevel::Info);
    const Erweiterungsprobe neue;
    const Erweiterungsprobe kopie(neue);
    EXPECT_THAT(seither(), IsEmpty());
}

TEST_F(OrvoServiceErweiterungSpur, OfAServiceHandedOut) {
    Dienst dienst;
    naechster = &dienst;
    EXPECT_THAT(ablaufBei(LogLevel::Debug, hole),
                ElementsAre(kAuf, "notifyUse", "symbol fabrik", "fabrik", kAb));
    for (const std::optional<LogLevel> level : {std::optional(LogLevel::Info), std::optional<LogLevel>()})
        EXPECT_THAT(ablaufBei(level, hole), ElementsAre("notifyUse", "symbol fabrik", "fabrik"));
}

TEST_F(OrvoServiceErweiterungSpur, OfAMissingFactoryHasTheErrorBeforeTheUseIsGivenBack) {
    bibliothek->symbole.clear();
    EXPECT_THAT(ablaufBei(LogLevel::Debug, hole),
                ElementsAre(kAuf, "notifyUse", "symbol fabrik", kFehlt, "release", kAb));
    for (const LogLevel level : {LogLevel::Info, LogLevel::Warn, LogLevel::Error})
        EXPECT_THAT(ablaufBei(level, hole), ElementsAre("notifyUse", "symbol fabrik", kFehlt, "release"));
    EXPECT_THAT(ablaufBei({}, hole), ElementsAre("notifyUse", "symbol fabrik", "release"));
}

TEST_F(OrvoServiceErweiterungSpur, OfAFactoryThatMakesNothingHasNoMessage) {
    EXPECT_THAT(ablaufBei(LogLevel::Debug, hole),
                ElementsAre(kAuf, "notifyUse", "symbol fabrik", "fabrik", "release", kAb));
    EXPECT_THAT(ablaufBei(LogLevel::Info, hole),
                ElementsAre("notifyUse", "symbol fabrik", "fabrik", "release"));
}

TEST_F(OrvoServiceErweiterungSpur, OfAFactoryThatThrowsNamesTheReason) {
    const std::string ausnahme = "E Ausnahme in Funktion: fabrik in Plugin /plugins/libprobe.dylib: ";
    bibliothek->exportiere(
        "fabrik", +[]() -> Service* { throw std::runtime_error("kann nicht"); });
    EXPECT_THAT(ablaufBei(LogLevel::Debug, hole),
                ElementsAre(kAuf, "notifyUse", "symbol fabrik", ausnahme + "kann nicht", "release", kAb));
    EXPECT_THAT(ablaufBei({}, hole), ElementsAre("notifyUse", "symbol fabrik", "release"));

    bibliothek->exportiere(
        "fabrik", +[]() -> Service* { throw 42; });
    EXPECT_THAT(ablaufBei(LogLevel::Error, hole),
                ElementsAre("notifyUse", "symbol fabrik", ausnahme + "unbekannte Ausnahme", "release"));
}

TEST_F(OrvoServiceErweiterungSpur, OfAnExtensionWithoutAPlugin) {
    const auto tat = [](Erweiterungsprobe& e) {
        e.setPlugin(nullptr);
        e.holeService();
    };
    EXPECT_THAT(ablaufBei(LogLevel::Debug, tat), ElementsAre(kAuf, kOhnePlugin, kAb));
    EXPECT_THAT(ablaufBei(LogLevel::Error, tat), ElementsAre(kOhnePlugin));
    EXPECT_THAT(ablaufBei({}, tat), IsEmpty());
}

TEST_F(OrvoServiceErweiterungSpur, OfAPluginWithoutALibraryHasNoName) {
    Pluginprobe ohne(ablauf, nullptr);
    const auto tat = [&](Erweiterungsprobe& e) {
        e.setPlugin(&ohne);
        e.holeService();
    };
    EXPECT_THAT(ablaufBei(LogLevel::Info, tat),
                ElementsAre("notifyUse", "E Konnte Funktion: fabrik in Plugin  nicht finden.", "release"));
}

TEST_F(OrvoServiceErweiterungSpur, OfAServiceGivenBack) {
    const auto tat = [this](Erweiterungsprobe& e) {
        e.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
        naechster = new Dienst;
        Service* const service = e.holeService();
        seither();
        e.release(service);
    };
    EXPECT_THAT(ablaufBei(LogLevel::Debug, tat), ElementsAre(kRueckAuf, "delete", "release", kRueckAb));
    EXPECT_THAT(ablaufBei(LogLevel::Info, tat), ElementsAre("delete", "release"));
    EXPECT_THAT(ablaufBei({}, tat), ElementsAre("delete", "release"));
}

TEST_F(OrvoServiceErweiterungSpur, OfAnUnknownServiceEndsWithTheWarning) {
    Dienst fremder;
    for (Service* const unbekannter : {static_cast<Service*>(&fremder), static_cast<Service*>(nullptr)}) {
        const auto tat = [&](Erweiterungsprobe& e) { e.release(unbekannter); };
        EXPECT_THAT(ablaufBei(LogLevel::Debug, tat), ElementsAre(kRueckAuf, kUnbekannt)) << "no exit line";
        EXPECT_THAT(ablaufBei(LogLevel::Info, tat), ElementsAre(kUnbekannt));
        EXPECT_THAT(ablaufBei(LogLevel::Warn, tat), ElementsAre(kUnbekannt));
        EXPECT_THAT(ablaufBei(LogLevel::Error, tat), IsEmpty());
        EXPECT_THAT(ablaufBei({}, tat), IsEmpty());
    }
}

TEST_F(OrvoServiceErweiterungSpur, IsMissingForGoodWhereNobodyListenedAtTheMaking) {
    const Mitschreiber mitschreiber(ablauf); // `erweiterung` was made before it
    erweiterung.release(nullptr);
    EXPECT_EQ(erweiterung.holeService(), nullptr);
    EXPECT_THAT(seither(), ElementsAre("notifyUse", "symbol fabrik", "fabrik", "release"));
    // A copy gets its own logger.
    Erweiterungsprobe kopie(erweiterung);
    seither();
    kopie.release(nullptr);
    EXPECT_THAT(seither(), ElementsAre(kRueckAuf, kUnbekannt));
}

TEST(OrvoServiceErweiterungSpurMitPlugin, EnclosesThatOfThePlugin) {
    Mitschnitt mitschnitt;
    const Plugindatei datei;
    auto& erweiterung = datei.erweiterung<OrvoValidierungsServiceErweiterung>();
    erweiterung.setzeFlag(FLAG_SERVICE_LOESCHEN, true);
    mitschnitt.leere();
    auto* const service = erweiterung.holeService();
    EXPECT_THAT(mitschnitt.zeilen(), ElementsAre(kAuf, "> OrvoPluginV1::notifyUse",
                                                 "[Plugin|99|Lade Plugin: " + datei.pfad + "|99]",
                                                 "< OrvoPluginV1::notifyUse(useCount=1)", kAb));
    mitschnitt.leere();
    erweiterung.release(service);
    EXPECT_THAT(mitschnitt.zeilen(), ElementsAre(kRueckAuf, "> OrvoPluginV1::release",
                                                 "[Plugin|99|Entlade Plugin: " + datei.pfad + "|99]",
                                                 "< OrvoPluginV1::release(useCount=0)", kRueckAb));
}

} // namespace
