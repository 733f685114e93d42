// orvoplugin diff DIR_A DIR_B: what another plugin directory, or one copied over this one, would change.

#include "befehle/Befehl.h"
#include "befehle/Befehle.h"
#include "deckung/Deckungsbericht.h"
#include "kern/Berichtsteile.h"
#include "kern/Dateischreiber.h"
#include "kern/Sammler.h"
#include "vergleich/Vergleichsbericht.h"
#include "vergleich/Zusammenlegung.h"

#include <orvoutil/PathUtil.h>

#include <CLI/CLI.hpp>

#include <optional>

namespace werkzeug {

namespace {

Bestand sammleIn(const std::string& verzeichnis, Optionen optionen) {
    optionen.home.clear();
    optionen.dir = verzeichnis;
    Auftrag auftrag;
    auftrag.deckung = true;
    return sammle(optionen, auftrag);
}

/// Replaces paths in the temporary directory by the paths of the originals.
void stelleHerkunftHer(Json& dokument, const Zusammenlegung& zusammenlegung) {
    for (Json& eintrag : dokument["files"]) {
        Json& nachher = eintrag["after"];
        if (nachher.is_null())
            continue;
        const std::string unterpfad = eintrag["file"];
        const auto stelleHer = [&](Json& text) {
            if (text.is_string())
                text = jsonText(zusammenlegung.mitHerkunft(text, unterpfad));
        };
        stelleHer(nachher["path"]);
        stelleHer(nachher["output"]);
        if (!nachher["reason"].is_null())
            stelleHer(nachher["reason"]["message"]);
    }
}

class Diff : public Befehl {
public:
    void beschreibe(CLI::App& unterbefehl) override {
        unterbefehl.add_option("DIR_A", a_, "Plugin directory as it is")->required();
        unterbefehl.add_option("DIR_B", b_, "Plugin directory to compare it with")->required();
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
            throw AufrufFehler("diff takes its two directories as arguments, and neither --home nor --dir");
        const std::string a = orvo::orvoutil::getAbsolutePath(a_);
        const std::string b = orvo::orvoutil::getAbsolutePath(b_);
        const Bestand vorher = sammleIn(a, optionen);
        std::optional<Zusammenlegung> zusammenlegung;
        if (zusammenlegen_)
            zusammenlegung.emplace(a, b);
        const Bestand nachher = sammleIn(zusammenlegung ? zusammenlegung->pfad() : b, optionen);

        Json dokument = vergleichsbericht({a, vorher}, {b, nachher}, zusammenlegen_);
        if (zusammenlegung)
            stelleHerkunftHer(dokument, *zusammenlegung);
        zusammenlegung.reset();
        if (!seite_.empty())
            schreibeDatei(seite_, vergleichAlsSeite(dokument, deckungsbericht(vorher, {}),
                                                    deckungsbericht(nachher, {}), optionen));
        gibAus(optionen, dokument, vergleichAlsText);

        // A file refused on both sides is no difference.
        Ausgang ausgang = dokument["totals"]["findings"] == 0 ? Ausgang::GUT : Ausgang::BEFUNDE;
        for (const Bestand* const seite : {&vorher, &nachher})
            if (const Ausgang umstaende = ausgangVon(*seite); umstaende != Ausgang::BEFUNDE)
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
