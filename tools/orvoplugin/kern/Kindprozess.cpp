#include "kern/Kindprozess.h"

#include "kern/Sprache.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <set>
#include <system_error>
#include <utility>

namespace werkzeug {

namespace {

using Uhr = std::chrono::steady_clock;

volatile std::sig_atomic_t unterbrechung = 0; ///< the signal that came

/// Header of each record in the pipe.
struct Kopf {
    std::uint64_t geheimnis = 0; ///< of this one child
    std::uint32_t nummer = 0;    ///< counted from 0
    std::uint32_t laenge = 0;    ///< bytes that follow
};

/// Length in the last record, which has no text: it says that the work is complete. An exit code cannot say so, because
/// a plugin may end the process with any.
constexpr std::uint32_t kFertig = 0xFFFFFFFF;
constexpr std::uint32_t kGroessterSatz = 1u << 30;
constexpr int kKanalVerloren = 121; ///< exit code of a child that can no longer send
constexpr std::size_t kBehalteneAusgabe = 4096;

int protokoll = STDERR_FILENO;

/// Moves the descriptor to a random number.
int verstecke(int deskriptor) {
    constexpr int kErster = 300;
    constexpr int kSpielraum = 600; // below the usual limit of 1,024
    const int neu =
        fcntl(deskriptor, F_DUPFD_CLOEXEC, kErster + static_cast<int>(std::random_device()() % kSpielraum));
    if (neu < 0)
        return deskriptor;
    close(deskriptor);
    return neu;
}

/// Closes all inherited descriptors except the standard streams and the two given.
void schliesseGeerbtes([[maybe_unused]] int einer, [[maybe_unused]] int anderer) {
#ifdef __linux__
    const auto [unten, oben] = std::minmax(einer, anderer);
    unsigned ab = STDERR_FILENO + 1;
    for (const int bleibt : {unten, oben}) {
        if (bleibt < static_cast<int>(ab))
            continue;
        if (const auto grenze = static_cast<unsigned>(bleibt); grenze > ab)
            close_range(ab, grenze - 1, 0);
        ab = static_cast<unsigned>(bleibt) + 1;
    }
    close_range(ab, ~0U, 0);
#endif
}

/// Makes the system end this process first when plugins use up the memory.
void bieteDichBeiSpeichermangelAn() {
#ifdef __linux__
    const int vorrang = open("/proc/self/oom_score_adj", O_WRONLY | O_CLOEXEC);
    if (vorrang < 0)
        return;
    schreibeGanz(vorrang, "1000", 4);
    close(vorrang);
#endif
}

/// Separates the child from the terminal, and ties its life to its parent.
void richteEin(pid_t elternprozess, int saetze, Rohr& fehler) {
    setsid();                      // no controlling terminal, which plugins could open by name
    std::signal(SIGPIPE, SIG_IGN); // a closed standard error must not end a plugin
#ifdef __linux__
    prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    if (getppid() != elternprozess) // it has ended already
        _exit(EXIT_FAILURE);
    const rlimit keineAbbilder{0, 0};
    setrlimit(RLIMIT_CORE, &keineAbbilder);
    bieteDichBeiSpeichermangelAn();
    protokoll = verstecke(dup(STDERR_FILENO));
    dup2(fehler.schreibende(), STDERR_FILENO);
    fehler.schliesse(0);
    fehler.schliesse(1);
    if (const int nichts = open("/dev/null", O_RDWR); nichts >= 0) {
        dup2(nichts, STDIN_FILENO);
        dup2(nichts, STDOUT_FILENO);
        if (nichts > STDERR_FILENO)
            close(nichts);
    }
    schliesseGeerbtes(saetze, protokoll);
}

/// Ends as another process did, by its wait status.
[[noreturn]] void endeWie(int zustand) {
    if (WIFEXITED(zustand))
        _exit(WEXITSTATUS(zustand));
    sigset_t dieses;
    sigemptyset(&dieses);
    sigaddset(&dieses, WTERMSIG(zustand));
    std::signal(WTERMSIG(zustand), SIG_DFL);
    sigprocmask(SIG_UNBLOCK, &dieses, nullptr);
    raise(WTERMSIG(zustand));
    _exit(kKanalVerloren);
}

/// Continues in a new child process. The caller stays between it and the tool, and ends as it does: a signal that a
/// plugin sends to its parent ends these two processes only.
void lasseStellvertreter(int rohr) {
    const pid_t stellvertreter = getpid();
    const pid_t kind = fork();
    if (kind < 0)
        _exit(kKanalVerloren);
    if (kind == 0) {
#ifdef __linux__
        prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
        if (getppid() != stellvertreter)
            _exit(EXIT_FAILURE);
        return;
    }
    close(rohr); // so that the reader sees the end when the child has gone
    endeWie(warteAuf(kind));
}

[[noreturn]] void seiKind(const Kindarbeit& arbeit, int rohr, std::uint64_t geheimnis) noexcept {
    Kopf kopf{geheimnis, 0, 0};
    arbeit([&](std::string_view satz) {
        if (satz.size() > kGroessterSatz)
            return false;
        kopf.laenge = static_cast<std::uint32_t>(satz.size());
        if (!schreibeGanz(rohr, &kopf, sizeof(kopf)) || !schreibeGanz(rohr, satz.data(), satz.size()))
            _exit(kKanalVerloren);
        ++kopf.nummer;
        return true;
    });
    kopf.laenge = kFertig;
    if (!schreibeGanz(rohr, &kopf, sizeof(kopf)))
        _exit(kKanalVerloren);
    _exit(EXIT_SUCCESS); // no last code of the libraries: it belongs to no plugin's work
}

/// " (SIGSEGV)" and the like; empty for a signal without a name.
std::string signalname([[maybe_unused]] int signal) {
#ifdef __GLIBC__
    if (const char* const name = sigabbrev_np(signal))
        return std::string(" (SIG") + name + ")";
#endif
    return {};
}

/// The parent's side.
class Aufsicht {
public:
    Aufsicht(pid_t kind, std::set<pid_t> eigene, std::uint64_t geheimnis, int rohr, int fehlerrohr,
             const Empfang& empfange, std::chrono::duration<double> zeitlimit,
             const std::function<void()>& takt)
        : kind_(kind),
          eigene_(std::move(eigene)),
          erwartet_{geheimnis, 0, 0},
          quellen_{{rohr, POLLIN, 0}, {fehlerrohr, POLLIN, 0}},
          empfange_(empfange),
          zeitlimit_(zeitlimit),
          takt_(takt) {
        for (const pollfd& quelle : quellen_) // a process it started may hold the pipes open
            fcntl(quelle.fd, F_SETFL, O_NONBLOCK);
        verlaengere();
    }
    Aufsicht(const Aufsicht&) = delete;
    Aufsicht& operator=(const Aufsicht&) = delete;
    ~Aufsicht() {
        kill(-kind_, SIGKILL);
        if (!istAbgeholt_) {
            kill(kind_, SIGKILL);
            warteAuf(kind_);
        }
        raeumeAuf(eigene_);
    }

