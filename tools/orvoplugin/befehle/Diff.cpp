// orvoplugin diff DIR_A DIR_B: what another plugin directory, or one copied over this one, would change.

#include "befehle/Befehl.h"
#include "befehle/Befehle.h"
#include "bestandsliste/Bestandsliste.h"
#include "bestandsliste/Inhalt.h"
#include "deckung/Deckungsbericht.h"
#include "kern/Berichtsteile.h"
#include "kern/Dateischreiber.h"
#include "kern/Sammler.h"
#include "vergleich/Vergleichsbericht.h"
#include "vergleich/Zusammenlegung.h"

#include <orvoutil/PathUtil.h>

#include <CLI/CLI.hpp>

#include <optional>
#include <utility>

namespace werkzeug {

namespace {

Bestand sammleIn(const std::string& pfad, Optionen optionen) {
    if (istBestandsliste(pfad))
        return liesBestandsliste(pfad);
    optionen.home.clear();
    optionen.dir = pfad;
    Auftrag auftrag;
    auftrag.deckung = true;
    auftrag.exporteVon = "*";
    Bestand bestand = sammle(optionen, auftrag);
    liesInhalte(bestand, !optionen.quiet);
    return bestand;
}

/// Replaces paths in the temporary directory by the paths of the originals.
void stelleHerkunftHer(Json& dokument, const Zusammenlegung& zusammenlegung) {
    for (Json& eintrag : dokument["files"]) {
        Json& nachher = eintrag["after"];
        if (nachher.is_null())
            continue;
        const std::string unterpfad = eintrag["file"];
        for (const char* const wo : {"/path", "/output", "/reason/message"})
            if (const Json::json_pointer text(wo); nachher.contains(text) && nachher[text].is_string())
                nachher[text] = jsonText(zusammenlegung.mitHerkunft(nachher[text], unterpfad));
    }
}

class Diff : public Befehl {
public:
    void beschreibe(CLI::App& unterbefehl) override {
        unterbefehl.add_option("DIR_A", a_, "Plugin directory as it is, or its lock file")->required();
        unterbefehl.add_option("DIR_B", b_, "Plugin directory to compare it with, or its lock file")
            ->required();
        unterbefehl.add_flag("--merge", zusammenlegen_,
                             "Compare DIR_A with what it would be if DIR_B were copied over it");
        unterbefehl
            .add_option("--html", seite_, "Write before and after to this file, too, as a page for a browser")
            ->type_name("FILE");
    }

    bool nimmtVerzeichnisOptionen() const override { return false; }
    bool nimmtBeschreibungen() const override { return true; }

    Ausgang fuehreAus(const Optionen& optionen) override {
        if (!optionen.home.empty() || !optionen.dir.empty())
            throw AufrufFehler(
                satz("diff takes its two directories as arguments, and neither --home nor --dir"));
        const std::string a = orvo::orvoutil::getAbsolutePath(a_);
        const std::string b = orvo::orvoutil::getAbsolutePath(b_);
        const bool listeA = istBestandsliste(a);
        const bool listeB = istBestandsliste(b);
        if ((listeA || listeB) && (zusammenlegen_ || !seite_.empty()))
            throw AufrufFehler(satz("diff takes {1} with two directories only, and {2} is a file",
                                    zusammenlegen_ ? "--merge" : "--html", einzeilig(listeA ? a : b)));
        const Bestand vorher = sammleIn(a, optionen);
        std::optional<Zusammenlegung> zusammenlegung;
        if (zusammenlegen_)
            zusammenlegung.emplace(a, b);
        const Bestand nachher = sammleIn(zusammenlegung ? zusammenlegung->pfad() : b, optionen);

        Json dokument = vergleichsbericht({a, vorher, listeA}, {b, nachher, listeB}, zusammenlegen_);
        if (zusammenlegung)
            stelleHerkunftHer(dokument, *zusammenlegung);
        zusammenlegung.reset();
        if (!seite_.empty())
            schreibeDatei(seite_, vergleichAlsSeite(dokument, deckungsbericht(vorher, {}),
                                                    deckungsbericht(nachher, {}), optionen));
        gibAus(optionen, dokument, vergleichAlsText);

        // A file refused on both sides is no difference.
        Ausgang ausgang = dokument["totals"]["findings"] == 0 ? Ausgang::GUT : Ausgang::BEFUNDE;
        for (const auto& [seite, istListe] : {std::pair(&vorher, listeA), std::pair(&nachher, listeB)})
            if (const Ausgang umstaende = istListe ? Ausgang::GUT : ausgangVon(*seite);
                umstaende != Ausgang::BEFUNDE)
                ausgang = schwerster(ausgang, umstaende);
        return ausgang;
    }

private:
    std::string a_;
    std::string b_;
    std::string seite_;
    bool zusammenlegen_ = false;
};

} // namespace

std::unique_ptr<Befehl> macheDiff() { return std::make_unique<Diff>(); }

} // namespace werkzeug
