// orvoplugin check FILE...: whether plugins fit the library and their hosts.

#include "befehle/Befehl.h"
#include "befehle/Befehle.h"
#include "check/CheckAusgabe.h"
#include "check/PluginDateien.h"
#include "check/Pruefstand.h"
#include "kern/Anzeige.h"
#include "kern/Terminal.h"

#include <orvoutil/Einstellungen.h>

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>
#include <set>
#include <string>
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
        unterbefehl.add_flag("--strict", streng_, "Count a warning as a failure");
    }

    Ausgang fuehreAus(const Optionen& optionen) override {
        const std::vector<const Pruefung*> auswahl = waehle(nur_, ohne_);
        if (liste_)
            return zeigeListe(auswahl, optionen);
        const std::vector<std::string> dateien = alleDateien(optionen);
        // child processes inherit it
        orvo::orvoutil::Einstellungen().setze("basis.resident_plugins", optionen.resident);
        std::vector<Dateiergebnis> ergebnisse = pruefeAlle(dateien, auswahl, optionen);
        if (streng_)
            verschaerfe(ergebnisse);
        gibAus(optionen, ergebnisdokument(ergebnisse), ergebnistext);
        schreibeMeldungen(std::cerr, ergebnisse, optionen.quiet);
        return ausgangVon(ergebnisse);
    }

private:
    static void verschaerfe(std::vector<Dateiergebnis>& ergebnisse) {
        for (Dateiergebnis& datei : ergebnisse)
            for (Pruefergebnis& ergebnis : datei.ergebnisse)
                if (ergebnis.befund.urteil == Urteil::WARNUNG)
                    ergebnis.befund.urteil = Urteil::DURCHGEFALLEN;
    }

    static Ausgang zeigeListe(const std::vector<const Pruefung*>& auswahl, const Optionen& optionen) {
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
            throw AufrufFehler("check: neither a FILE nor a directory is given");
        std::set<std::string> gesehene;
        std::erase_if(dateien, [&](const std::string& datei) { return !gesehene.insert(datei).second; });
        return dateien;
    }

    static std::vector<Dateiergebnis> pruefeAlle(const std::vector<std::string>& dateien,
                                                 const std::vector<const Pruefung*>& auswahl,
                                                 const Optionen& optionen) {
        Fortschritt fortschritt(!optionen.quiet);
        return pruefe({dateien, auswahl, std::chrono::duration<double>(optionen.zeitlimit), optionen.log,
                       [&](const std::string& pfad, const Pruefung& pruefung) {
                           fortschritt.zeige("checking " + einzeilig(pfad) + ": " + pruefung.name);
                       }});
    }

    std::vector<std::string> dateien_, nur_, ohne_;
    bool liste_ = false, streng_ = false;
};

} // namespace

std::unique_ptr<Befehl> macheCheck() { return std::make_unique<Check>(); }

} // namespace werkzeug
