#include "check/Pruefstand.h"

#include "check/PluginDateien.h"
#include "check/Pluginnutzung.h"
#include "check/Text.h"
#include "kern/Anzeige.h"
#include "kern/Kindprozess.h"
#include "kern/Naehe.h"
#include "kern/Optionen.h"
#include "kern/Protokoll.h"

#include <algorithm>
#include <set>

namespace werkzeug::check {

namespace {

const Pruefung* finde(std::string_view name) {
    const auto& alle = katalog();
    const auto stelle =
        std::find_if(alle.begin(), alle.end(), [&](const Pruefung& p) { return p.name == name; });
    return stelle == alle.end() ? nullptr : &*stelle;
}

const Pruefung* verlange(const std::string& name) {
    if (const Pruefung* const pruefung = finde(name))
        return pruefung;
    const auto& alle = katalog();
    const auto naechste =
        std::min_element(alle.begin(), alle.end(), [&](const Pruefung& a, const Pruefung& b) {
            return abstand(a.name, name) < abstand(b.name, name);
        });
    throw AufrufFehler("there is no check " + zitiert(name) + "; did you mean " + naechste->name +
                       "? 'orvoplugin check --list' names all");
}

/// Runs a check in this process. An exception of the tool becomes a result.
Befund mache(const Pruefung& pruefung, const Pruefling& pruefling) {
    try {
        return pruefung.pruefe(pruefling);
    } catch (const Ladefehler& fehler) {
        return durchgefallen(fehler.what());
    } catch (...) {
        return durchgefallen(laufendeAusnahme());
    }
}

/// The last line that is not blank.
std::string letzteZeile(std::string_view ausgabe) {
    const std::size_t ende = ausgabe.find_last_not_of(" \n\t\r");
    if (ende == std::string_view::npos)
        return {};
    ausgabe = ausgabe.substr(0, ende + 1);
    const std::size_t davor = ausgabe.find_last_of('\n');
    const std::string_view zeile = davor == std::string_view::npos ? ausgabe : ausgabe.substr(davor + 1);
    return einzeilig(zeile.substr(zeile.find_first_not_of(" \t\r")));
}

Befund macheImKind(const Pruefung& pruefung, const Pruefling& pruefling, const std::string& log) {
    Befund befund;
    const Kindende ende = laufeImKind(
        [&](const Sender& sende) {
            const auto protokoll = Protokoll::beginne(log);
            const Befund hier = mache(pruefung, pruefling);
            sende(static_cast<char>(hier.urteil) + hier.text);
        },
        [&](std::string_view satz) {
            if (!satz.empty())
                befund = {static_cast<Urteil>(satz.front()), std::string(satz.substr(1))};
        },
        pruefling.zeitlimit);
    if (ende.istGut())
        return befund;
    const std::string letztes = letzteZeile(ende.ausgabe);
    return {ende.art == Kindende::Art::ZEIT ? Urteil::ZU_LANGSAM : Urteil::ABGESTUERZT,
            ende.text() + (letztes.empty() ? "" : ": " + letztes)};
}

/// The checks of one file, in progress.
class Dateilauf {
public:
    Dateilauf(const Pruefauftrag& auftrag, const std::string& pfad)
        : auftrag_(auftrag),
          pruefling_{vollerPfad(pfad), Bibliotheksbild(vollerPfad(pfad)), {}, auftrag.zeitlimit} {
        ergebnis_.pfad = pfad;
    }

    void laufe(bool reihe) {
        for (const Pruefung* const pruefung : auftrag_.auswahl)
            if ((pruefung->ort == Ort::KIND_REIHE) == reihe)
                ergebnis_.ergebnisse.push_back({pruefung, befundVon(*pruefung)});
    }

