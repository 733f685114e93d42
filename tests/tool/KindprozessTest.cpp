#include "kern/Kindprozess.h"

#include "support/Prozess.h"
#include "support/Verzeichnis.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace testing;
using namespace werkzeug;
using namespace std::chrono_literals;

namespace {

constexpr auto kLange = 60s;

struct Lauf {
    Kindende ende;
    std::vector<std::string> saetze;
};

Lauf laufe(const Kindarbeit& arbeit, std::chrono::duration<double> zeitlimit = kLange) {
    Lauf lauf;
    lauf.ende = laufeImKind(
        arbeit, [&](std::string_view satz) { lauf.saetze.emplace_back(satz); }, zeitlimit);
    return lauf;
}

auto endet(Kindende::Art art, int zahl) {
    return AllOf(Field(&Kindende::art, art), Field(&Kindende::zahl, zahl));
}

bool lebt(pid_t prozess) { return kill(prozess, 0) == 0; }

} // namespace

TEST(Kindprozess, TheParentGetsTheRecordsInTheirOrder) {
    const std::string gross(1 << 20, 'x');
    const Lauf lauf = laufe([&](const Sender& sende) {
        sende("eins");
        sende("");
        sende(gross);
        sende(std::string("mit\0null", 8));
    });
    EXPECT_TRUE(lauf.ende.istGut());
    EXPECT_EQ(lauf.ende.text(), "");
    EXPECT_THAT(lauf.saetze, ElementsAre("eins", "", gross, std::string("mit\0null", 8)));
}

TEST(Kindprozess, WhatTheChildChangesStaysInTheChild) {
    int zahl = 1;
    const int deskriptoren = offeneDeskriptoren();
    EXPECT_TRUE(laufe([&](const Sender&) { zahl = 2; }).ende.istGut());
    EXPECT_EQ(zahl, 1);
    EXPECT_EQ(offeneDeskriptoren(), deskriptoren);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "no child is left";
}

TEST(Kindprozess, TellsTheSignalThatEndedTheChildAndKeepsWhatCameBefore) {
    const Lauf lauf = laufe([](const Sender& sende) {
        sende("vorher");
        std::signal(SIGTERM, SIG_DFL);
        raise(SIGTERM);
    });
    EXPECT_THAT(lauf.ende, endet(Kindende::Art::SIGNAL, SIGTERM));
    EXPECT_EQ(lauf.ende.text(), "ended by signal 15 (SIGTERM)");
    EXPECT_THAT(lauf.saetze, ElementsAre("vorher"));
}

TEST(Kindprozess, AnExceptionThatLeavesTheWorkIsAnAbort) {
    const Lauf lauf = laufe([](const Sender&) { throw std::runtime_error("nach oben"); });
    EXPECT_THAT(lauf.ende, endet(Kindende::Art::SIGNAL, SIGABRT));
}

TEST(Kindprozess, AnyExitCodeBeforeTheWorkIsDoneIsAnEndOfTheProcess) {
    for (const int code : {0, 1, 42}) {
        const Lauf lauf = laufe([code](const Sender& sende) {
            sende("vorher");
            _exit(code);
        });
        EXPECT_THAT(lauf.ende, endet(Kindende::Art::BEENDET, code));
        EXPECT_EQ(lauf.ende.text(), "ended the process with exit code " + std::to_string(code));
        EXPECT_THAT(lauf.saetze, ElementsAre("vorher"));
    }
}

TEST(Kindprozess, AChildThatHangsIsKilledWhenItsTimeIsUp) {
    const auto beginn = std::chrono::steady_clock::now();
    const Lauf lauf = laufe(
        [](const Sender& sende) {
            sende(std::to_string(getpid()));
            for (;;)
                pause();
        },
        0.2s);
    EXPECT_THAT(lauf.ende, endet(Kindende::Art::ZEIT, 0));
    EXPECT_EQ(lauf.ende.text(), "did not come back in time");
    EXPECT_LT(std::chrono::steady_clock::now() - beginn, kLange);
    ASSERT_THAT(lauf.saetze, SizeIs(1));
    EXPECT_FALSE(lebt(std::stoi(lauf.saetze[0])));
}

