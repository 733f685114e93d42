// orvoplugin why: the chain of decisions about a file or a look-up.

#include "befehle/Befehl.h"
#include "befehle/Befehle.h"
#include "befehle/Dateisuche.h"
#include "kern/Antwort.h"
#include "kern/Berichtsteile.h"
#include "kern/Eingabe.h"
#include "kern/Gruende.h"
#include "kern/Sammler.h"

#include <orvoplugin/beschreibung/Beschreibung.h>
#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>
#include <orvoutil/PathUtil.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <set>

namespace werkzeug {

namespace {

/// The chain: the steps that succeeded, and the one that failed, if any.
class Kette {
public:
    void ja(const char* schritt, const std::string& text) { nimmAuf(schritt, true, text); }
    void nein(const char* schritt, const std::string& text) { nimmAuf(schritt, false, text); }
    Json json() && { return std::move(schritte_); }

private:
    void nimmAuf(const char* schritt, bool gut, const std::string& text) {
        schritte_.push_back({{"step", schritt}, {"ok", gut}, {"text", text}});
    }
    Json schritte_ = Json::array();
};

Json schluss(const char* code, const std::string& text, const std::string& rat) {
    return {{"code", code}, {"text", text}, {"advice", rat}};
}

// --- Why a file ---

/// The steps of loading, in their order, with the meaning of success.
struct Ladestufe {
    const char* name;
    const char* gelungen;
    Grund gruende[2]; ///< for ending there
};
constexpr Ladestufe kLadestufen[] = {
    {"walk", "the walk through the plugin directory comes by it", {Grund::KEINER, Grund::KEINER}},
    {"filter",
     "its name is that of a plugin, and not on the block list",
     {Grund::SPERRLISTE, Grund::KEINE_ENDUNG}},
    {"file_check",
     "the file is a whole library for this system and release",
     {Grund::DATEIPRUEFUNG, Grund::KEINER}},
    {"open", "the system's loader opens it", {Grund::OEFFNEN, Grund::KEINER}},
    {"types_entry", "it exports orvo_plugin_get_types", {Grund::OHNE_TYPEN, Grund::KEINER}},
    {"types", "which names its interfaces", {Grund::AUSNAHME_TYPEN, Grund::LEERE_TYPEN}},
    {"interface", "and these are known here", {Grund::PLUGINVERSION, Grund::KEINER}},
    {"initialize_entry", "it exports orvo_plugin_initialize", {Grund::OHNE_INITIALISIERUNG, Grund::KEINER}},
    {"initialize",
     "with which it describes itself",
     {Grund::AUSNAHME_INITIALISIERUNG, Grund::INITIALISIERUNG}},
    {"register", "its extensions are filed in the registry", {Grund::BEOBACHTER, Grund::KEINER}},
};

/// The text of a reason: the library's message, or the meaning of the code.
std::string text(const DateiFakt& datei) {
    return datei.meldung.empty() ? std::string(erklaerung(datei.grund)) : einzeilig(datei.meldung);
}

/// Returns: whether the file was loaded.
bool verfolge(Kette& kette, const DateiFakt& datei) {
    const bool imWeg = std::string_view(stufe(datei.grund)) == "walk";
    const bool imProzess = std::string_view(stufe(datei.grund)) == "process";
    for (const Ladestufe& s : kLadestufen) {
        const bool hier =
            datei.grund != Grund::KEINER &&
            (std::find(std::begin(s.gruende), std::end(s.gruende), datei.grund) != std::end(s.gruende) ||
             (imWeg && std::string_view(s.name) == "walk"));
        if (hier) {
            kette.nein(s.name, text(datei));
            return false;
        }
        if (imProzess && std::string_view(s.name) == "open") { // from here on its code may run
            kette.nein("process", text(datei));
            return false;
        }
        kette.ja(s.name, s.gelungen);
    }
    return true;
}

struct Schluessellage {
    Json gehalten = Json::array();
    Json verloren = Json::array();
};

Schluessellage schluesselVon(const Bestand& bestand, std::uint32_t datei) {
    Schluessellage lage;
    for (const SchluesselFakt& schluessel : bestand.schluessel) {
        if (schluessel.inhaber.datei == datei)
            lage.gehalten.push_back(schluesselAlsJson(schluessel));
        for (const SchluesselEreignis& ereignis : schluessel.ereignisse) {
            const bool abgewiesen = ereignis.art == SchluesselEreignis::Art::ABGEWIESEN;
            const bool verdraengt = ereignis.art == SchluesselEreignis::Art::VERDRAENGT;
            const ErweiterungsOrt& verlierer = verdraengt ? ereignis.gegen : ereignis.wer;
            if ((!abgewiesen && !verdraengt) || verlierer.datei != datei)
                continue;
            Json verloren = schluesselAlsJson(schluessel);
            verloren["lost_to"] = anbieterAlsJson(bestand, verdraengt ? ereignis.wer : ereignis.gegen);
            verloren["rule"] = regelcode(ereignis.regel);
            verloren["explanation"] = regelsatz(ereignis.regel);
            lage.verloren.push_back(std::move(verloren));
        }
    }
    return lage;
}

Json schlussFuerGeladene(const DateiFakt& datei, const Schluessellage& lage) {
    if (datei.plugin->erweiterungen.empty())
        return schluss("no_extensions", "The plugin is loaded, but offers nothing.",
                       "Ask its author whether that is meant; orvo_plugin_initialize adds no extension.");
    const bool uebergangen =
        std::any_of(datei.plugin->erweiterungen.begin(), datei.plugin->erweiterungen.end(),
                    [](const ErweiterungFakt& e) { return e.uebergangen; });
    if (lage.gehalten.empty() && lage.verloren.empty())
        return uebergangen
                   ? schluss("passed_over",
                             "The plugin is loaded, but the registry passed its extensions over: "
                             "their class serves no sub-case types.",
                             "Report this to the plugin's author.")
                   : schluss("no_keys",
                             "The plugin is loaded, but its extensions name no period, and so get no key.",
                             "Report this to the plugin's author: each sub-case type needs its periods.");
    if (lage.gehalten.empty())
        return schluss(
            "all_keys_lost",
            "The plugin is loaded, but never answers: it lost all its keys to other plugins.",
            "If it should answer, give it a higher product version than theirs, or take the others away.");
    if (!lage.verloren.empty())
        return schluss("some_keys_lost", "The plugin is loaded and answers, but not for all that it offers.",
                       "If it should answer for the keys it lost, give it a higher product version than the "
                       "plugins that "
                       "hold them, or take those away.");
    return schluss("answers", "The plugin is loaded and answers for all that it offers.",
                   "Nothing needs to be done.");
}

// --- Why a look-up ---

/// The other years and kinds that are served for the sub-case type.
struct Nachbarschaft {
    std::set<std::string> zeitraeume;
    std::set<std::string> arten;
};

Nachbarschaft nachbarn(const Bestand& bestand, std::int32_t typ, const std::string& unterfallart) {
    Nachbarschaft nachbarn;
    const Unterfallart gesucht(unterfallart.c_str());
    for (const SchluesselFakt& schluessel : bestand.schluessel) {
        if (Unterfallart(schluessel.unterfallart.name.c_str()) != gesucht)
            continue;
        if (schluessel.typ == typ)
            nachbarn.zeitraeume.insert(anzeige(schluessel.zeitraum));
        else
            nachbarn.arten.insert(kurzerTypName(schluessel.typName));
    }
    return nachbarn;
}

std::string aufgezaehlt(const std::set<std::string>& texte) {
    std::string liste;
    for (const std::string& eintrag : texte)
        liste += (liste.empty() ? "" : ", ") + eintrag;
    return liste;
}

/// Files that were not loaded and might have answered.
Json nichtGeladene(const Bestand& bestand) {
    Json liste = Json::array();
    for (const DateiFakt& datei : bestand.dateien)
        if (datei.zustand >= Zustand::ABGELEHNT)
            liste.push_back(zeileAlsJson(bestand, datei));
    return liste;
}

/// All kinds that have an entry.
std::set<std::string> bedienteArten(const Bestand& bestand) {
    std::set<std::string> arten;
    for (const SchluesselFakt& schluessel : bestand.schluessel)
        arten.insert(kurzerTypName(schluessel.typName));
    return arten;
}

Json schlussOhneAntwort(const Bestand& bestand, std::int32_t typ, const Nachbarschaft& nachbarschaft,
                        std::size_t nichtGeladen) {
    const std::string rat = nichtGeladen == 0
                                ? "Install a plugin that serves it."
                                : "See to the files that were not loaded first; one of them may serve "
                                  "it. Else install a plugin that does.";
    if (hatKeinePaare(typ) && !bestand.schluessel.empty())
        return schluss("other_types",
                       "No loaded plugin serves this kind of extension; served are " +
                           aufgezaehlt(bedienteArten(bestand)) + ".",
                       rat);
    if (!nachbarschaft.zeitraeume.empty())
        return schluss("other_periods",
                       "No loaded plugin serves that period; served are " +
                           aufgezaehlt(nachbarschaft.zeitraeume) + ".",
                       rat);
    if (!nachbarschaft.arten.empty())
        return schluss("other_types",
                       "No loaded plugin serves that sub-case type with this kind of extension; it is served "
                       "by " +
                           aufgezaehlt(nachbarschaft.arten) + ".",
                       rat);
    if (bestand.schluessel.empty())
        return schluss("nothing_registered", "No plugin is loaded that serves anything.",
                       nichtGeladen == 0 ? "Put plugins into " + einzeilig(bestand.suchpfad) +
                                               ", or name another directory with "
                                               "--home or --dir."
                                         : rat);
    return schluss("unknown_sub_case_type", "No loaded plugin serves that sub-case type.", rat);
}

// --- What the descriptions in the files change ---

bool istBeschrieben(const Bestand& bestand, const DateiFakt& datei) {
    return liesBeschreibung(bestand.fundort(datei)).stand == Beschreibungsfund::GEFUNDEN;
}

/// What clients find that take the descriptions.
Bestand sammleMitBeschreibungen(Optionen optionen, const Auftrag& auftrag = {}) {
    optionen.beschreibungen = Beschreibungen::GENUTZT;
    optionen.log.clear();
    return sammle(optionen, auftrag);
}

constexpr char kFalscheBeschreibung[] = "described_otherwise";
constexpr char kRat[] =
    "Have \"orvoplugin describe\" write what the plugin says into its file, or have clients ask: "
    "unset basis.plugin_beschreibungen. \"orvoplugin check --only description\" names "
    "what differs.";

/// Those of the keys that are not among the others.
std::set<std::string> ohne(const Json& schluessel, const Json& andere) {
    std::set<std::string> uebrige;
    for (const Json& einer : schluessel)
        if (std::find(andere.begin(), andere.end(), einer) == andere.end())
            uebrige.insert(schluesselAlsText(einer));
    return uebrige;
}

/// The step about a file with a description. Returns: the conclusion if it says otherwise than the plugin, else null.
Json vergleicheDatei(Kette& kette, const Bestand& gefragt, const Bestand& beschrieben, std::uint32_t platz) {
    const DateiFakt& datei = gefragt.dateien[platz];
    const auto andere = std::find_if(beschrieben.dateien.begin(), beschrieben.dateien.end(),
                                     [&](const DateiFakt& d) { return d.pfad == datei.pfad; });
    if (andere == beschrieben.dateien.end() || datei.plugin == andere->plugin) {
        kette.ja("description", "the description in it is what the plugin says");
        return nullptr;
    }
    const Json hier = schluesselVon(gefragt, platz).gehalten;
    const Json dort =
        schluesselVon(beschrieben, static_cast<std::uint32_t>(andere - beschrieben.dateien.begin())).gehalten;
    const std::set<std::string> mehr = ohne(dort, hier), weniger = ohne(hier, dort);
    std::string text = "the description in it is not what the plugin says";
    if (!mehr.empty())
        text += "; by it, the plugin also answers for " + aufgezaehlt(mehr);
    if (!weniger.empty())
        text += "; by it, the plugin does not answer for " + aufgezaehlt(weniger);
    kette.nein("description", text);
    return schluss(
        kFalscheBeschreibung,
        "Clients that take descriptions go by that in the file, which is not what the plugin says.", kRat);
}

/// The answer with all that a client notices of it; null if there is none.
Json antwortVon(const Bestand& bestand) {
    const AntwortFakt& antwort = bestand.antwort.value();
    if (antwort.treffer == RegisterAuskunft::KEINER)
        return nullptr;
    Json json = antwortAlsJson(bestand, bestand.schluessel[antwort.schluessel], antwort.treffer);
    json.erase("displaced");
    return json;
}

/// The step about a look-up that the descriptions answer otherwise. Returns: the conclusion then, else null.
Json vergleicheAntwort(Kette& kette, const Bestand& gefragt, const Bestand& beschrieben) {
    const Json dort = antwortVon(beschrieben);
    if (antwortVon(gefragt) == dort)
        return nullptr;
    const std::string wer = dort.is_null() ? "nobody" : anbieterAlsText(dort["plugin"]);
    kette.nein("description",
               "by the descriptions in the files, " + wer + " answers; the plugins themselves say otherwise");
    return schluss(kFalscheBeschreibung,
                   "Clients that take descriptions get another answer: " + wer +
                       (dort.is_null() ? " answers." : " answers, by a key that comes from a description."),
                   kRat);
}

// --- The text ---

constexpr std::size_t kHoechstens = 40; ///< keys that the text shows; all are in the JSON output

std::string alsText(const Json& dokument, const Farben& farben) {
    std::string text;
    std::size_t nummer = 0;
    for (const Json& schritt : dokument["steps"]) {
        const bool gut = schritt["ok"];
        text += std::to_string(++nummer) + ". " +
                (gut ? farben(Farbe::GRUEN, "yes") : farben(Farbe::ROT, "no ")) + "  " +
                zeige(schritt["text"]) + "\n";
    }
    const auto liste = [&](const Json& schluessel, const std::string& titel, auto&& zeile) {
        if (schluessel.is_null() || schluessel.empty())
            return;
        text += "\n" + farben(Farbe::FETT, titel) + "\n";
        for (std::size_t i = 0; i < schluessel.size(); ++i) {
            if (i == kHoechstens) {
                text += "  and " + std::to_string(schluessel.size() - i) + " more; --json has them all\n";
                break;
            }
            text += "  " + zeile(schluessel[i]) + "\n";
        }
    };
    liste(dokument["keys_held"], "Answers for", schluesselAlsText);
    liste(dokument["keys_lost"], "Does not answer for", [](const Json& verloren) {
        return schluesselAlsText(verloren) + ", but " + anbieterAlsText(verloren["lost_to"]) +
               " does: " + zeige(verloren["explanation"]);
    });
    if (const Json& antwort = dokument["answer"]; !antwort.is_null())
        liste(antwort["displaced"], "Offer it too, and lost", [](const Json& verdraengter) {
            return anbieterAlsText(verdraengter["plugin"]) + " to " +
                   anbieterAlsText(verdraengter["lost_to"]) + ": " + zeige(verdraengter["explanation"]);
        });
    liste(dokument["not_loaded"], "Not loaded", [](const Json& zeile) {
        return zeige(zeile["file"]) + ", " + zeige(zeile["state"]) + ": " + begruendung(zeile);
    });
    if (!dokument["unreadable_directories"].empty())
        text += "\n" + unlesbareAlsText(dokument["unreadable_directories"], farben);
    else
        text += "\n";
    return text + farben(Farbe::FETT, zeige(dokument["conclusion"]["text"])) + "\n" +
           zeige(dokument["conclusion"]["advice"]) + "\n";
}

// --- The command ---

class Why : public Befehl {
public:
    void beschreibe(CLI::App& unterbefehl) override {
        unterbefehl.add_option("FILE|TYPE", erstes_, "A file, as for \"show\"; or a kind of extension")
            ->required();
        unterbefehl.add_option("SUB-CASE-TYPE", unterfallart_, "Sub-case type: number or name");
        unterbefehl.add_option("PERIOD", zeitraum_, "2009, 2009-05, 2009Q2, 2009-05-31 or VZ_UNABHAENGIG");
    }

