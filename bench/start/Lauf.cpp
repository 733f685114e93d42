#include "Lauf.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

/// The command in the form that the system takes.
class Argumente {
public:
    explicit Argumente(const Befehl& befehl) : befehl_(befehl) {
        for (std::string& wort : befehl_)
            zeiger_.push_back(wort.data());
        zeiger_.push_back(nullptr);
    }
    char** get() { return zeiger_.data(); }

private:
    Befehl befehl_;
    std::vector<char*> zeiger_;
};

[[noreturn]] void scheitere(const Befehl& befehl, const std::string& grund) {
    std::string text;
    for (const std::string& wort : befehl)
        text += wort + " ";
    throw std::runtime_error(text + grund);
}

void verlangeErfolg(const Befehl& befehl, int ausgang) {
    if (!WIFEXITED(ausgang) || WEXITSTATUS(ausgang) != 0)
        scheitere(befehl, "has failed");
}

std::string liesAlles(int leitung) {
    std::string alles;
    char puffer[4096];
    for (ssize_t gelesen; (gelesen = read(leitung, puffer, sizeof(puffer))) > 0;)
        alles.append(puffer, static_cast<std::size_t>(gelesen));
    return alles;
}

double mikrosekunden(const timeval& zeit) {
    return static_cast<double>(zeit.tv_sec) * 1e6 + static_cast<double>(zeit.tv_usec);
}

} // namespace

Lauf fuehreAus(const Befehl& befehl) {
    int leitung[2];
    if (pipe(leitung) != 0)
        scheitere(befehl, "gets no pipe");
    posix_spawn_file_actions_t aktionen;
    posix_spawn_file_actions_init(&aktionen);
    posix_spawn_file_actions_adddup2(&aktionen, leitung[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&aktionen, leitung[0]);
    posix_spawn_file_actions_addclose(&aktionen, leitung[1]);
    Argumente argumente(befehl);

    pid_t kind = 0;
    const int fehler = posix_spawn(&kind, befehl.at(0).c_str(), &aktionen, nullptr, argumente.get(), environ);
    close(leitung[1]);
    posix_spawn_file_actions_destroy(&aktionen);
    const std::string ausgabe = liesAlles(leitung[0]);
    close(leitung[0]);
    if (fehler != 0)
        scheitere(befehl, "cannot be started");
    int ausgang = 0;
    rusage verbrauch{};
    wait4(kind, &ausgang, 0, &verbrauch);
    verlangeErfolg(befehl, ausgang);
    Lauf lauf{mikrosekunden(verbrauch.ru_utime) + mikrosekunden(verbrauch.ru_stime), {}};
    std::istringstream text(ausgabe);
    for (double zahl; text >> zahl;)
        lauf.zahlen.push_back(zahl);
    return lauf;
}

double systemaufrufe(const Befehl& befehl) {
    Argumente argumente(befehl);
    const pid_t kind = fork();
    if (kind == 0) {
        if (dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO) < 0 ||
            ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
            _exit(126);
        std::raise(SIGSTOP);
        execv(argumente.get()[0], argumente.get());
        _exit(127);
    }
    int zustand = 0;
    waitpid(kind, &zustand, 0);
    if (!WIFSTOPPED(zustand))
        scheitere(befehl, "cannot be traced");
    ptrace(PTRACE_SETOPTIONS, kind, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    constexpr int kSystemaufruf = SIGTRAP | 0x80;
    int haltepunkte = 0; // one before each system call, one behind it
    while (ptrace(PTRACE_SYSCALL, kind, nullptr, nullptr) == 0 && waitpid(kind, &zustand, 0) == kind &&
           WIFSTOPPED(zustand))
        haltepunkte += WSTOPSIG(zustand) == kSystemaufruf;
    verlangeErfolg(befehl, zustand);
    return haltepunkte / 2.0;
}

double instruktionen(const Befehl& befehl) {
    const std::string protokoll =
        std::filesystem::temp_directory_path() / ("orvo-bench-callgrind-" + std::to_string(getpid()));
    Befehl mitValgrind{"/usr/bin/env", "valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null",
                       "--log-file=" + protokoll};
    mitValgrind.insert(mitValgrind.end(), befehl.begin(), befehl.end());
    fuehreAus(mitValgrind);
    std::ifstream datei(protokoll);
    double anzahl = -1;
    for (std::string wort; datei >> wort;)
        if (wort == "Collected") {
            datei >> wort >> anzahl; // "Collected : 123"
            break;
        }
    unlink(protokoll.c_str());
    if (anzahl < 0)
        scheitere(mitValgrind, "counts nothing");
    return anzahl;
}
