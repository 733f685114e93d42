#include "kern/Arbeitsteilung.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <map>
#include <numeric>
#include <stdexcept>

using namespace testing;
using namespace werkzeug;

namespace {

using Sende = std::function<void(std::string_view)>;

Arbeitsplan plan(std::size_t stuecke, std::size_t zugleich) {
    Arbeitsplan plan;
    plan.stuecke.resize(stuecke);
    std::iota(plan.stuecke.begin(), plan.stuecke.end(), 0);
    plan.zugleich = zugleich;
    return plan;
}

/// What came of each piece: its text, and how its process ended.
std::map<std::size_t, std::string> laufe(Arbeitsplan plan) {
    std::map<std::size_t, std::string> ergebnisse;
    plan.fertig = [&](std::size_t i, const std::string& gesendet, const Kindende& ende) {
        EXPECT_TRUE(ergebnisse.emplace(i, gesendet + "/" + ende.text()).second);
    };
    verteile(plan);
    return ergebnisse;
}

} // namespace

TEST(Arbeitsteilung, EachPieceIsDoneOnceWhateverTheNumberOfProcesses) {
    for (const std::size_t zugleich : {1, 3, 100}) {
        Arbeitsplan p = plan(20, zugleich);
        p.arbeit = [](std::size_t i, const Sende& sende) {
            sende(std::to_string(i));
            sende(std::string(100000, 'x')); // more than a pipe holds
        };
        const auto ergebnisse = laufe(p);
        ASSERT_EQ(ergebnisse.size(), 20U);
        for (const auto& [i, text] : ergebnisse)
            EXPECT_EQ(text, std::to_string(i) + std::string(100000, 'x') + "/");
    }
    EXPECT_THAT(laufe(plan(0, 2)), IsEmpty());
}

TEST(Arbeitsteilung, AProcessThatDiesIsToldAndTheOthersGoOn) {
    Arbeitsplan p = plan(4, 2);
    p.arbeit = [](std::size_t i, const Sende& sende) {
        sende("begun");
        if (i == 0)
            raise(SIGKILL);
        if (i == 1)
            _exit(3);
        if (i == 2)
            throw std::runtime_error("no more");
    };
    EXPECT_THAT(laufe(p),
                ElementsAre(Pair(0, "begun/ended by signal 9 (SIGKILL)"),
                            Pair(1, "begun/ended the process with exit code 3"),
                            Pair(2, "begun/ended the process with exit code 1"), Pair(3, "begun/")));
}

TEST(Arbeitsteilung, ASignalEndsAllProcessesBeforeTheCaller) {
    int rohr[2];
    ASSERT_EQ(pipe(rohr), 0);
    const pid_t werkzeug = fork();
    if (werkzeug == 0) {
        Arbeitsplan p = plan(2, 2);
        p.fertig = [](std::size_t, const std::string&, const Kindende&) {};
        p.arbeit = [&](std::size_t, const Sende&) {
            const auto schreibe = [&] {
                const pid_t ich = getpid();
                schreibeGanz(rohr[1], &ich, sizeof(ich));
            };
            schreibe();
            const auto empfange = [&](std::string_view satz) {
                schreibeGanz(rohr[1], satz.data(), satz.size());
            };
            laufeImKind(
                [&](const Sender& sende) { // without the pipe
                    const pid_t ich = getpid();
                    sende({reinterpret_cast<const char*>(&ich), sizeof(ich)});
                    for (;;)
                        pause();
                },
                empfange, std::chrono::hours(1));
        };
        int signal = 0;
        try {
            verteile(p);
        } catch (const Unterbrochen& unterbrochen) {
            signal = unterbrochen.signal;
        }
        _exit(signal);
    }
    pid_t prozesse[4]; // two, and the child of each
    std::size_t gelesen = 0;
    while (gelesen < sizeof(prozesse)) {
        const ssize_t anzahl =
            read(rohr[0], reinterpret_cast<char*>(prozesse) + gelesen, sizeof(prozesse) - gelesen);
        ASSERT_GT(anzahl, 0);
        gelesen += static_cast<std::size_t>(anzahl);
    }
    kill(werkzeug, SIGTERM);
    int zustand = 0;
    ASSERT_EQ(waitpid(werkzeug, &zustand, 0), werkzeug);
    EXPECT_EQ(WEXITSTATUS(zustand), SIGTERM);
    for (const pid_t prozess : prozesse)
        EXPECT_EQ(kill(prozess, 0), -1) << prozess;
    close(rohr[0]);
    close(rohr[1]);
}

TEST(Arbeitsteilung, ThereIsAProcessor) { EXPECT_GE(verfuegbareProzessoren(), 1U); }
