#include "Kindprozess.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace {

/// In the child: passes the result and exits normally, so that the checks at process end run.
[[noreturn]] void uebergib(const std::optional<std::string>& ergebnis, int rohr) {
    if (ergebnis && write(rohr, ergebnis->data(), ergebnis->size()) < 0)
        std::abort();
    close(rohr);
    std::exit(0);
}

std::string liesAlles(int rohr) {
    std::string text;
    char puffer[4096];
    for (ssize_t n; (n = read(rohr, puffer, sizeof puffer)) > 0;)
        text.append(puffer, static_cast<std::size_t>(n));
    return text;
}

} // namespace

std::optional<std::string> imKindprozess(const std::function<std::optional<std::string>()>& ruf) {
    int rohr[2];
    if (pipe(rohr) != 0)
        throw std::runtime_error("no pipe");
    std::fflush(nullptr);
    const pid_t kind = fork();
    if (kind < 0)
        throw std::runtime_error("no child process");
    if (kind == 0) {
        close(rohr[0]);
        uebergib(ruf(), rohr[1]);
    }
    close(rohr[1]);
    const std::string ergebnis = liesAlles(rohr[0]);
    close(rohr[0]);

    int status = 0;
    waitpid(kind, &status, 0);
    if (WIFSIGNALED(status))
        return "the process died of signal " + std::to_string(WTERMSIG(status));
    if (WEXITSTATUS(status) != 0)
        return "the process ended with status " + std::to_string(WEXITSTATUS(status));
    return ergebnis.empty() ? std::nullopt : std::optional(ergebnis);
}