    Ausgang fuehreAus(const Optionen& optionen) override {
        if (!unterfallart_.empty() && zeitraum_.empty())
            throw AufrufFehler("why takes a file, or a kind of extension, a sub-case type and a period");
        return unterfallart_.empty() ? warumDatei(optionen) : warumSchluessel(optionen);
    }

private:
    Ausgang warumDatei(const Optionen& optionen) const {
        const Bestand bestand = sammle(optionen);
        const std::optional<std::uint32_t> platz = findeDatei(bestand, erstes_);
        Json dokument = jsonKopf("why", bestand.suchpfad);
        dokument["question"] = {{"file", jsonText(erstes_)}};
        Kette kette;
        Ausgang ausgang = Ausgang::BEFUNDE;
        Schluessellage lage;
        Json ende;
        if (!platz) {
            kette.nein("found",
                       "there is no file " + einzeilig(erstes_) + " below " + einzeilig(bestand.suchpfad));
            ende = schluss(
                "not_found",
                "The library never sees the file: it looks below " + einzeilig(bestand.suchpfad) + " only.",
                "Copy the file there, or name the directory that it lies in with --home or --dir.");
        } else {
            const DateiFakt& datei = bestand.dateien[*platz];
            kette.ja("found", "there is a file " + einzeilig(bestand.fundort(datei)));
            if (verfolge(kette, datei)) {
                lage = schluesselVon(bestand, *platz);
                ende = schlussFuerGeladene(datei, lage);
                if (lage.gehalten.empty())
                    kette.nein("keys", "it holds no key, and so answers for nothing");
                else
                    kette.ja("keys", "it holds " + anzahl(lage.gehalten.size(), "key", "keys") +
                                         " and lost " + std::to_string(lage.verloren.size()));
                ausgang = lage.gehalten.empty() || !lage.verloren.empty() ? Ausgang::BEFUNDE : Ausgang::GUT;
            } else {
                ende = schluss(code(datei.grund), erklaerung(datei.grund), rat(datei.grund));
                ausgang = datei.zustand >= Zustand::ABGESTUERZT ? Ausgang::ABGESTUERZT : Ausgang::BEFUNDE;
            }
            if (istBeschrieben(bestand, datei))
                if (Json anders = vergleicheDatei(kette, bestand, sammleMitBeschreibungen(optionen), *platz);
                    !anders.is_null()) {
                    ende = std::move(anders);
                    ausgang = schwerster(ausgang, Ausgang::BEFUNDE);
                }
        }
        dokument["steps"] = std::move(kette).json();
        dokument["conclusion"] = std::move(ende);
        dokument["file"] = platz ? zeileAlsJson(bestand, bestand.dateien[*platz]) : Json(nullptr);
        dokument["keys_held"] = std::move(lage.gehalten);
        dokument["keys_lost"] = std::move(lage.verloren);
        dokument["answer"] = nullptr;
        dokument["not_loaded"] = nullptr;
        dokument["unreadable_directories"] = unlesbareAlsJson(bestand);
        gibAus(optionen, dokument, alsText);
        return ausgang;
    }

