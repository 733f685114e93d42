#pragma once

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

/// How many system calls `tu` makes, which runs in a copy of this process and returns whether it succeeded.
/// Errors: `std::runtime_error` when it did not.
template <class Tu>
int zaehleSystemaufrufe(Tu&& tu) {
    const pid_t kind = fork();
    if (kind == 0) {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        std::raise(SIGSTOP);
        _exit(tu() ? 0 : 1);
    }
    int zustand = 0;
    waitpid(kind, &zustand, 0);
    ptrace(PTRACE_SETOPTIONS, kind, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    constexpr int kSystemaufruf = SIGTRAP | 0x80;
    int haltepunkte = 0; // one before each system call, one behind it
    while (ptrace(PTRACE_SYSCALL, kind, nullptr, nullptr) == 0 && waitpid(kind, &zustand, 0) == kind &&
           WIFSTOPPED(zustand))
        haltepunkte += WSTOPSIG(zustand) == kSystemaufruf;
    if (!WIFEXITED(zustand) || WEXITSTATUS(zustand) != 0)
        throw std::runtime_error("the traced process failed");
    return haltepunkte / 2;
}
