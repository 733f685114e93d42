// A directory with harmful plugins: each has a row that says what it did, and the other plugins are unaffected.

#include "kern/Sammler.h"

#include "Heim.h"
#include "kern/Bestandsermittlung.h"
#include "kern/Kindprozess.h"

#include "TestPlugins.h"
#include "support/Prozess.h"
#include "support/Sanitizer.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <string>
#include <vector>

using namespace testing;
using namespace werkzeug;

namespace {

constexpr double kKurz = 4; // s; enough for a healthy plugin on a busy machine

/// Two good plugins around a harmful one.
class Untaten : public Test {
protected:
    void SetUp() override {
        heim_.lege(test_plugins::DescribedByFile, "liba.dylib", "check 10 2009\n");
        heim_.lege(test_plugins::DescribedByFile, "libz.dylib", "check 11 2009\n");
    }
    Bestand sammleMit(const std::string& untat, double zeitlimit = 30) {
        heim_.lege(test_plugins::DoesHarm, "libm.dylib", untat);
        Optionen optionen;
        optionen.home = heim_.verzeichnis.pfad();
        optionen.zeitlimit = zeitlimit;
        optionen.quiet = true;
        Bestand bestand = sammle(optionen);
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "no child is left";
        EXPECT_EQ(zustand(bestand, "liba.dylib"), Zustand::GELADEN);
        EXPECT_EQ(zustand(bestand, "libz.dylib"), Zustand::GELADEN);
        return bestand;
    }
    static const DateiFakt& datei(const Bestand& bestand, const std::string& name) {
        for (const DateiFakt& datei : bestand.dateien)
            if (datei.name == name)
                return datei;
        throw std::runtime_error("no row for " + name);
    }
    static Zustand zustand(const Bestand& bestand, const std::string& name) {
        return datei(bestand, name).zustand;
    }

    Heim heim_;
};

} // namespace

TEST_F(Untaten, ACrashAnywhereIsARowWithItsSignal) {
    for (const std::string wann : {"start", "types", "initialize", "ende"}) {
        const Bestand bestand = sammleMit("tu " + wann + " segv\n");
        const DateiFakt& schlechte = datei(bestand, "libm.dylib");
        EXPECT_EQ(schlechte.zustand, Zustand::ABGESTUERZT) << wann;
        EXPECT_EQ(schlechte.grund, Grund::SIGNAL);
        EXPECT_EQ(schlechte.zahl, SIGSEGV);
        EXPECT_FALSE(schlechte.plugin);
        EXPECT_EQ(bestand.schluessel.size(), 2u);
        EXPECT_EQ(ausgangVon(bestand), Ausgang::ABGESTUERZT);
    }
}

TEST_F(Untaten, AnEndOfTheProcessIsARowWithItsExitCode) {
    for (const int code : {0, 3})
        for (const std::string wann : {"start", "types", "initialize", "ende"}) {
            const Bestand bestand = sammleMit("tu " + wann + " exit " + std::to_string(code) + "\n");
            const DateiFakt& schlechte = datei(bestand, "libm.dylib");
            EXPECT_EQ(schlechte.zustand, Zustand::BEENDET) << wann;
            EXPECT_EQ(schlechte.zahl, code);
            EXPECT_EQ(ausgangVon(bestand), Ausgang::ABGESTUERZT);
        }
}

TEST_F(Untaten, AHangIsARowAndEndsAfterTheTimeLimit) {
    const auto beginn = std::chrono::steady_clock::now();
    const Bestand bestand = sammleMit("tu initialize haenge\n", kKurz);
    EXPECT_EQ(zustand(bestand, "libm.dylib"), Zustand::ZEIT);
    EXPECT_EQ(ausgangVon(bestand), Ausgang::ABGESTUERZT);
    EXPECT_GE(std::chrono::steady_clock::now() - beginn, std::chrono::duration<double>(kKurz));
}

TEST_F(Untaten, AThreadLeftBehindIsLaidToThePluginThatStartedIt) {
#ifdef ORVO_ADDRESS_SANITIZER
    GTEST_SKIP() << "the sanitizer writes its report for so long that the process is done before it ends";
#endif
    heim_.lege(test_plugins::DoesHarm, "libn.dylib", "tu initialize schlafe 300\n"); // it crashes meanwhile
    const Bestand bestand = sammleMit("tu initialize faden\n");
    EXPECT_EQ(zustand(bestand, "libm.dylib"), Zustand::ABGESTUERZT);
    EXPECT_EQ(zustand(bestand, "libn.dylib"), Zustand::GELADEN);
}

TEST_F(Untaten, ClosedDescriptorsAreARowToo) {
    const Bestand bestand = sammleMit("tu initialize schliesse\n");
    EXPECT_EQ(zustand(bestand, "libm.dylib"), Zustand::ABGESTUERZT);
    EXPECT_EQ(datei(bestand, "libm.dylib").grund, Grund::KANAL);
}

TEST_F(Untaten, WritingOnEveryDescriptorForgesNothing) {
    const Bestand bestand = sammleMit("tu initialize schreibe\n");
    EXPECT_EQ(zustand(bestand, "libm.dylib"), Zustand::ABGESTUERZT);
    EXPECT_EQ(datei(bestand, "libm.dylib").grund, Grund::KANAL);
}

