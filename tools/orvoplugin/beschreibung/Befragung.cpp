#include "beschreibung/Befragung.h"

#include "check/Pluginnutzung.h"
#include "check/Text.h"
#include "kern/Anzeige.h"
#include "kern/Kindprozess.h"
#include "kern/Protokoll.h"
#include "kern/Sprache.h"
#include "kern/Ursachen.h"

#include <orvoplugin/beschreibung/Beschreibung.h>

#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <locale>
#include <system_error>
#include <vector>

extern char** environ;

namespace werkzeug {

namespace {

/// A description, also as lines for people.
struct Auskunft {
    std::string bytes;
    std::vector<std::string> zeilen;
};

// --- Other circumstances, in the child process ---

/// Removes what is set, and sets what plugins may ask for.
void aendereUmgebung() {
    while (environ && *environ)
        unsetenv(std::string(*environ).substr(0, std::string_view(*environ).find('=')).c_str());
    for (const char* const name : {"HOME", "LOGNAME", "PATH", "PWD", "TMPDIR", "USER"})
        setenv(name, "/elsewhere", 1);
    setenv("LANG", "tr_TR.UTF-8", 1);
    setenv("LC_ALL", "tr_TR.UTF-8", 1);
    setenv("TZ", "ELSEWHERE-11", 1);
    tzset();
}

void aendereVerzeichnis() {
    std::error_code keins;
    std::filesystem::current_path(std::filesystem::current_path(keins) == "/" ? "/dev" : "/", keins);
}

/// The C++ locale needs none of the system. Of C's, the first that is there.
void aendereLocale() {
    struct Punkte : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    std::locale::global(std::locale(std::locale::classic(), new Punkte));
    for (const char* const name : {"tr_TR.UTF-8", "de_DE.UTF-8", "de_DE", "C.UTF-8"})
        if (std::setlocale(LC_ALL, name))
            return;
}

struct Umstand {
    const char* name;
    void (*aendere)();
};
constexpr Umstand kUmstaende[] = {{N_("environment"), aendereUmgebung},
                                  {N_("working directory"), aendereVerzeichnis},
                                  {N_("locale"), aendereLocale}};

// --- Asking ---

constexpr char kBytes = 'B', kZeile = 'Z', kFehler = 'F', kAusnahme = 'A'; // first byte of a record: its type

/// Asks the plugin in this process. The library is closed again before the child reports its success.
void frage(const std::string& pfad, const Sender& sende) {
    try {
        const auto plugin = check::lade(pfad);
        sende(kBytes + schreibeBeschreibung(*plugin));
        for (const std::string& zeile : check::beschreibung(*plugin))
            sende(kZeile + zeile);
    } catch (const check::Ladefehler& fehler) {
        sende(kFehler + std::string(fehler.what()));
    } catch (...) {
        sende(kAusnahme + check::laufendeAusnahme());
    }
}

Auskunft frageImKind(const std::string& pfad, const Optionen& optionen,
                     const std::vector<Umstand>& umstaende) {
    Auskunft auskunft;
    std::string fehler;
    bool nurHier = false;
    const Kindende ende = laufeImKind(
        [&](const Sender& sende) {
            const auto protokoll = Protokoll::beginne(optionen.log);
            for (const Umstand& umstand : umstaende)
                umstand.aendere();
            frage(pfad, sende);
        },
        [&](std::string_view nachricht) {
            const std::string text(nachricht.substr(1));
            if (nachricht.front() == kBytes)
                auskunft.bytes = text;
            else if (nachricht.front() == kZeile)
                auskunft.zeilen.push_back(text);
            else { // a child under other circumstances may have lost its language
                fehler = nachricht.front() == kFehler ? satz("asked to describe itself, it fails: {1}", text)
                                                      : text;
                nurHier = nachricht.front() == kFehler &&
                          liegtAmRechner(sucheUrsache(ABLEHNUNG_OEFFNEN, pfad, {}, text));
            }
        },
        std::chrono::duration<double>(optionen.zeitlimit));
    if (!fehler.empty())
        throw NichtBeschreibbar(fehler, Ausgang::BEFUNDE, nurHier);
    if (!ende.istGut())
        throw NichtBeschreibbar(satz("asked to describe itself, it {1}", ende.text()), Ausgang::ABGESTUERZT);
    return auskunft;
}

/// Which circumstances alone make a difference.
std::string ursachen(const std::string& pfad, const Optionen& optionen, const Auskunft& erste) {
    std::string namen;
    for (const Umstand& umstand : kUmstaende)
        if (frageImKind(pfad, optionen, {umstand}).bytes != erste.bytes)
            namen = namen.empty() ? uebersetzt(umstand.name)
                                  : satz("{1} or {2}", namen, uebersetzt(umstand.name));
    return frageImKind(pfad, optionen, {}).bytes != erste.bytes ? satz("in each process")
           : namen.empty()                                      ? satz("under other circumstances")
                                                                : satz("with another {1}", namen);
}

} // namespace

std::string befrage(const std::string& pfad, const Optionen& optionen) {
    const Auskunft erste = frageImKind(pfad, optionen, {});
    const Auskunft zweite = frageImKind(pfad, optionen, {std::begin(kUmstaende), std::end(kUmstaende)});
    if (erste.bytes == zweite.bytes)
        return erste.bytes;
    throw NichtBeschreibbar(
        satz("it describes itself differently {1}: {2}; such a plugin must be asked at each "
             "start: build it without DESCRIBED",
             ursachen(pfad, optionen, erste), check::unterschied(erste.zeilen, zweite.zeilen)));
}

} // namespace werkzeug