TEST(Kindprozess, EachRecordGivesTheChildItsTimeAnew) {
    const Lauf lauf = laufe(
        [](const Sender& sende) {
            for (int i = 0; i < 4; ++i) {
                std::this_thread::sleep_for(0.3s);
                sende("noch da");
            }
        },
        1s);
    EXPECT_TRUE(lauf.ende.istGut());
    EXPECT_THAT(lauf.saetze, SizeIs(4));
}

TEST(Kindprozess, WhatTheChildStartedIsKilledWithIt) {
    for (const bool haengt : {false, true}) {
        const Lauf lauf = laufe(
            [haengt](const Sender& sende) {
                const pid_t enkel = fork(); // holds the pipe open too
                if (enkel == 0)
                    for (;;)
                        pause();
                sende(std::to_string(enkel));
                while (haengt)
                    pause();
            },
            haengt ? 0.2s : kLange);
        EXPECT_EQ(lauf.ende.istGut(), !haengt);
        ASSERT_THAT(lauf.saetze, SizeIs(1));
        const pid_t enkel = std::stoi(lauf.saetze[0]);
        for (int i = 0; lebt(enkel) && i < 500; ++i) { // its new parent needs a moment to reap it
            std::ifstream zustand("/proc/" + lauf.saetze[0] + "/stat");
            std::string text((std::istreambuf_iterator<char>(zustand)), {});
            if (text.find(") Z") != std::string::npos)
                break;
            std::this_thread::sleep_for(10ms);
        }
        std::ifstream zustand("/proc/" + lauf.saetze[0] + "/stat");
        const std::string text((std::istreambuf_iterator<char>(zustand)), {});
        EXPECT_TRUE(text.empty() || text.find(") Z") != std::string::npos) << text;
    }
}

TEST(Kindprozess, WhatTheChildSentAwayIsKilledWithIt) {
    const Lauf lauf = laufe([](const Sender& sende) {
        int rohr[2];
        ASSERT_EQ(pipe(rohr), 0);
        if (fork() == 0) {
            setsid();
            pid_t daemon = fork();
            if (daemon == 0)
                for (;;)
                    pause();
            _exit(write(rohr[1], &daemon, sizeof(daemon)) == sizeof(daemon) ? 0 : 1);
        }
        pid_t daemon = 0;
        ASSERT_EQ(read(rohr[0], &daemon, sizeof(daemon)), static_cast<ssize_t>(sizeof(daemon)));
        sende(std::to_string(daemon));
    });
    EXPECT_TRUE(lauf.ende.istGut());
    ASSERT_THAT(lauf.saetze, SizeIs(1));
    EXPECT_FALSE(lebt(std::stoi(lauf.saetze[0])));
}

TEST(Kindprozess, ChildrenOfTheCallersOwnAreLeftAlone) {
    const pid_t eigenes = fork();
    if (eigenes == 0)
        for (;;)
            pause();
    EXPECT_TRUE(laufe([](const Sender&) {}).ende.istGut());
    EXPECT_EQ(waitpid(eigenes, nullptr, WNOHANG), 0) << "it runs";
    kill(eigenes, SIGKILL);
    EXPECT_EQ(waitpid(eigenes, nullptr, 0), eigenes);
}

TEST(Kindprozess, ASignalToTheChildsParentEndsTheChildAndNotTheCaller) {
    for (const int signal : {SIGKILL, SIGTERM, SIGHUP}) {
        const auto vorher = std::signal(signal, SIG_DFL); // the caller may have had it ignored
        const Lauf lauf = laufe([signal](const Sender& sende) {
            sende(std::to_string(getpid()));
            kill(getppid(), signal);
            for (;;)
                pause();
        });
        std::signal(signal, vorher);
        EXPECT_THAT(lauf.ende, endet(Kindende::Art::SIGNAL, signal));
        ASSERT_THAT(lauf.saetze, SizeIs(1));
        EXPECT_FALSE(lebt(std::stoi(lauf.saetze[0])));
    }
}

