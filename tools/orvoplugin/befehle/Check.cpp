// orvoplugin check FILE...: whether plugins fit the library and their hosts.

#include "befehle/Befehl.h"
#include "befehle/Befehle.h"
#include "check/CheckAusgabe.h"
#include "check/PluginDateien.h"
#include "check/Pruefstand.h"
#include "kern/Anzeige.h"
#include "kern/Arbeitsteilung.h"
#include "kern/Sprache.h"
#include "kern/Terminal.h"

#include <orvoutil/Einstellungen.h>

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace werkzeug {

namespace {

using namespace check;

class Check final : public Befehl {
public:
    void beschreibe(CLI::App& unterbefehl) override {
        unterbefehl
            .add_option("FILE", dateien_,
                        "Plugin files to check; with --home or --dir also those of the directory")
            ->type_name("");
        unterbefehl.add_flag("--list", liste_, "Name every check with what it says of a plugin that passes");
        unterbefehl.add_option("--only", nur_, "Make these checks only")
            ->type_name("NAME,...")
            ->delimiter(',')
            ->allow_extra_args(false);
        unterbefehl.add_option("--skip", ohne_, "Leave these checks out")
            ->type_name("NAME,...")
            ->delimiter(',')
            ->allow_extra_args(false);
        fuegeVorgabenHinzu(unterbefehl, vorgaben_);
        unterbefehl.add_flag("--strict", streng_, "Count a warning as a failure");
        unterbefehl.add_flag(
            "--elsewhere", anderswo_,
            "Count what may be missing on this machine only as a warning, also with --strict");
        unterbefehl
            .add_option("--format", format_, "Results as text, json (as --json), or for a build server")
            ->type_name("FORMAT")
            ->check(CLI::IsMember({"text", "json", "junit", "sarif", "github"}));
        unterbefehl.add_flag("--only-failed", nurAuffaellige_, "Leave out the files that passed");
        unterbefehl
            .add_option("--jobs", zugleich_,
                        "Files that are checked at the same time; default: one for each processor")
            ->type_name("N")
            ->check(CLI::Range(1, 1024));
    }

    Ausgang fuehreAus(const Optionen& optionen) override {
        const std::string format = formatVon(optionen);
        const Englisch englisch(format != "text");
        std::vector<const Pruefung*> auswahl = waehle(nur_, ohne_);
        if (liste_)
            return zeigeListe(auswahl, optionen, format);
        if (nur_.empty() && vorgaben_.daten.empty())
            std::erase_if(auswahl, [](const Pruefung* pruefung) { return pruefung->brauchtDaten; });
        const std::vector<std::string> dateien = alleDateien(optionen);
        // child processes inherit it
        orvo::orvoutil::Einstellungen().setze("basis.resident_plugins", optionen.resident);
        std::vector<Dateiergebnis> ergebnisse = pruefeAlle(dateien, auswahl, optionen, format == "text");
        for (Dateiergebnis& datei : ergebnisse)
            verschaerfe(datei);
        if (!optionen.quiet)
            gibAus(alsFormat(format, ergebnisse, auswahl));
        schreibeMeldungen(std::cerr, ergebnisse, optionen.quiet);
        return ausgangVon(ergebnisse);
    }

private:
    std::string formatVon(const Optionen& optionen) const {
        if (optionen.json && !format_.empty() && format_ != "json")
            throw AufrufFehler(satz("--json and --format {1} contradict each other", format_));
        return optionen.json ? "json" : format_.empty() ? "text" : format_;
    }

    std::string alsFormat(const std::string& format, std::vector<Dateiergebnis> ergebnisse,
                          const std::vector<const Pruefung*>& auswahl) const {
        if (format == "text")
            return (bloecke_ > 0 && ergebnisse.size() != 1 ? "\n" : "") + schlusstext(ergebnisse);
        if (format == "json")
            return alsText(ergebnisdokument(ergebnisse, nurAuffaellige_)) + "\n";
        if (nurAuffaellige_)
            std::erase_if(ergebnisse, istUnauffaellig);
        if (format == "sarif")
            return alsText(alsSarif(ergebnisse, auswahl)) + "\n";
        return format == "junit" ? alsJunit(ergebnisse) : alsGithub(ergebnisse);
    }

    static bool istUnauffaellig(const Dateiergebnis& datei) {
        return urteilUeber(datei) == Dateiurteil::BESTANDEN;
    }

    void verschaerfe(Dateiergebnis& datei) const {
        for (Pruefergebnis& ergebnis : datei.ergebnisse)
            if (anderswo_ && ergebnis.befund.code == kFehltHier)
                ergebnis.befund.urteil = Urteil::WARNUNG;
            else if (streng_ && ergebnis.befund.urteil == Urteil::WARNUNG)
                ergebnis.befund.urteil = Urteil::DURCHGEFALLEN;
    }

    static Ausgang zeigeListe(const std::vector<const Pruefung*>& auswahl, Optionen optionen,
                              const std::string& format) {
        if (format != "text" && format != "json")
            throw AufrufFehler(satz("--list gives text or JSON, and not {1}", format));
        optionen.json = format == "json";
        gibAus(optionen, listendokument(auswahl), listentext);
        return Ausgang::GUT;
    }

    /// The named files and those of the plugin directory, if given; each once.
    std::vector<std::string> alleDateien(const Optionen& optionen) const {
        std::vector<std::string> dateien = dateien_;
        if (!optionen.dir.empty() || !optionen.home.empty())
            for (const std::string& datei : pluginDateien(optionen))
                dateien.push_back(datei);
        else if (dateien.empty())
            throw AufrufFehler(satz("check: neither a FILE nor a directory is given"));
        std::set<std::string> gesehene;
        std::erase_if(dateien, [&](const std::string& datei) { return !gesehene.insert(datei).second; });
        return dateien;
    }

    /// Parameters: with `alsText`, each file's block is written as soon as it and all before it are done.
    std::vector<Dateiergebnis> pruefeAlle(const std::vector<std::string>& dateien,
                                          const std::vector<const Pruefung*>& auswahl,
                                          const Optionen& optionen, bool alsText) {
        Fortschritt fortschritt(!optionen.quiet);
        Pruefauftrag auftrag{dateien,    auswahl,      std::chrono::duration<double>(optionen.zeitlimit),
                             &vorgaben_, optionen.log, zugleich_};
        auftrag.takt = [&](std::size_t nummer, const Pruefung& pruefung) {
            fortschritt.zeige(satz("{1}/{2} checking {3}: {4}", nummer + 1, dateien.size(),
                                   einzeilig(dateien[nummer]), pruefung.name));
        };
        const auto schreibe = [&](const std::string& text) {
            if (!alsText || optionen.quiet || text.empty())
                return;
            fortschritt.zeige("");
            gibAus(text);
        };
        std::size_t fertige = 0;
        auftrag.fertig = [&](Dateiergebnis datei) {
            ++fertige;
            verschaerfe(datei);
            // A file that cannot be read is an error message.
            if (!datei.istUnlesbar && !(nurAuffaellige_ && istUnauffaellig(datei)))
                schreibe((bloecke_++ > 0 ? "\n" : "") +
                         dateitext(datei, fertige, dateien.size(), Farben(stdout)));
        };
        auftrag.ganzFertig = [&, beginnt = true](Dateiergebnis datei) mutable {
            verschaerfe(datei);
            const std::string text = gemeinsamtext(datei, dateien.size(), Farben(stdout));
            if (!text.empty() && std::exchange(beginnt, false))
                schreibe((bloecke_++ > 0 ? "\n" : "") +
                         Farben(stdout)(Farbe::FETT, uebersetzt("All files together")) + "\n");
            schreibe(text);
        };
        return pruefe(auftrag);
    }

    std::vector<std::string> dateien_, nur_, ohne_;
    Vorgaben vorgaben_;
    std::string format_;
    std::size_t zugleich_ = verfuegbareProzessoren();
    std::size_t bloecke_ = 0; ///< written so far
    bool liste_ = false, streng_ = false, anderswo_ = false, nurAuffaellige_ = false;
};

} // namespace

std::unique_ptr<Befehl> macheCheck() { return std::make_unique<Check>(); }

} // namespace werkzeug
