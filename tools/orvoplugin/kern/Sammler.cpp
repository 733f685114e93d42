#include "kern/Sammler.h"

#include "kern/Anzeige.h"
#include "kern/Bestandsermittlung.h"
#include "kern/Kindprozess.h"
#include "kern/Lebenslauf.h"
#include "kern/Terminal.h"
#include "kern/Uebertragung.h"

#include <algorithm>
#include <chrono>
#include <map>
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

/// One child. A `probe` sends no facts, but stays for a while.
Lauf laufe(const Optionen& optionen, const Auftrag& auftrag, const std::set<std::string>& ueberspringe,
           Fortschritt& fortschritt, bool probe = false) {
    Lauf lauf;
    const auto arbeite = [&](const Sender& sende) {
        const auto bevor = [&](const std::string& pfad) { sende(kVorDatei + pfad); };
        const Bestand bestand = ermittleBestand(optionen, auftrag, ueberspringe, bevor);
        if (probe) {
            wartAufUeberbleibsel();
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
            fortschritt.zeige(satz("loading plugins"));
        else
            fortschritt.zeige(satz("loading plugins: {1}, now at {2}", lauf.begonnene.size(),
                                   einzeilig(lauf.begonnene.back())));
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

/// A file that ended the process, how, and in which step.
struct Schuld {
    std::string pfad;
    Kindende ende;
    Schritt schritt = Schritt::KEINER;
    Ursache ursache = Ursache::KEINE;
};

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

/// The file that ended the child's process. Nearly always it is the one whose code ran last. If that one does no harm
/// when loaded alone, an earlier one did it, through a thread for example.
Schuld schuldiger(const Optionen& optionen, const Auftrag& auftrag, Fortschritt& fortschritt,
                  const Lauf& lauf) {
    constexpr double kLangGenug = 2; // seconds, to see where a plugin hangs that has used up its time once
    const std::string& letzter = lauf.begonnene.back();
    const bool haengt = lauf.ende.art == Kindende::Art::ZEIT && lauf.codeLief;
    const Lebenslauf leben =
        verfolgeLeben(letzter, haengt ? std::min(kLangGenug, optionen.zeitlimit) : optionen.zeitlimit);
    if (haengt)
        return {letzter, lauf.ende, leben.ende.istGut() ? Schritt::KEINER : leben.schritt};
    if (!leben.ende.istGut())
        return {letzter, leben.ende, leben.schritt, leben.ursache};
    Optionen still = optionen;
    still.log.clear();
    const Lauf allein = laufe(still, nurDiese(auftrag, {letzter}), {}, fortschritt, true);
    Schuld schuld = allein.ende.istGut() ? sucheUnter(still, auftrag, fortschritt, lauf.begonnene, lauf.ende)
                                         : Schuld{letzter, allein.ende};
    if (schuld.pfad != letzter)
        if (const Lebenslauf seines = verfolgeLeben(schuld.pfad, optionen.zeitlimit); !seines.ende.istGut())
            schuld = {schuld.pfad, seines.ende, seines.schritt, seines.ursache};
    return schuld;
}

void trageEin(DateiFakt& datei, const Schuld& schuld) {
    const Kindende& ende = schuld.ende;
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
    datei.schritt = schuld.schritt;
    datei.ursache = schuld.ursache;
    datei.zahl = ende.zahl;
    datei.ausgabe = ende.ausgabe;
    datei.meldung = ende.text();
}

} // namespace

Bestand sammle(const Optionen& optionen, const Auftrag& auftrag) {
    Fortschritt fortschritt(!optionen.quiet);
    std::map<std::string, Schuld> schuldige;
    for (;;) {
        std::set<std::string> ueberspringe;
        for (const auto& [pfad, schuld] : schuldige)
            ueberspringe.insert(pfad);
        Lauf lauf = laufe(optionen, auftrag, ueberspringe, fortschritt);
        if (lauf.ende.istGut()) {
            for (DateiFakt& datei : lauf.bestand->dateien)
                if (const auto schuld = schuldige.find(datei.pfad); schuld != schuldige.end())
                    trageEin(datei, schuld->second);
            const VerzeichnisFakt& erstes = lauf.bestand->verzeichnisse.at(0);
            if (erstes.fehler != 0)
                throw Unlesbar(einzeilig(erstes.pfad) + ": " + systemtext(erstes.fehler) +
                               ortshinweis(optionen));
            return std::move(*lauf.bestand);
        }
        if (lauf.begonnene.empty())
            throw std::runtime_error(satz("the process that loads the plugins: {1}", lauf.ende.text()));
        Schuld schuld = schuldiger(optionen, auftrag, fortschritt, lauf);
        schuldige.emplace(schuld.pfad, std::move(schuld));
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
