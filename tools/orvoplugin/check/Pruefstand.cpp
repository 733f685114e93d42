#include "check/Pruefstand.h"

#include "check/PluginDateien.h"
#include "check/Pluginnutzung.h"
#include "check/Text.h"
#include "kern/Anzeige.h"
#include "kern/Arbeitsteilung.h"
#include "kern/Kindprozess.h"
#include "kern/Lebenslauf.h"
#include "kern/Naehe.h"
#include "kern/Optionen.h"
#include "kern/Protokoll.h"
#include "kern/Sprache.h"

#include <algorithm>
#include <set>
#include <sstream>

namespace werkzeug::check {

namespace {

const Pruefung* finde(std::string_view name) {
    const auto& alle = katalog();
    const auto stelle = std::ranges::find(alle, name, &Pruefung::name);
    return stelle == alle.end() ? nullptr : &*stelle;
}

const Pruefung* verlange(const std::string& name) {
    if (const Pruefung* const pruefung = finde(name))
        return pruefung;
    const auto naechste = std::ranges::min_element(
        katalog(), {}, [&](const Pruefung& pruefung) { return abstand(pruefung.name, name); });
    throw AufrufFehler(satz("there is no check {1}; did you mean {2}? 'orvoplugin check --list' names all",
                            zitiert(name), naechste->name));
}

/// Runs a check in this process. An exception of the tool becomes a result.
Befund mache(const Pruefung& pruefung, const Pruefling& pruefling) {
    try {
        Fundliste funde;
        pruefung.pruefe(pruefling, funde);
        return funde.befund();
    } catch (const Ladefehler& fehler) {
        return {Urteil::DURCHGEFALLEN, fehler.what(), "refused"};
    } catch (...) {
        return {Urteil::DURCHGEFALLEN, laufendeAusnahme(), "throws"};
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

Json alsSatz(const Befund& befund) {
    return {static_cast<int>(befund.urteil), jsonText(befund.text), befund.code, befund.zahlen};
}
Befund befundAus(const Json& satz) {
    return {static_cast<Urteil>(satz.at(0).get<int>()), satz.at(1).get<std::string>(),
            satz.at(2).get<std::string>(), satz.at(3)};
}

/// What follows the reason, from its "; " on, where a further life of the plugin shows the cause.
std::string ursacheDesAbsturzes(const Pruefling& p) {
    const Lebenslauf leben = verfolgeLeben(p.pfad, p.zeitlimit.count() / 2, true);
    const std::string faden = satz(
        "; a thread that the plugin started still runs when its code is unmapped: start it in OnLoad or later, do not detach it, and join it in OnUnload");
    return (leben.faeden ? faden : "") + alsZusatz(leben.grenze) + alsZusatz(eigenesCxx(p.bild));
}

Befund macheImKind(const Pruefung& pruefung, const Pruefling& pruefling, const std::string& log) {
    Befund befund;
    const Kindende ende = laufeImKind(
        [&](const Sender& sende) {
            const auto protokoll = Protokoll::beginne(log);
            const auto grenzen = prozessgrenzen();
            Befund hier = mache(pruefung, pruefling);
            const std::string grenze = geaenderteGrenze(grenzen);
            if (hier.urteil == Urteil::DURCHGEFALLEN && hier.text.find(grenze) == std::string::npos)
                hier.text += "; " + grenze;
            sende(alsSatz(hier).dump());
        },
        [&](std::string_view satz) { befund = befundAus(Json::parse(satz)); }, pruefling.zeitlimit);
    if (ende.istGut())
        return befund;
    const std::string letztes = letzteZeile(ende.ausgabe);
    const std::string text = ende.text() + (letztes.empty() ? "" : ": " + letztes);
    if (ende.art == Kindende::Art::ZEIT)
        return {Urteil::ZU_LANGSAM, text, "timed_out"};
    return {Urteil::ABGESTUERZT, text + ursacheDesAbsturzes(pruefling),
            ende.art == Kindende::Art::BEENDET ? "exited" : "crashed"};
}

/// Whether, as far as is known, other files can be loaded together with this one.
bool istVertraeglich(const Dateiergebnis& datei) {
    return datei.fehler.empty() &&
           std::none_of(datei.ergebnisse.begin(), datei.ergebnisse.end(), [](const Pruefergebnis& e) {
               return artVon(e.befund.urteil).ausgang == Ausgang::ABGESTUERZT ||
                      (e.pruefung->name == std::string_view("describes") && istHindernis(e.befund.urteil));
           });
}

/// The checks of one file, in progress.
class Dateilauf {
public:
    Dateilauf(const Pruefauftrag& auftrag, Dateiergebnis bisher, std::vector<std::string> andere)
        : auftrag_(auftrag),
          ergebnis_(std::move(bisher)),
          pruefling_{vollerPfad(ergebnis_.pfad), Bibliotheksbild(vollerPfad(ergebnis_.pfad)),
                     std::move(andere), auftrag.zeitlimit, auftrag.vorgaben} {}

    Befund laufe(const Pruefung& pruefung) {
        ergebnis_.ergebnisse.push_back({&pruefung, befundVon(pruefung)});
        return ergebnis_.ergebnisse.back().befund;
    }

private:
    Befund befundVon(const Pruefung& pruefung) {
        if (const Pruefergebnis* const hindernis = hindernisFuer(pruefung))
            return {Urteil::UEBERSPRUNGEN, hindernis->pruefung->name, kBautAuf};
        if (&pruefung != &katalog().front() && !pruefling_.bild.istLadbar())
            return {Urteil::DURCHGEFALLEN, einzeilig(pruefling_.bild.getGrund()), "not_loadable"};
        return pruefung.ort == Ort::DATEI ? mache(pruefung, pruefling_)
                                          : macheImKind(pruefung, pruefling_, auftrag_.log);
    }

    /// The check that was made, did not pass, and that this one depends on, directly or not.
    const Pruefergebnis* hindernisFuer(const Pruefung& pruefung) const {
        if (const Pruefergebnis* const format = ergebnisVon(katalog().front().name);
            format && istHindernis(format->befund.urteil))
            return format;
        for (const std::string_view name : pruefung.bautAuf) {
            if (const Pruefergebnis* const e = ergebnisVon(name);
                e && istHindernis(e->befund.urteil) && e->befund.code != kBautAuf)
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
    Dateiergebnis ergebnis_;
    Pruefling pruefling_;
};

/// The checks of all files, in progress.
class Gesamtlauf {
public:
    explicit Gesamtlauf(const Pruefauftrag& auftrag) : auftrag_(auftrag) {
        for (const std::string& pfad : auftrag.dateien) {
            const std::string grund = warumUnlesbar(pfad);
            ergebnisse_.push_back({pfad, grund, !grund.empty(), {}});
        }
    }

    std::vector<Dateiergebnis> laufe() && {
        fuelle(false);
        fuelle(true);
        return std::move(ergebnisse_);
    }

private:
    /// Makes the checks that come last, or all others.
    void fuelle(bool zuletzt) {
        std::vector<const Pruefung*> auswahl;
        for (const Pruefung* const pruefung : auftrag_.auswahl)
            if (kommtZuletzt(*pruefung, auftrag_.dateien.size()) == zuletzt)
                auswahl.push_back(pruefung);
        Arbeitsplan plan;
        plan.zugleich = auftrag_.zugleich;
        plan.arbeit = [&](std::size_t i, const auto& sende) {
            Dateilauf lauf(auftrag_, ergebnisse_[i], zuletzt ? andereAls(i) : std::vector<std::string>());
            for (const Pruefung* const pruefung : auswahl)
                sende(alsSatz(lauf.laufe(*pruefung)).dump() + "\n"); // JSON text holds no line feed
        };
        plan.fertig = [&](std::size_t i, const std::string& gesendet, const Kindende& ende) {
            nimm(ergebnisse_[i], auswahl, gesendet, ende);
            melde(i, zuletzt);
        };
        plan.takt = [&](std::size_t i, const std::string& gesendet) {
            const auto n = static_cast<std::size_t>(std::count(gesendet.begin(), gesendet.end(), '\n'));
            if (auftrag_.takt && n < auswahl.size())
                auftrag_.takt(i, *auswahl[n]);
        };
        gemeldete_ = 0;
        for (std::size_t i = 0; i < ergebnisse_.size(); ++i)
            if (ergebnisse_[i].fehler.empty() && !auswahl.empty())
                plan.stuecke.push_back(i);
            else
                melde(i, zuletzt);
        verteile(plan);
    }

    static void nimm(Dateiergebnis& datei, const std::vector<const Pruefung*>& auswahl,
                     const std::string& gesendet, const Kindende& ende) {
        std::istringstream zeilen(gesendet);
        std::size_t n = 0;
        for (std::string zeile; std::getline(zeilen, zeile) && !zeilen.eof(); ++n)
            datei.ergebnisse.push_back({auswahl[n], befundAus(Json::parse(zeile))});
        if (!ende.istGut() || n < auswahl.size())
            datei.fehler = satz("the tool's process for this file {1}", ende.text());
    }

    /// Reports the file, and those after it that have waited for it.
    void melde(std::size_t nummer, bool zuletzt) {
        const auto& ruf = zuletzt ? auftrag_.ganzFertig : auftrag_.fertig;
        wartende_.insert(nummer);
        for (; wartende_.erase(gemeldete_) > 0; ++gemeldete_)
            if (ruf)
                ruf(ergebnisse_[gemeldete_]);
    }

    /// The other files that can be loaded together with this one.
    std::vector<std::string> andereAls(std::size_t nummer) const {
        std::vector<std::string> andere;
        for (std::size_t i = 0; i < ergebnisse_.size(); ++i)
            if (i != nummer && istVertraeglich(ergebnisse_[i]))
                andere.push_back(vollerPfad(ergebnisse_[i].pfad));
        return andere;
    }

    const Pruefauftrag& auftrag_;
    std::vector<Dateiergebnis> ergebnisse_;
    std::set<std::size_t> wartende_;
    std::size_t gemeldete_ = 0;
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
        throw AufrufFehler(satz("--only and --skip leave no check"));
    return auswahl;
}

bool kommtZuletzt(const Pruefung& pruefung, std::size_t dateien) {
    return pruefung.ort == Ort::KIND_REIHE && dateien > 1;
}

std::vector<Dateiergebnis> pruefe(const Pruefauftrag& auftrag) { return Gesamtlauf(auftrag).laufe(); }

} // namespace werkzeug::check
