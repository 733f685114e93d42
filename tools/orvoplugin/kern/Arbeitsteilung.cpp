#include "kern/Arbeitsteilung.h"

#include <poll.h>
#include <sched.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <list>
#include <memory>
#include <system_error>
#include <thread>

namespace werkzeug {

namespace {

constexpr int kTakt = 100; // ms

struct Werker {
    pid_t prozess = -1;
    std::unique_ptr<Rohr> rohr;
    std::size_t stueck = 0;
    std::string gesendet;
};

/// The processes under way. The destructor ends them.
class Werkstatt {
public:
    explicit Werkstatt(const Arbeitsplan& plan) : plan_(plan) {
#ifdef __linux__
        prctl(PR_SET_CHILD_SUBREAPER, 1); // what a killed one leaves behind becomes a child of this process
#endif
    }
    Werkstatt(const Werkstatt&) = delete;
    Werkstatt& operator=(const Werkstatt&) = delete;
    ~Werkstatt() {
        for (const Werker& werker : werker_)
            kill(werker.prozess, SIGTERM); // it removes its children first
        for (const Werker& werker : werker_) {
            werker.rohr->schliesse(0);
            warteAuf(werker.prozess);
        }
        raeumeAuf(eigene_);
    }

    void laufe() {
        auto naechstes = plan_.stuecke.begin();
        while (naechstes != plan_.stuecke.end() || !werker_.empty()) {
            while (naechstes != plan_.stuecke.end() && werker_.size() < plan_.zugleich)
                beginne(*naechstes++);
            warte();
            wache_.pruefe();
        }
        wache_.legeNieder();
        wache_.pruefe(); // one that came after the last look
    }

private:
    void beginne(std::size_t stueck) {
        auto rohr = std::make_unique<Rohr>();
        std::fflush(nullptr); // so that buffered output is not written twice
        const pid_t wir = getpid(), prozess = fork();
        if (prozess == 0)
            sei(wir, rohr->schreibende(), stueck);
        if (prozess < 0)
            throw std::system_error(errno, std::generic_category(), "fork");
        rohr->schliesse(1);
        werker_.push_back({prozess, std::move(rohr), stueck, {}});
    }

    [[noreturn]] void sei(pid_t wir, int rohr, std::size_t stueck) noexcept {
#ifdef __linux__
        prctl(PR_SET_PDEATHSIG, SIGTERM);
#endif
        if (!wache_.legeNieder() || getppid() != wir)
            _exit(EXIT_FAILURE);
        int ende = EXIT_FAILURE; // left with no exception alive
        try {
            plan_.arbeit(stueck, [&](std::string_view text) {
                if (!schreibeGanz(rohr, text.data(), text.size()))
                    _exit(EXIT_FAILURE);
            });
            ende = EXIT_SUCCESS;
        } catch (const Unterbrochen&) {
        } catch (const std::exception& fehler) {
            std::fprintf(stderr, "orvoplugin: %s\n", fehler.what());
        }
        _exit(ende);
    }

    void warte() {
        std::vector<pollfd> quellen;
        for (const Werker& werker : werker_)
            quellen.push_back({werker.rohr->lesende(), POLLIN, 0});
        if (poll(quellen.data(), quellen.size(), kTakt) > 0)
            for (auto [i, werker] = std::pair(quellen.begin(), werker_.begin()); i != quellen.end(); ++i) {
                const auto dieser = werker++;
                if (i->revents != 0 && !lies(*dieser))
                    beende(dieser);
            }
        if (plan_.takt && !werker_.empty())
            plan_.takt(werker_.front().stueck, werker_.front().gesendet);
    }

    /// Returns: whether there may be more.
    static bool lies(Werker& werker) {
        char bytes[0x4000];
        const ssize_t anzahl = read(werker.rohr->lesende(), bytes, sizeof(bytes));
        werker.gesendet.append(bytes, static_cast<std::size_t>(std::max<ssize_t>(anzahl, 0)));
        return anzahl > 0 || (anzahl < 0 && errno == EINTR);
    }

    void beende(std::list<Werker>::iterator stelle) {
        const Werker werker = std::move(*stelle);
        werker_.erase(stelle);
        plan_.fertig(werker.stueck, werker.gesendet, kindende(warteAuf(werker.prozess)));
    }

    const Arbeitsplan& plan_;
    const std::set<pid_t> eigene_ = kinder();
    Signalwache wache_;
    std::list<Werker> werker_;
};

} // namespace

std::size_t verfuegbareProzessoren() {
#ifdef __linux__
    cpu_set_t menge;
    if (sched_getaffinity(0, sizeof(menge), &menge) == 0)
        return static_cast<std::size_t>(CPU_COUNT(&menge));
#endif
    return std::max(1U, std::thread::hardware_concurrency());
}

void verteile(const Arbeitsplan& plan) { Werkstatt(plan).laufe(); }

} // namespace werkzeug
