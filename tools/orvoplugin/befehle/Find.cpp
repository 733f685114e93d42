// orvoplugin find TYPE [SUB-CASE-TYPE [PERIOD]]: which extension answers.

#include "befehle/Befehl.h"
#include "befehle/Befehle.h"
#include "kern/Antwort.h"
#include "kern/Berichtsteile.h"
#include "kern/Eingabe.h"
#include "kern/Lebenslauf.h"
#include "kern/Naehe.h"
#include "kern/Sammler.h"

#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <CLI/CLI.hpp>

#include <set>
#include <vector>

namespace werkzeug {

namespace {

Unterfallart alsUnterfallart(const UnterfallartFakt& fakt) {
    return fakt.nummer < 0 && fakt.nummer != Unterfallart::OHNE_NUMMER ? Unterfallart(fakt.nummer)
                                                                       : Unterfallart(fakt.name.c_str());
}

std::string alsText(const Json& dokument, const Farben& farben) {
    const std::string umstaende = umstaendeAlsText(dokument, farben);
    if (dokument["answers"].empty())
        return satz("nobody answers") +
               rueckfrage(dokument["did_you_mean"].is_null() ? "" : zeige(dokument["did_you_mean"])) + "\n" +
               umstaende;
    Tabelle tabelle({satz("TYPE"), satz("SUB-CASE TYPE"), satz("PERIOD"), satz("KEY"), satz("VERSION"),
                     satz("FILE"), satz("FACTORY")});
    for (const Json& antwort : dokument["answers"]) {
        tabelle.zeile({zeige(antwort["type"]["label"]), zeige(antwort["sub_case_type"]["name"]),
                       zeige(antwort["period"]["label"]), zeige(antwort["match"]),
                       zeige(antwort["plugin"]["product_version"]), zeige(antwort["plugin"]["file"]),
                       zeige(antwort["factory"])});
        if (const std::string mangel = servicemangelAlsText(antwort["service"]); !mangel.empty())
            tabelle.bemerkung(farben(Farbe::ROT, mangel));
        for (const Json& verdraengter : antwort["displaced"])
            tabelle.bemerkung(satz("instead of {1}: {2}", anbieterAlsText(verdraengter["plugin"]),
                                   zeige(verdraengter["explanation"])));
    }
    return tabelle.alsText(farben) + umstaende;
}

/// "Predefined sub-case types:" and their names, in lines for the help.
std::string vordefinierteAlsText() {
    constexpr std::size_t kZeile = 78;
    std::string text = uebersetzt(std::string("Predefined sub-case types:")), zeile;
    for (const std::string& name : vordefinierteUnterfallarten()) {
        if (zeile.empty() || zeile.size() + name.size() + 1 > kZeile) {
            text += zeile + "\n";
            zeile = " ";
        }
        zeile += " " + name;
    }
    return text + zeile + "\n\n";
}

class Find : public Befehl {
public:
    void beschreibe(CLI::App& unterbefehl) override {
        unterbefehl.add_option("TYPE", typ_, "Kind of extension: number, name or a part of the name")
            ->required();
        unterbefehl.add_option("SUB-CASE-TYPE", unterfallart_, "Sub-case type: number or name");
        unterbefehl.add_option("PERIOD", zeitraum_, "2009, 2009-05, 2009Q2, 2009-05-31 or VZ_UNABHAENGIG");
        unterbefehl.footer(vordefinierteAlsText());
    }

    bool nimmtBeschreibungen() const override { return true; }
    bool probiert() const override { return true; }

    Ausgang fuehreAus(const Optionen& optionen) override {
        const std::int32_t typ = liesTyp(typ_);
        const std::string unterfallart = liesUnterfallart(unterfallart_);
        Auftrag auftrag;
        auftrag.exporteVon = "*";
        if (!zeitraum_.empty()) {
            const Zeitraumtext zeitraum = liesZeitraum(zeitraum_);
            auftrag.frage = Frage{typ, unterfallart, zeitraum.text, zeitraum.format};
        }
        Bestand bestand = sammle(optionen, auftrag);

        std::vector<const SchluesselFakt*> funde;
        if (bestand.antwort) {
            if (bestand.antwort->treffer != RegisterAuskunft::KEINER)
                funde.push_back(&bestand.schluessel[bestand.antwort->schluessel]);
        } else {
            for (const SchluesselFakt& schluessel : bestand.schluessel)
                if (schluessel.typ == typ &&
                    (unterfallart_.empty() || hatKeinePaare(typ) ||
                     alsUnterfallart(schluessel.unterfallart) == Unterfallart(unterfallart.c_str())))
                    funde.push_back(&schluessel);
        }
        std::set<ErweiterungsOrt> inhaber;
        for (const SchluesselFakt* const schluessel : funde)
            inhaber.insert(schluessel->inhaber);
        const bool istGestorben = optionen.probe && probiereServices(bestand, inhaber, optionen);
        bool istZuHaben = !funde.empty();
        Json antworten = Json::array();
        for (const SchluesselFakt* const schluessel : funde) {
            antworten.push_back(antwortAlsJson(bestand, *schluessel,
                                               bestand.antwort ? bestand.antwort->treffer
                                                               : std::int32_t{RegisterAuskunft::KEINER}));
            istZuHaben = istZuHaben && bestand.erweiterung(schluessel->inhaber).istZuHaben();
        }

        Json dokument = jsonKopf("find", bestand.suchpfad);
        dokument["query"] = {
            {"type", typAlsJson(typ, erweiterungTypName(static_cast<tag_erweiterung_typ>(typ)))},
            {"sub_case_type", unterfallart_.empty() ? Json(nullptr) : jsonText(unterfallart)},
            {"period", bestand.antwort ? alsJson(bestand.antwort->gefragt) : Json(nullptr)}};
        const bool gefunden = !antworten.empty();
        const std::string gemeint =
            gefunden ? std::string() : gemeinteUnterfallart(unterfallart, bediente(bestand));
        dokument["did_you_mean"] = gemeint.empty() ? Json(nullptr) : jsonText(gemeint);
        meldeLeere(optionen, bestand);
        dokument["found"] = gefunden;
        dokument["answers"] = std::move(antworten);
        dokument["not_loaded"] = ungewisseAlsJson(bestand);
        dokument["unreadable_directories"] = unlesbareAlsJson(bestand);
        gibAus(optionen, dokument, alsText);

        // Refused files are no findings here, but the answer may be incomplete without files that crashed.
        const Ausgang umstaende = ausgangVon(bestand);
        const Ausgang ausgang = istGestorben ? Ausgang::ABGESTUERZT
                                : istZuHaben ? Ausgang::GUT
                                             : Ausgang::BEFUNDE;
        return umstaende == Ausgang::BEFUNDE ? ausgang : schwerster(ausgang, umstaende);
    }

private:
    std::string typ_;
    std::string unterfallart_;
    std::string zeitraum_;
};

} // namespace

std::unique_ptr<Befehl> macheFind() { return std::make_unique<Find>(); }

} // namespace werkzeug