TEST_F(Untaten, WhatTheCallerHasOpenIsOutOfTheirReach) {
    int rohr[2];
    ASSERT_EQ(pipe(rohr), 0);
    EXPECT_EQ(datei(sammleMit("tu initialize schreibe\n"), "libm.dylib").grund, Grund::KANAL);
    fcntl(rohr[0], F_SETFL, O_NONBLOCK);
    char byte;
    EXPECT_EQ(read(rohr[0], &byte, 1), -1);
    close(rohr[0]); // writing to the other end is a signal now
    EXPECT_EQ(datei(sammleMit("tu initialize schreibe\n"), "libm.dylib").grund, Grund::KANAL);
    close(rohr[1]);
}

TEST_F(Untaten, WithoutADescriptorLeftEveryRowIsThereAllTheSame) {
#ifdef ORVO_ADDRESS_SANITIZER
    GTEST_SKIP() << "the sanitizer opens a pipe whenever it looks at an object's type";
#endif
    heim_.verzeichnis.schreibe("plugins/anders.txt", "");
    heim_.verzeichnis.schreibe("plugins/.versteckt", "");
    Optionen optionen;
    optionen.home = heim_.verzeichnis.pfad();
    heim_.lege(test_plugins::DoesHarm, "libm.dylib", "tu initialize knapp\n");
    Auftrag auftrag;
    auftrag.exporteVon = "*";
    const Bestand bestand = sammle(optionen, auftrag);
    EXPECT_EQ(zustand(bestand, "liba.dylib"), Zustand::GELADEN);
    EXPECT_EQ(datei(bestand, "liba.dylib").plugin->erweiterungen.at(0).factoryExport, Export::UNGEPRUEFT);
    EXPECT_EQ(zustand(bestand, "libm.dylib"), Zustand::GELADEN);
    EXPECT_EQ(zustand(bestand, "libz.dylib"), Zustand::ABGELEHNT) << "as in a client";
    EXPECT_EQ(datei(bestand, "libz.dylib").ursache, Ursache::DESKRIPTOREN);
    EXPECT_THAT(datei(bestand, "libz.dylib").meldung,
                HasSubstr("the limit of open files was lowered by libm.dylib"));
    EXPECT_EQ(datei(bestand, "anders.txt").grund, Grund::KEINE_ENDUNG);
    EXPECT_EQ(datei(bestand, ".versteckt").grund, Grund::VERSTECKT);
}

TEST_F(Untaten, TakingTheObserversOutIsARowToo) {
    const Bestand bestand = sammleMit("tu initialize stumm\n");
    EXPECT_EQ(zustand(bestand, "libm.dylib"), Zustand::ABGESTUERZT);
    EXPECT_EQ(datei(bestand, "libm.dylib").grund, Grund::KANAL);
}

TEST_F(Untaten, SeveralOfThemAreARowEach) {
    heim_.lege(test_plugins::DoesHarm, "libb.dylib", "tu types abort\n");
    heim_.lege(test_plugins::DoesHarm, "libc.dylib", "tu start exit 7\n");
    heim_.lege(test_plugins::ThrowsIntFromInitialize, "libd.dylib");
    const Bestand bestand = sammleMit("tu ende segv\n");
    EXPECT_EQ(zustand(bestand, "libb.dylib"), Zustand::ABGESTUERZT);
    EXPECT_EQ(datei(bestand, "libb.dylib").zahl, SIGABRT);
    EXPECT_EQ(zustand(bestand, "libc.dylib"), Zustand::BEENDET);
    EXPECT_EQ(zustand(bestand, "libd.dylib"), Zustand::ABGELEHNT);
    EXPECT_EQ(zustand(bestand, "libm.dylib"), Zustand::ABGESTUERZT);
}

TEST_F(Untaten, TheLastWordsOfACrashedPluginAreKept) {
    const Bestand bestand = sammleMit("tu types farbe\ntu initialize abort\n");
    EXPECT_THAT(datei(bestand, "libm.dylib").ausgabe, HasSubstr("ROT"));
}

TEST_F(Untaten, ATimerIsLaidToThePluginThatSetIt) {
    heim_.lege(test_plugins::DoesHarm, "libn.dylib", "tu initialize schlafe 1500\n"); // it goes off meanwhile
    heim_.lege(test_plugins::DoesHarm, "libo.dylib", "tu initialize schlafe 1500\n");
    const Bestand bestand = sammleMit("tu initialize wecker 1\n");
    EXPECT_EQ(zustand(bestand, "libm.dylib"), Zustand::ABGESTUERZT);
    EXPECT_EQ(datei(bestand, "libm.dylib").zahl, SIGALRM);
    EXPECT_EQ(zustand(bestand, "libn.dylib"), Zustand::GELADEN);
    EXPECT_EQ(zustand(bestand, "libo.dylib"), Zustand::GELADEN);
}

