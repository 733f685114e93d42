// orvoplugin why: the chain of decisions about a file or a look-up.

#include "befehle/Befehl.h"
#include "befehle/Befehle.h"
#include "befehle/Dateisuche.h"
#include "kern/Antwort.h"
#include "kern/Berichtsteile.h"
#include "kern/Eingabe.h"
#include "kern/Gruende.h"
#include "kern/Lebenslauf.h"
#include "kern/Naehe.h"
#include "kern/Sammler.h"

#include <orvoplugin/beschreibung/Beschreibung.h>
#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <set>

namespace werkzeug {

namespace {

/// Adds to the chain: the steps that succeeded, and the one that failed, if any.
void fuegeAn(Json& kette, const char* name, bool gut, const std::string& text) {
    kette.push_back({{"step", name}, {"ok", gut}, {"text", text}});
}

// --- Why a file ---

/// The steps of loading, in their order, with the meaning of success.
constexpr std::pair<const char*, const char*> kLadestufen[] = {
    {"walk", N_("the walk through the plugin directory comes by it")},
    {"filter", N_("its name is that of a plugin, and not on the block list")},
    {"file_check", N_("the file is a whole library for this system and release")},
    {"open", N_("the system's loader opens it")},
    {"types_entry", N_("it exports orvo_plugin_get_types")},
    {"types", N_("which names its interfaces")},
    {"interface", N_("and these are known here")},
    {"initialize_entry", N_("it exports orvo_plugin_initialize")},
    {"initialize", N_("with which it describes itself")},
    {"register", N_("its extensions are filed in the registry")},
};

/// The text of a reason: what it means, and the words of the library or the system.
std::string text(const DateiFakt& datei) {
    const std::string sinn = erklaerung(datei);
    return datei.meldung.empty() ? sinn : sinn + " [" + einzeilig(datei.meldung) + "]";
}

/// Returns: whether the file was loaded.
bool verfolge(Json& kette, const DateiFakt& datei, bool einzeln) {
    for (const auto& [name, gelungen] : kLadestufen) {
        const std::string_view stufe = name;
        if (einzeln && (stufe == "walk" || stufe == "filter"))
            continue; // its place and name do not matter
        if (stufe == ladestufe(datei.grund)) {
            const std::string wo = wobei(datei.schritt);
            fuegeAn(kette, datei.zustand >= Zustand::ABGESTUERZT ? "process" : name, false,
                    wo.empty() ? text(datei) : satz("{1}: {2}", wo, text(datei)));
            return false;
        }
        fuegeAn(kette, name, true, uebersetzt(gelungen));
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
            const ErweiterungsOrt* const wer = verlierer(ereignis);
            if (!wer || wer->datei != datei)
                continue;
            Json verloren = schluesselAlsJson(schluessel);
            verloren.update(verlustAlsJson(bestand, ereignis));
            lage.verloren.push_back(std::move(verloren));
        }
    }
    return lage;
}

/// The conclusion about an extension whose service cannot be had.
Json schlussOhneService(const std::string& wer, const ErweiterungFakt& erweiterung) {
    Json json = schluss(erweiterung.factoryExport == Export::NEIN ? "no_factory" : "no_service",
                        {wer, servicesatz(erweiterung)});
    json["advice"] = servicerat(erweiterung);
    return json;
}

/// The steps about an extension's service.
void verfolgeService(Json& kette, const ErweiterungFakt& erweiterung) {
    std::string text = satz("{1} ({2})", servicesatz(erweiterung), einzeilig(erweiterung.factory));
    if (erweiterung.factoryExport == Export::NEIN)
        return fuegeAn(kette, "factory", false, text);
    fuegeAn(kette, "factory", true,
            satz("its library exports the factory {1}", einzeilig(erweiterung.factory)));
    if (const std::string wo = wobei(erweiterung.service.schritt); !wo.empty())
        text += " " + wo;
    if (!erweiterung.service.meldung.empty())
        text += " [" + einzeilig(erweiterung.service.meldung) + "]";
    fuegeAn(kette, "service", erweiterung.istZuHaben(), text);
}

Json schlussFuerGeladene(const DateiFakt& datei, const Schluessellage& lage) {
    if (datei.plugin->erweiterungen.empty())
        return schluss("no_extensions");
    if (lage.gehalten.empty() && lage.verloren.empty())
        return schluss(std::ranges::any_of(datei.plugin->erweiterungen, &ErweiterungFakt::uebergangen)
                           ? "passed_over"
                           : "no_keys");
    if (lage.gehalten.empty())
        return schluss("all_keys_lost");
    return schluss(lage.verloren.empty() ? "answers" : "some_keys_lost");
}

// --- Why a look-up ---

/// What is served: the other years and kinds of the sub-case type, and all kinds.
struct Nachbarschaft {
    std::set<std::string> zeitraeume, arten, alleArten;

