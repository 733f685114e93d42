#include "kern/Sammler.h"

#include "kern/Anzeige.h"
#include "kern/Bestandsermittlung.h"
#include "kern/Kindprozess.h"
#include "kern/Terminal.h"
#include "kern/Uebertragung.h"

#include <sys/time.h>

#include <chrono>
#include <cstring>
#include <ctime>
#include <map>
#include <thread>
#include <vector>

namespace werkzeug {

namespace {

/// First byte of a record: its type.
constexpr char kVorDatei =
    'D'; ///< the path of the file whose code may run next; empty when no more plugin code will run
constexpr char kBestand = 'B'; ///< a piece of the facts

constexpr std::size_t kStueck = 1 << 20; ///< bytes of the facts in one record

/// The result of one child.
struct Lauf {
    Kindende ende;
    std::vector<std::string> begonnene; ///< paths, in the order in which their code ran
    bool codeLief = false;              ///< it ended while code of the last one ran
    std::optional<Bestand> bestand;
};

/// Time for threads that a plugin may have left running to do their damage.
constexpr auto kNachlauf = std::chrono::milliseconds(150);

/// Lets timers that plugins left running expire: one of them may have ended the process while code of another plugin
/// ran.
void loeseZeitgeberAus() {
    constexpr std::chrono::milliseconds kRechenzeit{50}; // for those that count processor time
    bool laeuft = false;
    for (const auto art : {ITIMER_REAL, ITIMER_VIRTUAL, ITIMER_PROF}) {
        itimerval zeit{};
        if (getitimer(art, &zeit) != 0 || (zeit.it_value.tv_sec == 0 && zeit.it_value.tv_usec == 0))
            continue;
        zeit.it_value = {0, 1};
        setitimer(art, &zeit, nullptr);
        laeuft = true;
    }
    for (const std::clock_t beginn = std::clock();
         laeuft && (std::clock() - beginn) * 1000 / CLOCKS_PER_SEC < kRechenzeit.count();) {
    }
}

/// One child. A `probe` sends no facts, but stays for a while.
Lauf laufe(const Optionen& optionen, const Auftrag& auftrag, const std::set<std::string>& ueberspringe,
           Fortschritt& fortschritt, bool probe = false) {
    Lauf lauf;
    const auto arbeite = [&](const Sender& sende) {
        const auto bevor = [&](const std::string& pfad) { sende(kVorDatei + pfad); };
        const Bestand bestand = ermittleBestand(optionen, auftrag, ueberspringe, bevor);
        if (probe) {
            loeseZeitgeberAus();
            std::this_thread::sleep_for(kNachlauf);
            return;
        }
        const std::string bytes = schreibe(bestand, [&] { bevor({}); });
        for (std::size_t ab = 0; ab < bytes.size(); ab += kStueck)
            sende(kBestand + bytes.substr(ab, kStueck));
    };
    std::string bytes;
    const auto empfange = [&](std::string_view satz) {
        if (satz.empty())
            return;
        if (satz[0] == kBestand) {
            bytes += satz.substr(1);
        } else {
            lauf.codeLief = satz.size() > 1;
            if (lauf.codeLief)
                lauf.begonnene.emplace_back(satz.substr(1));
        }
    };
    const auto zeige = [&] {
        if (lauf.begonnene.empty())
            fortschritt.zeige("loading plugins");
        else
            fortschritt.zeige("loading plugins: " + std::to_string(lauf.begonnene.size()) + ", now at " +
                              einzeilig(lauf.begonnene.back()));
    };
    const auto nimm = [&](std::string_view satz) {
        empfange(satz);
        zeige();
    };
    lauf.ende = laufeImKind(arbeite, nimm, std::chrono::duration<double>(optionen.zeitlimit), zeige);
    if (lauf.ende.istGut() && !probe) {
        try {
            lauf.bestand = liesBestand(bytes);
        } catch (const UebertragungsFehler&) { // plugin code has corrupted the child's memory
            lauf.ende.art = Kindende::Art::KANAL;
        }
    }
    return lauf;
}

Auftrag nurDiese(const Auftrag& auftrag, std::set<std::string> dateien) {
    Auftrag engerer = auftrag;
    engerer.frage.reset();
    engerer.nur = std::move(dateien);
    return engerer;
}

using Schuld = std::pair<std::string, Kindende>;

/// Finds the file that ends the process among several that together do so; the last one when no smaller set does.
Schuld sucheUnter(const Optionen& optionen, const Auftrag& auftrag, Fortschritt& fortschritt,
                  const std::vector<std::string>& dateien, const Kindende& gemeinsam) {
    if (dateien.size() == 1)
        return {dateien[0], gemeinsam};
    const auto mitte = dateien.begin() + static_cast<std::ptrdiff_t>(dateien.size() / 2);
    for (const std::vector<std::string>& haelfte :
         {std::vector(dateien.begin(), mitte), std::vector(mitte, dateien.end())}) {
        const Lauf lauf =
            laufe(optionen, nurDiese(auftrag, {haelfte.begin(), haelfte.end()}), {}, fortschritt, true);
        if (!lauf.ende.istGut())
            return sucheUnter(optionen, auftrag, fortschritt, haelfte, lauf.ende);
    }
    return {dateien.back(), gemeinsam};
}

/// The file that ended the child's process, and how. Nearly always it is the one whose code ran last. If that one does
/// no harm when loaded alone, an earlier one did it, through a thread for example.
Schuld schuldiger(const Optionen& optionen, const Auftrag& auftrag, Fortschritt& fortschritt,
                  const Lauf& lauf) {
    const std::string& letzter = lauf.begonnene.back();
    if (lauf.ende.art == Kindende::Art::ZEIT && lauf.codeLief)
        return {letzter, lauf.ende};
    Optionen still = optionen;
    still.log.clear();
    const Lauf allein = laufe(still, nurDiese(auftrag, {letzter}), {}, fortschritt, true);
    return allein.ende.istGut() ? sucheUnter(still, auftrag, fortschritt, lauf.begonnene, lauf.ende)
                                : Schuld(letzter, allein.ende);
}

void trageEin(DateiFakt& datei, const Kindende& ende) {
    switch (ende.art) {
    case Kindende::Art::SIGNAL:
        datei.zustand = Zustand::ABGESTUERZT;
        datei.grund = Grund::SIGNAL;
        break;
    case Kindende::Art::ZEIT:
        datei.zustand = Zustand::ZEIT;
        datei.grund = Grund::ZEITLIMIT;
        break;
    case Kindende::Art::KANAL:
        datei.zustand = Zustand::ABGESTUERZT;
        datei.grund = Grund::KANAL;
        break;
    default:
        datei.zustand = Zustand::BEENDET;
        datei.grund = Grund::PROZESSENDE;
        break;
    }
    datei.zahl = ende.zahl;
    datei.ausgabe = ende.ausgabe;
    datei.meldung = ende.text();
}

} // namespace

Bestand sammle(const Optionen& optionen, const Auftrag& auftrag) {
    Fortschritt fortschritt(!optionen.quiet);
    std::map<std::string, Kindende> schuldige;
    for (;;) {
        std::set<std::string> ueberspringe;
        for (const auto& [pfad, ende] : schuldige)
            ueberspringe.insert(pfad);
        Lauf lauf = laufe(optionen, auftrag, ueberspringe, fortschritt);
        if (lauf.ende.istGut()) {
            for (DateiFakt& datei : lauf.bestand->dateien)
                if (const auto ende = schuldige.find(datei.pfad); ende != schuldige.end())
                    trageEin(datei, ende->second);
            const VerzeichnisFakt& erstes = lauf.bestand->verzeichnisse.at(0);
            if (erstes.fehler != 0)
                throw Unlesbar(einzeilig(erstes.pfad) + ": " + std::strerror(erstes.fehler));
            return std::move(*lauf.bestand);
        }
        if (lauf.begonnene.empty())
            throw std::runtime_error("the process that loads the plugins " + lauf.ende.text());
        auto [pfad, ende] = schuldiger(optionen, auftrag, fortschritt, lauf);
        schuldige.emplace(std::move(pfad), std::move(ende));
    }
}

Ausgang ausgangVon(const Bestand& bestand) {
    Ausgang ausgang = Ausgang::GUT;
    for (const DateiFakt& datei : bestand.dateien) {
        if (datei.zustand >= Zustand::ABGESTUERZT)
            ausgang = schwerster(ausgang, Ausgang::ABGESTUERZT);
        else if (datei.zustand >= Zustand::ABGELEHNT)
            ausgang = schwerster(ausgang, Ausgang::BEFUNDE);
    }
    for (const VerzeichnisFakt& verzeichnis : bestand.verzeichnisse)
        if (verzeichnis.fehler != 0)
            ausgang = schwerster(ausgang, Ausgang::NICHT_LESBAR);
    return ausgang;
}

} // namespace werkzeug