    /// Whether, as far as is known, other files can be loaded together with this one.
    bool istVertraeglich() const {
        return std::none_of(
            ergebnis_.ergebnisse.begin(), ergebnis_.ergebnisse.end(), [](const Pruefergebnis& e) {
                return e.befund.urteil == Urteil::ABGESTUERZT || e.befund.urteil == Urteil::ZU_LANGSAM ||
                       (e.pruefung->name == std::string_view("describes") && istHindernis(e.befund.urteil));
            });
    }
    const std::string& pfad() const { return pruefling_.pfad; }
    void nimmAndere(std::vector<std::string> andere) { pruefling_.andere = std::move(andere); }

    Dateiergebnis ergebnis() && { return std::move(ergebnis_); }

private:
    Befund befundVon(const Pruefung& pruefung) {
        if (const Pruefergebnis* const hindernis = hindernisFuer(pruefung))
            return uebersprungen(std::string("builds on ") + hindernis->pruefung->name);
        if (&pruefung != &katalog().front() && !pruefling_.bild.istLadbar())
            return durchgefallen(einzeilig(pruefling_.bild.getGrund()));
        if (auftrag_.vorPruefung)
            auftrag_.vorPruefung(ergebnis_.pfad, pruefung);
        return pruefung.ort == Ort::DATEI ? mache(pruefung, pruefling_)
                                          : macheImKind(pruefung, pruefling_, auftrag_.log);
    }

    /// The check that did not pass and that this one depends on, directly or not.
    const Pruefergebnis* hindernisFuer(const Pruefung& pruefung) const {
        if (const Pruefergebnis* const format = ergebnisVon(katalog().front().name);
            format && istHindernis(format->befund.urteil))
            return format;
        for (const std::string_view name : pruefung.bautAuf) {
            if (const Pruefergebnis* const e = ergebnisVon(name); e && istHindernis(e->befund.urteil))
                return e;
            if (const Pruefung* const davor = finde(name))
                if (const Pruefergebnis* const e = hindernisFuer(*davor))
                    return e;
        }
        return nullptr;
    }

    const Pruefergebnis* ergebnisVon(std::string_view name) const {
        for (const Pruefergebnis& e : ergebnis_.ergebnisse)
            if (e.pruefung->name == name)
                return &e;
        return nullptr;
    }

    const Pruefauftrag& auftrag_;
    Pruefling pruefling_;
    Dateiergebnis ergebnis_;
};

} // namespace

std::vector<const Pruefung*> waehle(const std::vector<std::string>& nur,
                                    const std::vector<std::string>& ohne) {
    std::set<const Pruefung*> gewollt, ungewollt;
    for (const std::string& name : nur)
        gewollt.insert(verlange(name));
    for (const std::string& name : ohne)
        ungewollt.insert(verlange(name));
    std::vector<const Pruefung*> auswahl;
    for (const Pruefung& pruefung : katalog())
        if ((nur.empty() || gewollt.contains(&pruefung)) && !ungewollt.contains(&pruefung))
            auswahl.push_back(&pruefung);
    if (auswahl.empty())
        throw AufrufFehler("--only and --skip leave no check");
    return auswahl;
}

std::vector<Dateiergebnis> pruefe(const Pruefauftrag& auftrag) {
    std::vector<Dateiergebnis> ergebnisse;
    std::vector<std::pair<std::size_t, Dateilauf>> laeufe; // of the readable files, with their positions
    for (const std::string& pfad : auftrag.dateien) {
        ergebnisse.push_back({pfad, warumUnlesbar(pfad), {}});
        if (!ergebnisse.back().unlesbar.empty())
            continue;
        laeufe.emplace_back(ergebnisse.size() - 1, Dateilauf(auftrag, pfad));
        laeufe.back().second.laufe(false);
    }
    for (auto& [stelle, lauf] : laeufe) {
        std::vector<std::string> andere;
        for (const auto& [andereStelle, anderer] : laeufe)
            if (andereStelle != stelle && anderer.istVertraeglich())
                andere.push_back(anderer.pfad());
        lauf.nimmAndere(std::move(andere));
    }
    for (auto& [stelle, lauf] : laeufe) {
        lauf.laufe(true);
        ergebnisse[stelle] = std::move(lauf).ergebnis();
    }
    return ergebnisse;
}

} // namespace werkzeug::check
