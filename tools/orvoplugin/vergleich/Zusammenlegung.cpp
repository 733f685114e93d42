#include "vergleich/Zusammenlegung.h"

#include "kern/Anzeige.h"
#include "kern/Kindprozess.h"
#include "kern/Sammler.h"

#include <sys/stat.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include <cerrno>
#include <csignal>
#include <exception>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <utility>

namespace fs = std::filesystem;

namespace werkzeug {

namespace {

/// Identifies a file independently of its name.
using Inode = std::pair<dev_t, ino_t>;

Inode inodeVon(const fs::path& pfad) {
    struct stat s {};
    if (stat(pfad.c_str(), &s) != 0)
        return {};
    return {s.st_dev, s.st_ino};
}

class Leger {
public:
    explicit Leger(const fs::path& ziel) : ziel_(ziel) {}

    /// Links to all files of the directory. Those of B, put over those of A, have to be readable, and a library that
    /// is there by another name is copied.
    void lege(const fs::path& von, bool darueber, const fs::path& unterpfad = {}) {
        std::error_code fehler;
        const fs::directory_iterator eintraege(von / unterpfad, fehler);
        if (fehler && darueber)
            throw Unlesbar(
                satz("{1}: {2}", einzeilig((von / unterpfad).string()), systemtext(fehler.value())));
        for (const fs::directory_entry& eintrag : eintraege) {
            const fs::path dort = unterpfad / eintrag.path().filename();
            macheFrei(eintrag, dort);
            if (istVerzeichnis(eintrag)) {
                fs::create_directory(ziel_ / dort);
                lege(von, darueber, dort);
            } else if (darueber && namen_.contains(inodeVon(eintrag.path()))) {
                fs::copy_file(eintrag.path(), ziel_ / dort);
            } else {
                verknuepfe(eintrag.path(), dort);
            }
        }
    }

private:
    static bool istVerzeichnis(const fs::directory_entry& eintrag) {
        return fs::is_directory(eintrag.symlink_status()); // the walk follows no links to directories
    }
    /// Removes the file that the entry replaces.
    void macheFrei(const fs::directory_entry& eintrag, const fs::path& dort) {
        const fs::file_type vorher = fs::symlink_status(ziel_ / dort).type();
        if (vorher == fs::file_type::not_found)
            return;
        const bool warVerzeichnis = vorher == fs::file_type::directory;
        if (warVerzeichnis != istVerzeichnis(eintrag))
            throw Unlesbar(satz(warVerzeichnis ? N_("{1}: cannot be copied over a directory")
                                               : N_("{1}: cannot be copied over a file"),
                                einzeilig(eintrag.path().string())));
        if (warVerzeichnis)
            return;
        fs::remove(ziel_ / dort);
        vergiss(dort);
    }
    void verknuepfe(const fs::path& datei, const fs::path& dort) {
        fs::create_symlink(fs::absolute(datei), ziel_ / dort);
        if (const Inode inode = inodeVon(datei); inode != Inode())
            namen_[inode].insert(dort);
    }
    void vergiss(const fs::path& dort) {
        for (auto i = namen_.begin(); i != namen_.end(); ++i)
            if (i->second.erase(dort) > 0 && i->second.empty()) {
                namen_.erase(i);
                return;
            }
    }

    fs::path ziel_;
    std::map<Inode, std::set<fs::path>> namen_; ///< paths in the directory that are links to the file
};

} // namespace

/// A process that only makes the directory, and removes it when the tool is killed. It makes the directory itself so
/// that there is no moment at which the directory would be left behind.
class Zusammenlegung::Waechter {
public:
    Waechter() {
#ifdef __linux__
        Rohr rohr;
        const pid_t wir = getpid();
        prozess_ = fork();
        if (prozess_ == 0)
            wache(wir, rohr.schreibende());
        rohr.schliesse(1);
        verzeichnis_ = liesAlles(rohr.lesende());
#endif
    }
    Waechter(const Waechter&) = delete;
    Waechter& operator=(const Waechter&) = delete;
    ~Waechter() {
        if (prozess_ > 0 && kill(prozess_, SIGKILL) == 0)
            warteAuf(prozess_);
    }

    /// Empty when the directory could not be made, or this system has no such process.
    const std::string& verzeichnis() const { return verzeichnis_; }

private:
#ifdef __linux__
    static std::string liesAlles(int rohr) {
        std::string text;
        char teil[512];
        for (ssize_t gelesen; (gelesen = read(rohr, teil, sizeof(teil))) != 0;) {
            if (gelesen > 0)
                text.append(teil, static_cast<std::size_t>(gelesen));
            else if (errno != EINTR)
                break;
        }
        return text;
    }

    [[noreturn]] static void wache(pid_t eltern, int rohr) noexcept {
        setsid(); // ignores signals of the terminal
        sigset_t alle;
        sigfillset(&alle);
        sigprocmask(SIG_BLOCK, &alle, nullptr);
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        try {
            const Arbeitsverzeichnis verzeichnis;
            const bool gesagt = schreibeGanz(rohr, verzeichnis.pfad().data(), verzeichnis.pfad().size());
            closefrom(0); // no reader must wait for this process
            sigset_t tod;
            sigemptyset(&tod);
            sigaddset(&tod, SIGTERM);
            while (gesagt && getppid() == eltern) {
                int signal = 0;
                sigwait(&tod, &signal);
            }
        } catch (const std::exception&) { // the tool then tries itself, and reports the error
        }
        _exit(0);
    }
#endif

    pid_t prozess_ = -1;
    std::string verzeichnis_;
};

Zusammenlegung::Zusammenlegung(const std::string& a, const std::string& b)
    : a_(a),
      b_(b),
      waechter_(std::make_unique<Waechter>()),
      verzeichnis_(waechter_->verzeichnis().empty() ? Arbeitsverzeichnis()
                                                    : Arbeitsverzeichnis(waechter_->verzeichnis())) {
    Leger leger(pfad());
    leger.lege(a, false);
    leger.lege(b, true);
}

Zusammenlegung::~Zusammenlegung() = default;

std::string Zusammenlegung::herkunft(const std::string& unterpfad) const {
    const bool ausB = fs::symlink_status(fs::path(b_) / unterpfad).type() != fs::file_type::not_found;
    return (ausB ? b_ : a_) + "/" + unterpfad;
}

std::string Zusammenlegung::mitHerkunft(std::string text, const std::string& unterpfad) const {
    const std::string hier = pfad() + "/" + unterpfad;
    const std::string dort = herkunft(unterpfad);
    for (std::size_t i = text.find(hier); i != std::string::npos; i = text.find(hier, i + dort.size()))
        text.replace(i, hier.size(), dort);
    return text;
}

} // namespace werkzeug
