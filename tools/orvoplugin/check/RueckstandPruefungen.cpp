// Checks that a plugin leaves the process as it found it, by comparing its state before and after the plugin's life.

#include "check/Katalog.h"
#include "check/Pluginnutzung.h"
#include "check/Text.h"
#include "kern/Anzeige.h"
#include "kern/Sprache.h"

#include <orvoutil/Einstellungen.h>

#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include <algorithm>
#include <cerrno>
#include <cfenv>
#include <cfloat>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <locale>
#include <map>
#include <new>
#include <sstream>
#include <thread>

extern char** environ; // NOLINT: POSIX's name

namespace werkzeug::check {

namespace {

/// Observed properties, by name, and their values.
using Stand = std::map<std::string, std::string>;

std::string wertVon(const Stand& stand, const std::string& name) {
    const auto stelle = stand.find(name);
    return stelle == stand.end() ? satz("nothing") : einzeilig(stelle->second);
}

/// A check that compares what a look at the process gives before and after the plugin's life.
template <Stand (*blick)()>
void bleibtGleich(const Pruefling& p, Fundliste& funde) {
    const Stand vorher = blick();
    ladeUndBenutze(p.pfad);
    const Stand nachher = blick();
    Stand namen = vorher;
    namen.insert(nachher.begin(), nachher.end());
    for (const auto& [name, wert] : namen)
        if (const std::string alt = wertVon(vorher, name), neu = wertVon(nachher, name); alt != neu)
            funde.fehler(satz("{1} was {2} and is now {3}", einzeilig(name), alt, neu), "changed");
}

/// A value as text; equal for equal values.
template <class T>
std::string alsText(const T& wert) {
    std::ostringstream text;
    text << wert;
    return text.str();
}

template <class Funktion>
std::string adresse(Funktion* funktion) {
    return alsText(reinterpret_cast<const void*>(funktion));
}

/// Redirects a descriptor to a temporary file while this object lives.
class Mitschrift {
public:
    explicit Mitschrift(int deskriptor)
        : deskriptor_(deskriptor), datei_(std::tmpfile()), original_(dup(deskriptor)) {
        if (!datei_ || original_ < 0)
            throw std::runtime_error(satz("no temporary file can be made"));
        dup2(fileno(datei_), deskriptor_);
    }
    Mitschrift(const Mitschrift&) = delete;
    Mitschrift& operator=(const Mitschrift&) = delete;
    ~Mitschrift() {
        dup2(original_, deskriptor_);
        close(original_);
        std::fclose(datei_);
    }

