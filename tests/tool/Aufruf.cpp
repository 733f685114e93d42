#include "Aufruf.h"

#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>

#include <algorithm>
#include <stdexcept>

extern char** environ; // NOLINT: POSIX's name

namespace {

std::vector<char*> alsFeld(std::vector<std::string>& texte) {
    std::vector<char*> feld;
    for (std::string& text : texte)
        feld.push_back(text.data());
    feld.push_back(nullptr);
    return feld;
}

std::vector<std::string> umgebungMit(std::vector<std::string> zusaetze) {
    if (std::none_of(zusaetze.begin(), zusaetze.end(),
                     [](const std::string& zusatz) { return zusatz.starts_with("LC_ALL="); }))
        zusaetze.emplace_back("LC_ALL=C");
    std::vector<std::string> umgebung = zusaetze;
    for (char** eintrag = environ; *eintrag; ++eintrag) {
        const std::string zeile = *eintrag;
        bool ersetzt = false;
        for (const std::string& zusatz : zusaetze)
            ersetzt = ersetzt || zeile.starts_with(zusatz.substr(0, zusatz.find('=') + 1));
        if (!ersetzt)
            umgebung.push_back(zeile);
    }
    return umgebung;
}

/// Reads both streams to their ends.
void liesAlles(int aus, int fehler, Ergebnis& ergebnis) {
    pollfd quellen[] = {{aus, POLLIN, 0}, {fehler, POLLIN, 0}};
    std::string* const ziele[] = {&ergebnis.ausgabe, &ergebnis.fehler};
    while (quellen[0].fd >= 0 || quellen[1].fd >= 0) {
        poll(quellen, 2, -1);
        for (int i = 0; i < 2; ++i) {
            if (quellen[i].fd < 0 || quellen[i].revents == 0)
                continue;
            char puffer[65536];
            const ssize_t gelesen = read(quellen[i].fd, puffer, sizeof puffer);
            if (gelesen > 0) {
                ziele[i]->append(puffer, static_cast<std::size_t>(gelesen));
            } else {
                close(quellen[i].fd);
                quellen[i].fd = -1;
            }
        }
    }
}

} // namespace

Ergebnis rufe(const std::string& programm, const std::vector<std::string>& argumente,
              const std::vector<std::string>& umgebung) {
    int aus[2];
    int fehler[2];
    if (pipe2(aus, O_CLOEXEC) != 0 || pipe2(fehler, O_CLOEXEC) != 0)
        throw std::runtime_error("pipe2");

    std::vector<std::string> worte{programm};
    worte.insert(worte.end(), argumente.begin(), argumente.end());
    std::vector<std::string> zeilen = umgebungMit(umgebung);

    posix_spawn_file_actions_t schritte;
    posix_spawn_file_actions_init(&schritte);
    posix_spawn_file_actions_addopen(&schritte, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&schritte, aus[1], 1);
    posix_spawn_file_actions_adddup2(&schritte, fehler[1], 2);
    pid_t kind = 0;
    const int rc = posix_spawnp(&kind, programm.c_str(), &schritte, nullptr, alsFeld(worte).data(),
                                alsFeld(zeilen).data());
    posix_spawn_file_actions_destroy(&schritte);
    close(aus[1]);
    close(fehler[1]);
    if (rc != 0)
        throw std::runtime_error("cannot run " + programm);

    Ergebnis ergebnis;
    liesAlles(aus[0], fehler[0], ergebnis);
    int status = 0;
    waitpid(kind, &status, 0);
    ergebnis.ausgang = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    return ergebnis;
}

Ergebnis rufeTool(const std::vector<std::string>& argumente, const std::vector<std::string>& umgebung) {
    return rufe(ORVO_TOOL, argumente, umgebung);
}