    Kindende warte() {
        Kindende ende = warteAufEnde();
        liesAlles(); // its last output
        ende.ausgabe = std::move(ausgabe_);
        return ende;
    }

private:
    static constexpr int kSchritt = 20; // ms; only when something holds the pipe open behind the child's end
    static constexpr int kKurz = 1;     // ms; the child is about to end
    static constexpr std::size_t kPuffer = 0x10000; // bytes
    static constexpr int kSaetze = 0;
    static constexpr int kAusgabe = 1;

    void verlaengere() { frist_ = Uhr::now() + std::chrono::duration_cast<Uhr::duration>(zeitlimit_); }

    Kindende warteAufEnde() {
        for (;;) {
            if (warteAufDaten())
                liesAlles();
            else if (takt_)
                takt_();
            wache_.pruefe();
            if (fertig_)
                return {};
            if (verdorben_)
                return {Kindende::Art::KANAL, 0, {}};
            if (holeAb())
                return ende();
            if (Uhr::now() >= frist_)
                return {Kindende::Art::ZEIT, 0, {}};
        }
    }

    /// Returns: whether there is something to read.
    bool warteAufDaten() {
        const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(frist_ - Uhr::now()).count();
        const int hoechstens = quellen_[kSaetze].fd < 0 ? kKurz : kSchritt;
        return poll(quellen_, std::size(quellen_),
                    static_cast<int>(std::clamp<long long>(rest, 0, hoechstens))) > 0;
    }