TEST_F(Untaten, AFileThatIsGoneByTheTimeItCrashesIsARowAllTheSame) {
    const Bestand bestand = sammleMit("tu initialize loesche\ntu initialize abort\n");
    EXPECT_EQ(zustand(bestand, "libm.dylib"), Zustand::ABGESTUERZT);
    EXPECT_EQ(bestand.fundort(datei(bestand, "libm.dylib")), heim_.plugins() + "/libm.dylib");
    ASSERT_EQ(bestand.dateien.size(), 6u) << "with the texts beside the plugins";
    EXPECT_EQ(bestand.dateien[2].name, "libm.dylib") << "where it was";
    EXPECT_EQ(ausgangVon(bestand), Ausgang::ABGESTUERZT);
}

TEST(Sammler, AFileOnItsOwnThatIsGoneByTheTimeItCrashesIsARowAllTheSame) {
    const Heim heim;
    Auftrag auftrag;
    auftrag.einzeln =
        heim.lege(test_plugins::DoesHarm, "libm.dylib", "tu initialize loesche\ntu initialize abort\n");
    const Bestand bestand = sammle({}, auftrag);
    ASSERT_EQ(bestand.dateien.size(), 1u);
    EXPECT_EQ(bestand.dateien[0].zustand, Zustand::ABGESTUERZT);
    EXPECT_EQ(bestand.fundort(bestand.dateien[0]), auftrag.einzeln);
}

TEST(Sammler, TheToolsOwnWorkHasNoTimeLimitAsLongAsItGoesOn) {
    const Heim heim;
    heim.lege(test_plugins::DoesHarm, "liba.dylib", "checks 20000\n");
    Optionen optionen;
    optionen.home = heim.verzeichnis.pfad();
    bool codeLief = false;
    int zeichen = 0; // after the last plugin's code
    const Kindende ende = laufeImKind(
        [&](const Sender& sende) {
            ermittleBestand(optionen, {}, {}, [&](const std::string& pfad) { sende(pfad); });
        },
        [&](std::string_view pfad) {
            codeLief = codeLief || !pfad.empty();
            zeichen += pfad.empty();
        },
        std::chrono::minutes(5));
    EXPECT_TRUE(ende.istGut());
    EXPECT_TRUE(codeLief);
    EXPECT_GE(zeichen, 20);
}

TEST_F(Untaten, ThisProcessStaysAsItWas) {
    const int deskriptoren = offeneDeskriptoren();
    sammleMit("tu initialize segv\n");
    EXPECT_EQ(offeneDeskriptoren(), deskriptoren);
    EXPECT_FALSE(istEingeblendet(heim_.plugins() + "/liba.dylib"));
}

TEST(Sammler, TellsOfADirectoryThatIsNotThere) {
    Optionen optionen;
    optionen.dir = "/gibt/es/nicht";
    EXPECT_THROW(sammle(optionen), Unlesbar);
}

TEST(Sammler, LoadsTheFilesOfACertainDirectoryWhateverItIsCalled) {
    const Heim heim;
    heim.lege(test_plugins::DescribedByFile, "liba.dylib", "check 10 2009\n");
    heim.lege(test_plugins::DescribedByFile, "unter/libb.dylib", "check 10 2010\n");
    Optionen optionen;
    optionen.dir = heim.plugins() + "/unter";
    const Bestand bestand = sammle(optionen);
    EXPECT_EQ(bestand.suchpfad, optionen.dir);
    ASSERT_EQ(bestand.schluessel.size(), 1u);
    EXPECT_EQ(bestand.schluessel[0].zeitraum.jahr, 2010);
}

TEST(Sammler, LoadsOneFileAlone) {
    const Heim heim;
    heim.lege(test_plugins::DescribedByFile, "liba.dylib", "check 10 2009\n");
    const std::string b = heim.lege(test_plugins::DescribedByFile, "libb.dylib", "check 10 2010\n");
    Auftrag auftrag;
    auftrag.einzeln = b;
    auftrag.exporteVon = b;
    const Bestand bestand = sammle({}, auftrag);
    ASSERT_EQ(bestand.dateien.size(), 1u);
    EXPECT_EQ(bestand.fundort(bestand.dateien[0]), b);
    EXPECT_EQ(bestand.dateien[0].plugin->erweiterungen[0].factoryExport, Export::JA);
}

TEST(Sammler, PassesFilesOverAsIfTheyWereNotThere) {
    const Heim heim;
    const std::string a =
        heim.lege(test_plugins::DescribedByFile, "liba.dylib", "produktversion 2\ncheck 10 2009\n");
    heim.lege(test_plugins::DescribedByFile, "libb.dylib", "produktversion 1\ncheck 10 2009\n");
    Optionen optionen;
    optionen.home = heim.verzeichnis.pfad();
    Auftrag auftrag;
    auftrag.ohne = {a};
    const Bestand bestand = sammle(optionen, auftrag);
    ASSERT_EQ(bestand.schluessel.size(), 1u);
    EXPECT_EQ(bestand.datei(bestand.schluessel[0].inhaber).name, "libb.dylib");
    for (const DateiFakt& datei : bestand.dateien)
        EXPECT_NE(datei.name, "liba.dylib");
}