    Nachbarschaft(const Bestand& bestand, std::int32_t typ, const std::string& unterfallart) {
        const Unterfallart gesucht(unterfallart.c_str());
        for (const SchluesselFakt& schluessel : bestand.schluessel) {
            const std::string art = kurzerTypName(schluessel.typName);
            alleArten.insert(art);
            if (Unterfallart(schluessel.unterfallart.name.c_str()) != gesucht)
                continue;
            if (schluessel.typ == typ)
                zeitraeume.insert(anzeige(schluessel.zeitraum));
            else
                arten.insert(art);
        }
    }
};

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

Json schlussOhneAntwort(const Bestand& bestand, std::int32_t typ, const std::string& unterfallart,
                        std::size_t nichtGeladen) {
    const Nachbarschaft nachbarschaft(bestand, typ, unterfallart);
    const std::size_t rat = nichtGeladen == 0 ? 0 : 1;
    if (hatKeinePaare(typ) && !bestand.schluessel.empty())
        return schluss("other_types", {aufgezaehlt(nachbarschaft.alleArten)}, 0, rat);
    if (!nachbarschaft.zeitraeume.empty())
        return schluss("other_periods", {aufgezaehlt(nachbarschaft.zeitraeume)}, 0, rat);
    if (!nachbarschaft.arten.empty())
        return schluss("other_types", {aufgezaehlt(nachbarschaft.arten)}, 1, rat);
    if (bestand.schluessel.empty())
        return schluss("nothing_registered", {einzeilig(bestand.suchpfad)}, 0, rat);
    const std::string frage = rueckfrage(gemeinteUnterfallart(unterfallart, bediente(bestand)));
    return schluss("unknown_sub_case_type", {frage.empty() ? "." : frage}, 0, rat);
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

/// Those of the keys that are not among the others.
std::set<std::string> ohne(const Json& schluessel, const Json& andere) {
    std::set<std::string> uebrige;
    for (const Json& einer : schluessel)
        if (std::find(andere.begin(), andere.end(), einer) == andere.end())
            uebrige.insert(schluesselAlsText(einer));
    return uebrige;
}

/// The step about a file with a description. Returns: the conclusion if it says otherwise than the plugin, else null.
Json vergleicheDatei(Json& kette, const Bestand& gefragt, const Bestand& beschrieben, std::uint32_t platz) {
    const DateiFakt& datei = gefragt.dateien[platz];
    const auto andere = std::ranges::find(beschrieben.dateien, datei.pfad, &DateiFakt::pfad);
    if (andere == beschrieben.dateien.end() || datei.plugin == andere->plugin) {
        fuegeAn(kette, "description", true, satz("the description in it is what the plugin says"));
        return nullptr;
    }
    const Json hier = schluesselVon(gefragt, platz).gehalten;
    const Json dort =
        schluesselVon(beschrieben, static_cast<std::uint32_t>(andere - beschrieben.dateien.begin())).gehalten;
    const std::set<std::string> mehr = ohne(dort, hier), weniger = ohne(hier, dort);
    std::string text = satz("the description in it is not what the plugin says");
    if (!mehr.empty())
        text += "; " + satz("by it, the plugin also answers for {1}", aufgezaehlt(mehr));
    if (!weniger.empty())
        text += "; " + satz("by it, the plugin does not answer for {1}", aufgezaehlt(weniger));
    fuegeAn(kette, "description", false, text);
    return schluss("described_otherwise");
}

/// The answer with all that a client notices of it; null if there is none.
Json antwortVon(const Bestand& bestand) {
    const AntwortFakt& antwort = bestand.antwort.value();
    if (antwort.treffer == RegisterAuskunft::KEINER)
        return nullptr;
    Json json = antwortAlsJson(bestand, bestand.schluessel[antwort.schluessel], antwort.treffer);
    json.erase("displaced");
    json.erase("service");
    return json;
}

/// The step about a look-up that the descriptions answer otherwise. Returns: the conclusion then, else null.
Json vergleicheAntwort(Json& kette, const Bestand& gefragt, const Bestand& beschrieben) {
    const Json dort = antwortVon(beschrieben);
    if (antwortVon(gefragt) == dort)
        return nullptr;
    const std::string wer = dort.is_null() ? satz("nobody") : anbieterAlsText(dort["plugin"]);
    fuegeAn(kette, "description", false,
            satz("by the descriptions in the files, {1} answers; the plugins themselves say otherwise", wer));
    return schluss("described_otherwise", {wer}, dort.is_null() ? 1 : 2);
}

// --- The text ---

constexpr std::size_t kHoechstens = 40; ///< keys that the text shows; all are in the JSON output

std::string alsText(const Json& dokument, const Farben& farben) {
    std::string text;
    std::size_t nummer = 0;
    const std::string ja = satz("yes"), nein = satz("no");
    const std::size_t breite = std::max(anzeigebreite(ja), anzeigebreite(nein));
    for (const Json& schritt : dokument["steps"]) {
        const bool gut = schritt["ok"];
        std::string wort = farben(gut ? Farbe::GRUEN : Farbe::ROT, gut ? ja : nein);
        wort.append(breite - anzeigebreite(gut ? ja : nein), ' ');
        text += std::to_string(++nummer) + ". " + wort + "  " + zeige(schritt["text"]) + "\n";
    }
    const auto liste = [&](const Json& schluessel, const std::string& titel, auto&& zeile) {
        if (schluessel.is_null() || schluessel.empty())
            return;
        text += "\n" + farben(Farbe::FETT, titel) + "\n";
        for (std::size_t i = 0; i < schluessel.size(); ++i) {
            if (i == kHoechstens) {
                text += "  " + satz("and {1} more; --json has them all", schluessel.size() - i) + "\n";
                break;
            }
            text += "  " + zeile(schluessel[i]) + "\n";
        }
    };
    liste(dokument["keys_held"], satz("Answers for"), schluesselAlsText);
    liste(dokument["keys_lost"], satz("Does not answer for"), [](const Json& verloren) {
        return satz("{1}, but {2} does: {3}", schluesselAlsText(verloren),
                    anbieterAlsText(verloren["lost_to"]), zeige(verloren["explanation"]));
    });
    if (const Json& antwort = dokument["answer"]; !antwort.is_null())
        liste(antwort["displaced"], satz("Offer it too, and lost"), [](const Json& verdraengter) {
            return satz("{1} to {2}: {3}", anbieterAlsText(verdraengter["plugin"]),
                        anbieterAlsText(verdraengter["lost_to"]), zeige(verdraengter["explanation"]));
        });
    liste(dokument["not_loaded"], satz("Not loaded"), [](const Json& zeile) {
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
        unterbefehl.add_option("FILE|TYPE", erstes_, satz("A file, as for \"show\"; or a kind of extension"))
            ->required();
        unterbefehl.add_option("SUB-CASE-TYPE", unterfallart_, satz("Sub-case type: number or name"));
        unterbefehl.add_option("PERIOD", zeitraum_,
                               satz("2009, 2009-05, 2009Q2, 2009-05-31 or VZ_UNABHAENGIG"));
    }

    Ausgang fuehreAus(const Optionen& optionen) override {
        if (!unterfallart_.empty() && zeitraum_.empty())
            throw AufrufFehler(
                satz("why takes a file, or a kind of extension, a sub-case type and a period"));
        return unterfallart_.empty() ? warumDatei(optionen) : warumSchluessel(optionen);
    }

private:
    /// What is found out, on its way to the document.
    struct Untersuchung {
        Untersuchung(const Optionen& o, Auftrag a) : optionen(o), auftrag(std::move(a)) {
            auftrag.exporteVon = "*";
            bestand = sammle(optionen, auftrag);
        }

        void beginne(Json frage) {
            dokument = jsonKopf("why", bestand.suchpfad);
            dokument["question"] = std::move(frage);
            for (const char* const name :
                 {"steps", "conclusion", "file", "keys_held", "keys_lost", "answer", "not_loaded"})
                dokument[name] = nullptr;
            dokument["unreadable_directories"] = unlesbareAlsJson(bestand);
        }
        /// Makes the services of the extensions, and adds the steps. One that cannot be had becomes the conclusion.
        bool probiere(const std::set<ErweiterungsOrt>& orte, const std::string& wer) {
            const bool istGestorben = probiereServices(bestand, orte, optionen);
            bool alle = true;
            for (const ErweiterungsOrt& ort : orte) {
                const ErweiterungFakt& erweiterung = bestand.erweiterung(ort);
                verfolgeService(kette, erweiterung);
                if (alle && !erweiterung.istZuHaben()) {
                    schliesse(schlussOhneService(wer, erweiterung),
                              istGestorben ? Ausgang::ABGESTUERZT : Ausgang::BEFUNDE);
                    alle = false;
                }
            }
            return alle;
        }
        /// A conclusion that outweighs the one before; null changes nothing.
        void schliesse(Json anderes, Ausgang mindestens = Ausgang::BEFUNDE) {
            if (anderes.is_null())
                return;
            ende = std::move(anderes);
            ausgang = schwerster(ausgang, mindestens);
        }
        Ausgang gibAus() {
            dokument["steps"] = std::move(kette);
            dokument["conclusion"] = std::move(ende);
            werkzeug::gibAus(optionen, dokument, alsText);
            return ausgang;
        }

        const Optionen& optionen;
        Auftrag auftrag;
        Bestand bestand;
        Json dokument;
        Json kette = Json::array();
        Json ende;
        Ausgang ausgang = Ausgang::GUT;
    };

    Ausgang warumDatei(const Optionen& optionen) const {
        Auftrag auftrag;
        auftrag.einzeln = einzelneDatei(optionen, erstes_);
        const bool einzeln = !auftrag.einzeln.empty();
        Untersuchung u(optionen, std::move(auftrag));
        u.beginne({{"file", jsonText(erstes_)}});
        u.dokument["keys_held"] = u.dokument["keys_lost"] = Json::array();
        const auto platz = einzeln ? std::optional<std::uint32_t>(0) : findeDatei(u.bestand, erstes_);
        if (platz) {
            verfolgeDatei(u, *platz, einzeln);
        } else {
            fuegeAn(u.kette, "found", false, keineDatei(u.bestand, erstes_));
            u.schliesse(schluss("not_found", {einzeilig(u.bestand.suchpfad)}));
        }
        return u.gibAus();
    }

    static void verfolgeDatei(Untersuchung& u, std::uint32_t platz, bool einzeln) {
        const DateiFakt& datei = u.bestand.dateien[platz];
        const std::string voll = einzeilig(u.bestand.fundort(datei));
        u.dokument["file"] = zeileAlsJson(u.bestand, datei);
        fuegeAn(u.kette, "found", true,
                einzeln ? satz("there is a file {1}, looked at without other plugins", voll)
                        : satz("there is a file {1}", voll));
        const bool istGeladen = verfolge(u.kette, datei, einzeln);
        if (istGeladen) {
            Schluessellage lage = schluesselVon(u.bestand, platz);
            const bool haelt = !lage.gehalten.empty();
            u.schliesse(schlussFuerGeladene(datei, lage),
                        haelt && lage.verloren.empty() ? Ausgang::GUT : Ausgang::BEFUNDE);
            fuegeAn(u.kette, "keys", haelt,
                    haelt ? satz("it holds {1} and lost {2}", anzahl(lage.gehalten.size(), "key", "keys"),
                                 lage.verloren.size())
                          : satz("it holds no key, and so answers for nothing"));
            u.dokument["keys_held"] = std::move(lage.gehalten);
            u.dokument["keys_lost"] = std::move(lage.verloren);
        } else {
            u.schliesse({{"code", code(datei.grund)}, {"text", erklaerung(datei)}, {"advice", rat(datei)}},
                        datei.zustand >= Zustand::ABGESTUERZT ? Ausgang::ABGESTUERZT : Ausgang::BEFUNDE);
        }
        if (istBeschrieben(u.bestand, datei))
            u.schliesse(
                vergleicheDatei(u.kette, u.bestand, sammleMitBeschreibungen(u.optionen, u.auftrag), platz));
        if (!istGeladen)
            return;
        std::set<ErweiterungsOrt> seine = u.bestand.inhaber();
        std::erase_if(seine, [&](const ErweiterungsOrt& ort) { return ort.datei != platz; });
        u.probiere(seine, einzeilig(kurzerPfad(u.bestand, datei)));
    }

    Ausgang warumSchluessel(const Optionen& optionen) const {
        const std::int32_t typ = liesTyp(erstes_);
        const std::string typName = erweiterungTypName(static_cast<tag_erweiterung_typ>(typ));
        const std::string unterfallart = liesUnterfallart(unterfallart_);
        const Zeitraumtext zeitraum = liesZeitraum(zeitraum_);
        Auftrag auftrag;
        auftrag.frage = Frage{typ, unterfallart, zeitraum.text, zeitraum.format};
        Untersuchung u(optionen, std::move(auftrag));
        const AntwortFakt antwort = u.bestand.antwort.value();
        u.beginne({{"type", typAlsJson(typ, typName)},
                   {"sub_case_type", jsonText(unterfallart)},
                   {"period", alsJson(antwort.gefragt)}});
        const bool fuerAlles = hatKeinePaare(typ);
        verfolgeSuche(u.kette, antwort, fuerAlles,
                      kurzerTypName(typName) + (fuerAlles ? "" : " " + einzeilig(unterfallart)));
        if (antwort.treffer != RegisterAuskunft::KEINER) {
            // Only crashed files count: a client does not have the refused ones either.
            u.dokument["not_loaded"] = ungewisseAlsJson(u.bestand);
            verfolgeInhaber(u, antwort, fuerAlles);
        } else {
            Json& andere = u.dokument["not_loaded"] = nichtGeladene(u.bestand);
            u.schliesse(schlussOhneAntwort(u.bestand, typ, unterfallart, andere.size()));
        }
        if (std::ranges::any_of(u.bestand.dateien,
                                [&](const DateiFakt& datei) { return istBeschrieben(u.bestand, datei); }))
            u.schliesse(vergleicheAntwort(u.kette, u.bestand, sammleMitBeschreibungen(optionen, u.auftrag)));
        const Ausgang umstaende = ausgangVon(u.bestand);
        return schwerster(u.gibAus(), umstaende == Ausgang::BEFUNDE ? Ausgang::GUT : umstaende);
    }

    /// The steps about the keys that the library looks for.
    static void verfolgeSuche(Json& kette, const AntwortFakt& antwort, bool fuerAlles,
                              const std::string& wonach) {
        const bool gefunden = antwort.treffer != RegisterAuskunft::KEINER;
        const bool unabhaengig = antwort.treffer == RegisterAuskunft::UNABHAENGIG;
        const bool ohneZeitraum = antwort.gefragt.jahr == 0;
        const auto schritt = [&](const char* name, bool gut, const std::string& wofuer) {
            fuegeAn(kette, name, gut,
                    gut ? satz("there is a key for {1}", wofuer) : satz("there is no key for {1}", wofuer));
        };
        if (!ohneZeitraum && !fuerAlles)
            schritt("key_of_the_year", gefunden && !unabhaengig,
                    wonach + " " + std::to_string(antwort.gefragt.jahr));
        if (ohneZeitraum || unabhaengig || !gefunden)
            schritt("period_independent_key", gefunden,
                    !fuerAlles ? satz("{1} for any period", wonach)
                    : gefunden ? satz("{1}, for every sub-case type and period", wonach)
                               : wonach);
    }

    static void verfolgeInhaber(Untersuchung& u, const AntwortFakt& antwort, bool fuerAlles) {
        const SchluesselFakt& schluessel = u.bestand.schluessel[antwort.schluessel];
        const std::string wer = anbieterAlsText(anbieterAlsJson(u.bestand, schluessel.inhaber));
        fuegeAn(u.kette, "holder", true, satz("it is held by {1}", wer));
        const bool ersatz = antwort.treffer == RegisterAuskunft::UNABHAENGIG && antwort.gefragt.jahr != 0;
        if (u.probiere({schluessel.inhaber}, wer))
            u.schliesse(schluss("answered", {wer}, fuerAlles ? 2 : ersatz ? 1 : 0), Ausgang::GUT);
        u.dokument["answer"] = antwortAlsJson(u.bestand, schluessel, antwort.treffer);
    }

    std::string erstes_;
    std::string unterfallart_;
    std::string zeitraum_;
};

} // namespace

std::unique_ptr<Befehl> macheWhy() { return std::make_unique<Why>(); }

} // namespace werkzeug