    /// Reads the available data of both; bounded, so that an endless stream does not block.
    void liesAlles() {
        char bytes[kPuffer];
        for (int i : {kAusgabe, kSaetze}) { // output written before a record is read before it
            pollfd& quelle = quellen_[i];
            if (quelle.fd < 0)
                continue;
            const ssize_t anzahl = read(quelle.fd, bytes, sizeof(bytes));
            if (anzahl > 0)
                nimm(i, std::string_view(bytes, static_cast<std::size_t>(anzahl)));
            else if (anzahl == 0)
                quelle.fd = -1; // poll ignores it; the caller owns the pipe
        }
    }

    void nimm(int quelle, std::string_view bytes) {
        if (quelle == kAusgabe) {
            ausgabe_ += bytes;
            if (ausgabe_.size() > kBehalteneAusgabe)
                ausgabe_.erase(0, ausgabe_.size() - kBehalteneAusgabe);
        } else if (!fertig_ && !verdorben_) {
            gelesen_ += bytes.size();
            vorrat_ += bytes;
            verteile();
        }
    }

    void verteile() {
        std::size_t ab = 0;
        while (vorrat_.size() - ab >= sizeof(Kopf)) {
            Kopf kopf;
            std::memcpy(&kopf, vorrat_.data() + ab, sizeof(kopf));
            verdorben_ = kopf.geheimnis != erwartet_.geheimnis || kopf.nummer != erwartet_.nummer ||
                         (kopf.laenge > kGroessterSatz && kopf.laenge != kFertig);
            fertig_ = !verdorben_ && kopf.laenge == kFertig;
            if (verdorben_ || fertig_ || vorrat_.size() - ab - sizeof(kopf) < kopf.laenge)
                break;
            ab += sizeof(kopf);
            empfange_(std::string_view(vorrat_).substr(ab, kopf.laenge));
            ab += kopf.laenge;
            ++erwartet_.nummer;
            verlaengere();
        }
        vorrat_.erase(0, ab);
    }

    bool holeAb() {
        istAbgeholt_ = waitpid(kind_, &zustand_, WNOHANG) == kind_;
        return istAbgeholt_;
    }

    /// The child's wait status; records that it sent before are read first.
    Kindende ende() {
        for (std::size_t vorher = gelesen_ + 1; quellen_[kSaetze].fd >= 0 && gelesen_ != vorher;) {
            vorher = gelesen_;
            liesAlles();
        }
        if (fertig_)
            return {};
        if (verdorben_ || (WIFEXITED(zustand_) && WEXITSTATUS(zustand_) == kKanalVerloren))
            return {Kindende::Art::KANAL, 0, {}};
        Kindende ende = kindende(zustand_);
        if (ende.istGut()) // not with its work done
            ende.art = Kindende::Art::BEENDET;
        return ende;
    }

