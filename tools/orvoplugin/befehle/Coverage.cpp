// orvoplugin coverage: which plugin serves which sub-case type in which year, and what is not served.

#include "befehle/Befehl.h"
#include "befehle/Befehle.h"
#include "deckung/Deckungsbericht.h"
#include "deckung/Deckungsseite.h"
#include "kern/Berichtsteile.h"
#include "kern/Dateischreiber.h"
#include "kern/Eingabe.h"
#include "kern/Lebenslauf.h"
#include "kern/Sammler.h"

#include <CLI/CLI.hpp>

namespace werkzeug {

namespace {

class Coverage : public Befehl {
public:
    void beschreibe(CLI::App& unterbefehl) override {
        unterbefehl
            .add_option("--type", typ_, "This kind of extension only: number, name or a part of the name")
            ->type_name("TYPE");
        unterbefehl
            .add_option("--require", anforderung_,
                        "File of cells that must be served, one a line: TYPE SUB-CASE-TYPE PERIOD")
            ->type_name("FILE");
        unterbefehl
            .add_option("--html", seite_, "Write the matrix to this file, too, as a page for a browser")
            ->type_name("FILE");
    }

    bool nimmtBeschreibungen() const override { return true; }
    bool probiert() const override { return true; }

    Ausgang fuehreAus(const Optionen& optionen) override {
        Deckungswunsch wunsch;
        if (!typ_.empty())
            wunsch.typ = liesTyp(typ_);
        if (!anforderung_.empty()) {
            wunsch.anforderung = anforderung_;
            wunsch.zellen = liesAnforderung(anforderung_);
        }
        Bestand bestand = sammle(optionen, deckungsauftrag(wunsch));
        const bool istGestorben = optionen.probe && probiereServices(bestand, bestand.inhaber(), optionen);
        meldeLeere(optionen, bestand);
        const Json dokument = deckungsbericht(bestand, wunsch);
        if (!seite_.empty())
            schreibeDatei(seite_, deckungAlsSeite(dokument, optionen));
        gibAus(optionen, dokument, deckungAlsText);

        Ausgang ausgang = ausgangVon(bestand);
        if (istGestorben)
            ausgang = schwerster(ausgang, Ausgang::ABGESTUERZT);
        if (!dokument["broken"].empty() ||
            (wunsch.typ && dokument["types"].empty())) // the requested kind was not found
            ausgang = schwerster(ausgang, Ausgang::BEFUNDE);
        if (!dokument["required"].is_null() && dokument["required"]["missing"] != 0)
            ausgang = schwerster(ausgang, Ausgang::DECKUNG_FEHLT);
        return ausgang;
    }

private:
    std::string typ_;
    std::string anforderung_;
    std::string seite_;
};

} // namespace

std::unique_ptr<Befehl> macheCoverage() { return std::make_unique<Coverage>(); }

} // namespace werkzeug
