#include "kern/Dateischreiber.h"

#include "kern/Anzeige.h"
#include "kern/Kindprozess.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace werkzeug {

namespace {

[[noreturn]] void scheitere(const std::string& datei, int fehler) {
    throw std::runtime_error(satz("cannot write {1}: {2}", einzeilig(datei), systemtext(fehler)));
}

/// Closes on every path, and removes an unfinished file.
struct Offen {
    int deskriptor = -1;
    std::string zuEntfernen;

    Offen(int d, std::string pfad) : deskriptor(d), zuEntfernen(std::move(pfad)) {}
    Offen(const Offen&) = delete;
    Offen& operator=(const Offen&) = delete;
    ~Offen() {
        if (deskriptor >= 0)
            close(deskriptor);
        if (!zuEntfernen.empty())
            unlink(zuEntfernen.c_str());
    }
    bool schliesse() {
        const int d = std::exchange(deskriptor, -1);
        return close(d) == 0;
    }
};

/// The permissions of a new file, by the user's mask.
mode_t ueblicheRechte() {
    const mode_t maske = umask(0);
    umask(maske);
    return 0666 & ~maske;
}

void schreibeDorthin(const std::string& datei, const std::string& inhalt) {
    Offen ziel(open(datei.c_str(), O_WRONLY | O_CLOEXEC), {});
    if (ziel.deskriptor < 0 || !schreibeGanz(ziel.deskriptor, inhalt.data(), inhalt.size()) ||
        !ziel.schliesse())
        scheitere(datei, errno);
}

} // namespace

void schreibeDatei(const std::string& datei, const std::string& inhalt) {
    struct stat bisherige {};
    const bool gibtEs = stat(datei.c_str(), &bisherige) == 0;
    if (gibtEs && S_ISDIR(bisherige.st_mode))
        scheitere(datei, EISDIR);
    if (gibtEs && !S_ISREG(bisherige.st_mode))
        return schreibeDorthin(datei, inhalt);

    std::error_code keins;
    const std::filesystem::path ziel =
        gibtEs ? std::filesystem::canonical(datei, keins) : std::filesystem::path(datei);
    if (gibtEs && access(ziel.c_str(), W_OK) != 0) // write-protected
        scheitere(datei, errno);
    std::string muster = ziel.string() + ".XXXXXX";
    const int deskriptor = mkostemp(muster.data(), O_CLOEXEC);
    if (deskriptor < 0)
        scheitere(datei, errno);
    Offen neue(deskriptor, muster);
    if (!schreibeGanz(neue.deskriptor, inhalt.data(), inhalt.size()) ||
        fchmod(neue.deskriptor, gibtEs ? bisherige.st_mode & 07777 : ueblicheRechte()) != 0 ||
        fsync(neue.deskriptor) != 0 || !neue.schliesse() || std::rename(muster.c_str(), ziel.c_str()) != 0)
        scheitere(datei, errno);
    neue.zuEntfernen.clear();
}

} // namespace werkzeug