    Signalwache wache_;
    pid_t kind_;
    std::set<pid_t> eigene_; ///< other children of this process
    Kopf erwartet_;
    pollfd quellen_[2];
    const Empfang& empfange_;
    std::chrono::duration<double> zeitlimit_;
    const std::function<void()>& takt_;
    Uhr::time_point frist_;
    std::string vorrat_;
    std::string ausgabe_;
    std::size_t gelesen_ = 0; ///< bytes of records so far
    bool fertig_ = false;
    bool verdorben_ = false;
    bool istAbgeholt_ = false;
    int zustand_ = 0;
};

} // namespace

bool schreibeGanz(int deskriptor, const void* daten, std::size_t anzahl) {
    const char* lies = static_cast<const char*>(daten);
    while (anzahl > 0) {
        const ssize_t geschrieben = write(deskriptor, lies, anzahl);
        if (geschrieben < 0 && errno == EINTR)
            continue;
        if (geschrieben <= 0)
            return false;
        lies += geschrieben;
        anzahl -= static_cast<std::size_t>(geschrieben);
    }
    return true;
}

Rohr::Rohr() {
    if (pipe(enden_) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    for (const int ende : enden_)
        fcntl(ende, F_SETFD, FD_CLOEXEC);
}

Rohr::~Rohr() {
    schliesse(0);
    schliesse(1);
}

void Rohr::versteckeSchreibende() { enden_[1] = verstecke(enden_[1]); }

void Rohr::schliesse(int ende) {
    if (enden_[ende] >= 0)
        close(enden_[ende]);
    enden_[ende] = -1;
}

int warteAuf(pid_t kind) {
    int zustand = 0;
    while (waitpid(kind, &zustand, 0) < 0 && errno == EINTR) {
    }
    return zustand;
}

Kindende kindende(int zustand) {
    if (WIFSIGNALED(zustand))
        return {Kindende::Art::SIGNAL, WTERMSIG(zustand), {}};
    return {zustand == 0 ? Kindende::Art::GUT : Kindende::Art::BEENDET, WEXITSTATUS(zustand), {}};
}

std::set<pid_t> kinder() {
    std::set<pid_t> liste;
    std::ifstream datei("/proc/thread-self/children");
    for (pid_t kind = 0; datei >> kind;)
        liste.insert(kind);
    return liste;
}

void raeumeAuf(const std::set<pid_t>& eigene) {
    std::set<pid_t> fremde = eigene; // and those that may not be ended
    for (bool fertig = false; !fertig;) {
        fertig = true;
        for (const pid_t kind : kinder())
            if (fremde.insert(kind).second && kill(kind, SIGKILL) == 0) {
                warteAuf(kind);
                fremde.erase(kind); // the number may be reused
                fertig = false;     // it may have had children itself
            }
    }
}

Signalwache::Signalwache() {
    unterbrechung = 0;
    struct sigaction notiz {};
    notiz.sa_handler = [](int signal) { unterbrechung = signal; };
    for (std::size_t i = 0; i < std::size(kSignale); ++i) {
        sigaction(kSignale[i], nullptr, &vorher_[i]);
        if (vorher_[i].sa_handler == SIG_DFL) // ignored signals stay ignored
            sigaction(kSignale[i], &notiz, nullptr);
    }
}

Signalwache::~Signalwache() { legeNieder(); }

bool Signalwache::legeNieder() {
    for (std::size_t i = 0; i < std::size(kSignale); ++i)
        sigaction(kSignale[i], &vorher_[i], nullptr);
    return unterbrechung == 0;
}

void Signalwache::pruefe() const {
    if (unterbrechung != 0)
        throw Unterbrochen{unterbrechung};
}

std::string Kindende::text() const {
    switch (art) {
    case Art::SIGNAL:
        return satz("ended by signal {1}", std::to_string(zahl) + signalname(zahl));
    case Art::BEENDET:
        return satz("ended the process with exit code {1}", zahl);
    case Art::ZEIT:
        return uebersetzt("did not come back in time");
    case Art::KANAL:
        return uebersetzt("interfered with the tool's own channel");
    case Art::GUT:
        break;
    }
    return {};
}

int protokollDeskriptor() { return protokoll; }

void meldeKanalVerloren() { _exit(kKanalVerloren); }

void schliesseProtokollDeskriptor() {
    if (protokoll != STDERR_FILENO)
        close(protokoll);
    protokoll = STDERR_FILENO;
}

Kindende laufeImKind(const Kindarbeit& arbeit, const Empfang& empfange,
                     std::chrono::duration<double> zeitlimit, const std::function<void()>& takt) {
    Rohr saetze;
    Rohr fehler;
    std::random_device zufall;
    const std::uint64_t geheimnis = std::uint64_t{zufall()} << 32 | zufall();
    std::fflush(nullptr); // so that buffered output is not written twice
    const pid_t wir = getpid();
    std::set<pid_t> eigene = kinder();
#ifdef __linux__
    if (eigene.empty()) // orphans of other children cannot be told apart
        prctl(PR_SET_CHILD_SUBREAPER, 1);
#endif
    const pid_t kind = fork();
    if (kind < 0)
        throw std::system_error(errno, std::generic_category(), "fork");
    if (kind == 0) {
        saetze.schliesse(0);
        saetze.versteckeSchreibende();
        richteEin(wir, saetze.schreibende(), fehler);
        lasseStellvertreter(saetze.schreibende());
        seiKind(arbeit, saetze.schreibende(), geheimnis);
    }
    saetze.schliesse(1);
    fehler.schliesse(1);
    Kindende ende = Aufsicht(kind, std::move(eigene), geheimnis, saetze.lesende(), fehler.lesende(), empfange,
                             zeitlimit, takt)
                        .warte();
    if (unterbrechung != 0) // the signal came after the last check
        throw Unterbrochen{unterbrechung};
    return ende;
}

} // namespace werkzeug
