#pragma once

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <optional>
#include <stdexcept>

/// How many system calls `tu` makes, which runs in a copy of this process and returns whether it succeeded. None where
/// processes cannot be traced.
/// Errors: `std::runtime_error` when `tu` failed.
template <class Tu>
std::optional<int> zaehleSystemaufrufe(Tu&& tu) {
    enum { GELUNGEN, GESCHEITERT, NICHT_ZU_VERFOLGEN };
    const pid_t kind = fork();
    if (kind == 0) {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
            _exit(NICHT_ZU_VERFOLGEN);
        std::raise(SIGSTOP);
        try {
            _exit(tu() ? GELUNGEN : GESCHEITERT);
        } catch (...) {
            _exit(GESCHEITERT);
        }
    }
    int zustand = 0;
    if (kind < 0 || waitpid(kind, &zustand, 0) != kind || !WIFSTOPPED(zustand))
        return std::nullopt;
    ptrace(PTRACE_SETOPTIONS, kind, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    constexpr int kSystemaufruf = SIGTRAP | 0x80;
    int haltepunkte = 0; // one before each system call, one behind it
    long signal = 0;
    while (ptrace(PTRACE_SYSCALL, kind, nullptr, signal) == 0 && waitpid(kind, &zustand, 0) == kind &&
           WIFSTOPPED(zustand)) {
        const bool istAufruf = WSTOPSIG(zustand) == kSystemaufruf;
        haltepunkte += istAufruf;
        signal = istAufruf ? 0 : WSTOPSIG(zustand);
    }
    if (!WIFEXITED(zustand) || WEXITSTATUS(zustand) != GELUNGEN)
        throw std::runtime_error("the traced process failed");
    return haltepunkte / 2;
}