    /// The beginning of the output.
    std::string anfang() const {
        char puffer[60];
        const ssize_t anzahl = pread(fileno(datei_), puffer, sizeof(puffer), 0);
        return std::string(puffer, anzahl > 0 ? static_cast<std::size_t>(anzahl) : 0);
    }

private:
    int deskriptor_;
    std::FILE* datei_;
    int original_;
};

Stand locale() {
    return {{satz("the C locale"), std::setlocale(LC_ALL, nullptr)},
            {satz("the C++ locale"), std::locale().name()},
            {satz("the thread's locale"), alsText(uselocale(nullptr))}};
}

Stand arbeitsverzeichnis() {
    std::error_code fehler;
    return {{satz("the working directory"), std::filesystem::current_path(fehler).string()}};
}

std::string handlung(const struct sigaction& h) {
    if (!(h.sa_flags & SA_SIGINFO) && h.sa_handler == SIG_DFL)
        return satz("default");
    if (!(h.sa_flags & SA_SIGINFO) && h.sa_handler == SIG_IGN)
        return satz("ignored");
    return satz("handled by {1} with flags {2}",
                (h.sa_flags & SA_SIGINFO) ? adresse(h.sa_sigaction) : adresse(h.sa_handler), h.sa_flags);
}

Stand signale() {
    Stand stand;
    sigset_t gesperrt;
    sigemptyset(&gesperrt);
    pthread_sigmask(SIG_BLOCK, nullptr, &gesperrt);
    for (int signal = 1; signal < NSIG; ++signal) {
        struct sigaction h {};
        if (sigaction(signal, nullptr, &h) == 0)
            stand[satz("signal {1}", signal)] =
                sigismember(&gesperrt, signal) == 1 ? satz("{1}, blocked", handlung(h)) : handlung(h);
    }
    return stand;
}

Stand handler() {
    return {{satz("the terminate handler"), adresse(std::get_terminate())},
            {satz("the new handler"), adresse(std::get_new_handler())}};
}

Stand deskriptoren() {
    Stand stand;
    std::error_code fehler;
    for (const auto& eintrag : std::filesystem::directory_iterator("/proc/self/fd", fehler)) {
        const std::string ziel = std::filesystem::read_symlink(eintrag.path(), fehler).string();
        if (!ziel.starts_with("/proc/")) // the listing's own descriptor
            stand[satz("descriptor {1}", eintrag.path().filename().string())] = ziel;
    }
    return stand;
}

Stand umgebung() {
    Stand stand;
    for (char** eintrag = environ; eintrag && *eintrag; ++eintrag) {
        const std::string zeile = *eintrag;
        const std::size_t gleich = zeile.find('=');
        stand[satz("environment variable {1}", zeile.substr(0, gleich))] =
            gleich == std::string::npos ? "" : '"' + zeile.substr(gleich + 1) + '"';
    }
    return stand;
}

Stand maske() {
    const mode_t jetzt = umask(0);
    umask(jetzt);
    std::ostringstream text;
    text << std::oct << jetzt;
    return {{satz("the mask for new files"), text.str()}};
}

std::string rundung() {
    switch (std::fegetround()) {
    case FE_TONEAREST:
        return satz("to nearest");
    case FE_UPWARD:
        return satz("upward");
    case FE_DOWNWARD:
        return satz("downward");
    default:
        return satz("toward zero");
    }
}

/// Some compiler flags make a library switch denormal numbers off for the whole process when it is opened.
std::string kleinsteZahlen() {
    const volatile double kleinste = DBL_MIN;
    const volatile double haelfte = kleinste / 2;
    return haelfte > 0
               ? satz("kept")
               : satz("taken as zero, which the linker options -Ofast and -ffast-math do: leave them out");
}

Stand gleitkomma() {
    Stand stand{{satz("the rounding"), rundung()},
                {satz("the treatment of the smallest numbers"), kleinsteZahlen()}};
#ifdef __GLIBC__
    stand[satz("the set of trapped exceptions")] = std::to_string(fegetexcept());
#endif
    return stand;
}

template <class Strom>
void nimmStrom(const char* name, const Strom& strom, Stand& stand) {
    stand[satz("the format of {1}", name)] = alsText(strom.flags()) + "/" + alsText(strom.precision()) + "/" +
                                             alsText(strom.width()) + "/" + alsText(strom.fill());
    stand[satz("the buffer of {1}", name)] = alsText(static_cast<const void*>(strom.rdbuf()));
    stand[satz("the state of {1}", name)] = satz(
        "{1}, exceptions {2}, tied to {3}, locale {4}", alsText(strom.rdstate()), alsText(strom.exceptions()),
        alsText(static_cast<const void*>(strom.tie())), strom.getloc().name());
}

Stand stroeme() {
    Stand stand;
    nimmStrom("std::cin", std::cin, stand);
    nimmStrom("std::cout", std::cout, stand);
    nimmStrom("std::cerr", std::cerr, stand);
    nimmStrom("std::clog", std::clog, stand);
    return stand;
}

Stand zeitgeber() {
    Stand stand;
    for (const auto& [name, art] : {std::pair(N_("the timer for real time"), ITIMER_REAL),
                                    std::pair(N_("the timer for processor time"), ITIMER_VIRTUAL),
                                    std::pair(N_("the timer for profiling"), ITIMER_PROF)}) {
        itimerval zeit{};
        getitimer(art, &zeit);
        const bool laeuft = zeit.it_value.tv_sec != 0 || zeit.it_value.tv_usec != 0;
        stand[uebersetzt(name)] = laeuft ? satz("running") : satz("off");
    }
    return stand;
}

Stand einstellungen() {
    const orvo::orvoutil::Einstellungen einstellungen;
    Stand stand;
    for (const char* const schluessel : {"basis.home_dir", "basis.resident_plugins"})
        stand[satz("the setting {1}", schluessel)] = '"' + einstellungen.wert(schluessel) + '"';
    return stand;
}

void pruefeAusgabe(const Pruefling& p, Fundliste& funde) {
    std::string aus, fehler;
    {
        const Mitschrift standardausgabe(STDOUT_FILENO), standardfehler(STDERR_FILENO);
        ladeUndBenutze(p.pfad);
        std::fflush(nullptr);
        std::cout.flush();
        std::clog.flush();
        aus = standardausgabe.anfang();
        fehler = standardfehler.anfang();
    }
    if (!aus.empty())
        funde.fehler(satz("writes to standard output: {1}", zitiert(aus)), "writes_to_output");
    else if (!fehler.empty())
        funde.warnung(satz("writes to standard error: {1}", zitiert(fehler)), "writes_to_error_output");
}

void pruefeThreads(const Pruefling& p, Fundliste& funde) {
    const std::size_t vorher = laufendeThreads();
    if (vorher == 0)
        return funde.uebersprungen(satz("the threads of a process cannot be counted here"), "not_measurable");
    ladeUndBenutze(p.pfad);
    // A process that has ended may still be listed for a moment.
    for (int i = 0; laufendeThreads() > vorher && i < 50; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    if (const std::size_t nachher = laufendeThreads(); nachher > vorher)
        funde.fehler(
            satz(
                "{1} of its threads still run after the plugin was unloaded: their code may go at any time; start threads in OnLoad or later, do not detach them, and join them in OnUnload",
                nachher - vorher),
            "threads_left");
}

void pruefeKindprozesse(const Pruefling& p, Fundliste& funde) {
#ifdef __linux__
    prctl(PR_SET_CHILD_SUBREAPER, 1); // adopts orphaned grandchildren as well
#endif
    ladeUndBenutze(p.pfad);
    int zustand = 0;
    const pid_t kind = waitpid(-1, &zustand, WNOHANG);
    if (kind > 0)
        funde.fehler(satz("a child process of the plugin has ended, and nobody has waited for it"),
                     "child_not_awaited");
    else if (kind == 0 || errno != ECHILD)
        funde.fehler(satz("a child process of the plugin still runs"), "child_left");
}

} // namespace

std::vector<Pruefung> rueckstandsPruefungen() {
    return {{"no-output", pruefeAusgabe},
            {"locale", bleibtGleich<locale>},
            {"working-directory", bleibtGleich<arbeitsverzeichnis>},
            {"signal-handlers", bleibtGleich<signale>},
            {"cxx-handlers", bleibtGleich<handler>},
            {"descriptors", bleibtGleich<deskriptoren>},
            {"environment", bleibtGleich<umgebung>},
            {"umask", bleibtGleich<maske>},
            {"threads", pruefeThreads},
            {"child-processes", pruefeKindprozesse},
            {"floating-point", bleibtGleich<gleitkomma>},
            {"streams", bleibtGleich<stroeme>},
            {"timers", bleibtGleich<zeitgeber>},
            {"limits", bleibtGleich<prozessgrenzen>},
            {"settings", bleibtGleich<einstellungen>}};
}

} // namespace werkzeug::check