TEST(Kindprozess, WhoWantsThisProcessToEndLeavesNothingOfTheChild) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const auto vorher = std::signal(signal, SIG_DFL); // the caller may have had it ignored
        pid_t kind = 0;
        const auto arbeite = [](const Sender& sende) {
            setsid();
#ifdef __linux__
            prctl(PR_SET_PDEATHSIG, 0); // it would outlive us
#endif
            sende(std::to_string(getpid()));
            for (;;)
                pause();
        };
        try {
            laufeImKind(
                arbeite,
                [&](std::string_view satz) {
                    kind = std::stoi(std::string(satz));
                    raise(signal);
                },
                kLange);
            FAIL() << "it went on";
        } catch (const Unterbrochen& unterbrochen) {
            EXPECT_EQ(unterbrochen.signal, signal);
        }
        ASSERT_GT(kind, 0);
        EXPECT_FALSE(lebt(kind));
        struct sigaction jetzt {};
        sigaction(signal, nullptr, &jetzt);
        EXPECT_EQ(jetzt.sa_handler, SIG_DFL) << "as it was";
        std::signal(signal, vorher);
    }
}

TEST(Kindprozess, SomethingThatHoldsThePipeOpenDoesNotHideHowTheChildEnded) {
    const Lauf lauf = laufe([](const Sender& sende) {
        if (fork() == 0)
            for (;;)
                pause();
        sende("vorher");
        _exit(7);
    });
    EXPECT_THAT(lauf.ende, endet(Kindende::Art::BEENDET, 7));
    EXPECT_THAT(lauf.saetze, ElementsAre("vorher"));
}

TEST(Kindprozess, AChildThatClosesEverythingIsStillWaitedFor) {
    const Lauf lauf = laufe([](const Sender&) {
        closefrom(0);
        std::this_thread::sleep_for(50ms);
        _exit(3);
    });
    EXPECT_THAT(lauf.ende, endet(Kindende::Art::BEENDET, 3));
}

TEST(Kindprozess, TheChildNeitherReadsNorWritesTheStandardStreams) {
    std::fputs("unwritten ", stdout); // must not be written twice
    const Lauf lauf = laufe([](const Sender& sende) {
        char zeichen = 0;
        sende(read(STDIN_FILENO, &zeichen, 1) == 0 ? "empty" : "something");
        std::fputs("never seen", stdout);
        std::fflush(stdout);
        struct stat aus {};
        fstat(STDOUT_FILENO, &aus);
        struct stat nichts {};
        stat("/dev/null", &nichts);
        sende(aus.st_rdev == nichts.st_rdev ? "null device" : "another");
    });
    EXPECT_THAT(lauf.saetze, ElementsAre("empty", "null device"));
}

TEST(Kindprozess, TheChildHasNoTerminal) {
    const Lauf lauf = laufe([](const Sender& sende) {
        sende(std::to_string(getsid(0)));
        sende(open("/dev/tty", O_RDWR | O_CLOEXEC) < 0 ? "no terminal" : "a terminal");
    });
    EXPECT_THAT(lauf.saetze, ElementsAre(Ne(std::to_string(getsid(0))), "no terminal"));
}

#ifdef __linux__
TEST(Kindprozess, TheChildIsTheFirstToGoWhenMemoryRunsOut) {
    const Lauf lauf = laufe([](const Sender& sende) {
        std::string vorrang;
        std::ifstream("/proc/self/oom_score_adj") >> vorrang;
        sende(vorrang);
    });
    EXPECT_THAT(lauf.saetze, ElementsAre("1000"));
}
#endif

TEST(Kindprozess, LateCodeOfTheParentDoesNotRunInTheChild) {
    const Verzeichnis verzeichnis;
    static std::string datei;
    datei = verzeichnis.pfad("ende");
    std::atexit([] {
        if (!datei.empty())
            std::ofstream(datei) << "ran";
    });
    EXPECT_TRUE(laufe([](const Sender&) {}).ende.istGut());
    EXPECT_FALSE(std::ifstream(datei).is_open());
    datei.clear();
}