    Ausgang warumSchluessel(const Optionen& optionen) const {
        const std::int32_t typ = liesTyp(erstes_);
        const std::string typName = erweiterungTypName(static_cast<tag_erweiterung_typ>(typ));
        const std::string unterfallart = liesUnterfallart(unterfallart_);
        const Zeitraumtext zeitraum = liesZeitraum(zeitraum_);
        Auftrag auftrag;
        auftrag.frage = Frage{typ, unterfallart, zeitraum.text, zeitraum.format};
        auftrag.exporteVon = "*";
        const Bestand bestand = sammle(optionen, auftrag);
        const AntwortFakt& antwort = bestand.antwort.value();
        const bool gefunden = antwort.treffer != RegisterAuskunft::KEINER;

        Json dokument = jsonKopf("why", bestand.suchpfad);
        dokument["question"] = {{"type", typAlsJson(typ, typName)},
                                {"sub_case_type", jsonText(unterfallart)},
                                {"period", alsJson(antwort.gefragt)}};
        Kette kette;
        Json geladene = nichtGeladene(bestand);
        Json ende;
        const bool fuerAlles = hatKeinePaare(typ);
        const std::string wonach = kurzerTypName(typName) + (fuerAlles ? "" : " " + einzeilig(unterfallart));
        const bool ohneZeitraum = antwort.gefragt.jahr == 0;
        if (!ohneZeitraum && !fuerAlles) {
            const std::string jahr = wonach + " " + std::to_string(antwort.gefragt.jahr);
            if (antwort.treffer == RegisterAuskunft::GENAU ||
                antwort.treffer == RegisterAuskunft::GLEICHES_JAHR)
                kette.ja("key_of_the_year", "there is a key for " + jahr);
            else
                kette.nein("key_of_the_year", "there is no key for " + jahr);
        }
        if (ohneZeitraum || antwort.treffer == RegisterAuskunft::UNABHAENGIG || !gefunden) {
            const std::string wofuer =
                wonach + (fuerAlles ? ", for every sub-case type and period" : " for any period");
            if (gefunden)
                kette.ja("period_independent_key", "there is a key for " + wofuer);
            else
                kette.nein("period_independent_key", "there is no key for " + (fuerAlles ? wonach : wofuer));
        }
        Ausgang ausgang = Ausgang::BEFUNDE;
        dokument["answer"] = nullptr;
        if (gefunden) {
            const SchluesselFakt& schluessel = bestand.schluessel[antwort.schluessel];
            const ErweiterungFakt& erweiterung = bestand.erweiterung(schluessel.inhaber);
            dokument["answer"] = antwortAlsJson(bestand, schluessel, antwort.treffer);
            const std::string wer = anbieterAlsText(dokument["answer"]["plugin"]);
            kette.ja("holder", "it is held by " + wer);
            if (erweiterung.factoryExport == Export::NEIN) {
                kette.nein("factory",
                           "its library does not export the factory " + einzeilig(erweiterung.factory));
                ende = schluss("no_factory", wer + " answers, but can make no service.",
                               "Report this to the plugin's author.");
            } else {
                kette.ja("factory", "its library exports the factory " + einzeilig(erweiterung.factory));
                const bool ersatz = antwort.treffer == RegisterAuskunft::UNABHAENGIG && !ohneZeitraum;
                ende = schluss("answered",
                               wer + " answers" +
                                   (fuerAlles ? ", for every sub-case type and period."
                                    : ersatz  ? ", for any period: no plugin serves that year by name."
                                              : "."),
                               "Nothing needs to be done.");
                ausgang = Ausgang::GUT;
            }
        } else {
            ende = schlussOhneAntwort(bestand, typ, nachbarn(bestand, typ, unterfallart), geladene.size());
        }
        if (std::any_of(bestand.dateien.begin(), bestand.dateien.end(),
                        [&](const DateiFakt& datei) { return istBeschrieben(bestand, datei); }))
            if (Json anders = vergleicheAntwort(kette, bestand, sammleMitBeschreibungen(optionen, auftrag));
                !anders.is_null()) {
                ende = std::move(anders);
                ausgang = Ausgang::BEFUNDE;
            }
        dokument["steps"] = std::move(kette).json();
        dokument["conclusion"] = std::move(ende);
        dokument["file"] = nullptr;
        dokument["keys_held"] = nullptr;
        dokument["keys_lost"] = nullptr;
        // For an answer only crashed files count: a client does not have the refused ones either.
        dokument["not_loaded"] = gefunden ? ungewisseAlsJson(bestand) : std::move(geladene);
        dokument["unreadable_directories"] = unlesbareAlsJson(bestand);
        gibAus(optionen, dokument, alsText);
        const Ausgang umstaende = ausgangVon(bestand);
        return umstaende == Ausgang::BEFUNDE ? ausgang : schwerster(ausgang, umstaende);
    }

    std::string erstes_;
    std::string unterfallart_;
    std::string zeitraum_;
};

} // namespace

std::unique_ptr<Befehl> macheWhy() { return std::make_unique<Why>(); }

} // namespace werkzeug
