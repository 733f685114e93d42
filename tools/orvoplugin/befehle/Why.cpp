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
#include <orvoutil/PathUtil.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <set>

namespace werkzeug {

namespace {

/// The chain: the steps that succeeded, and the one that failed, if any.
class Kette {
public:
    void schritt(const char* name, bool gut, const std::string& text) {
        schritte_.push_back({{"step", name}, {"ok", gut}, {"text", text}});
    }
    Json json() && { return std::move(schritte_); }

private:
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
    {"walk", N_("the walk through the plugin directory comes by it"), {Grund::KEINER, Grund::KEINER}},
    {"filter",
     N_("its name is that of a plugin, and not on the block list"),
     {Grund::SPERRLISTE, Grund::KEINE_ENDUNG}},
    {"file_check",
     N_("the file is a whole library for this system and release"),
     {Grund::DATEIPRUEFUNG, Grund::KEINER}},
    {"open", N_("the system's loader opens it"), {Grund::OEFFNEN, Grund::KEINER}},
    {"types_entry", N_("it exports orvo_plugin_get_types"), {Grund::OHNE_TYPEN, Grund::KEINER}},
    {"types", N_("which names its interfaces"), {Grund::AUSNAHME_TYPEN, Grund::LEERE_TYPEN}},
    {"interface", N_("and these are known here"), {Grund::PLUGINVERSION, Grund::KEINER}},
    {"initialize_entry",
     N_("it exports orvo_plugin_initialize"),
     {Grund::OHNE_INITIALISIERUNG, Grund::KEINER}},
    {"initialize",
     N_("with which it describes itself"),
     {Grund::AUSNAHME_INITIALISIERUNG, Grund::INITIALISIERUNG}},
    {"register", N_("its extensions are filed in the registry"), {Grund::BEOBACHTER, Grund::KEINER}},
};

/// The text of a reason: what it means, and the words of the library or the system.
std::string text(const DateiFakt& datei) {
    const std::string sinn = erklaerung(datei);
    return datei.meldung.empty() ? sinn : sinn + " [" + einzeilig(datei.meldung) + "]";
}

/// Returns: whether the file was loaded.
bool verfolge(Kette& kette, const DateiFakt& datei, bool einzeln) {
    const std::string_view ende = stufe(datei.grund);
    for (const Ladestufe& s : kLadestufen) {
        const std::string_view name = s.name;
        if (einzeln && (name == "walk" || name == "filter"))
            continue; // its place and name do not matter
        if (datei.grund != Grund::KEINER &&
            (std::ranges::count(s.gruende, datei.grund) > 0 || (ende == "walk" && name == "walk"))) {
            kette.schritt(s.name, false, text(datei));
            return false;
        }
        if (ende == "process" && name == "open") { // from here on its code may run
            const std::string wo = wobei(datei.schritt);
            kette.schritt("process", false, wo.empty() ? text(datei) : satz("{1}: {2}", wo, text(datei)));
            return false;
        }
        kette.schritt(s.name, true, uebersetzt(s.gelungen));
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
    return schluss(erweiterung.factoryExport == Export::NEIN ? "no_factory" : "no_service",
                   satz("{1} holds the key, but no service can be had: {2}.", wer, servicesatz(erweiterung)),
                   servicerat(erweiterung));
}

/// The steps about an extension's service.
void verfolgeService(Kette& kette, const ErweiterungFakt& erweiterung) {
    std::string text = satz("{1} ({2})", servicesatz(erweiterung), einzeilig(erweiterung.factory));
    if (erweiterung.factoryExport == Export::NEIN)
        return kette.schritt("factory", false, text);
    kette.schritt("factory", true,
                  satz("its library exports the factory {1}", einzeilig(erweiterung.factory)));
    if (const std::string wo = wobei(erweiterung.service.schritt); !wo.empty())
        text += " " + wo;
    if (!erweiterung.service.meldung.empty())
        text += " [" + einzeilig(erweiterung.service.meldung) + "]";
    kette.schritt("service", erweiterung.istZuHaben(), text);
}

Json schlussFuerGeladene(const DateiFakt& datei, const Schluessellage& lage) {
    if (datei.plugin->erweiterungen.empty())
        return schluss(
            "no_extensions", satz("The plugin is loaded, but offers nothing."),
            satz("Ask its author whether that is meant; orvo_plugin_initialize adds no extension."));
    const bool uebergangen = std::ranges::any_of(datei.plugin->erweiterungen, &ErweiterungFakt::uebergangen);
    if (lage.gehalten.empty() && lage.verloren.empty())
        return uebergangen
                   ? schluss("passed_over",
                             satz("The plugin is loaded, but the registry passed its extensions over: their "
                                  "class serves no sub-case types."),
                             satz("Report this to the plugin's author."))
                   : schluss(
                         "no_keys",
                         satz("The plugin is loaded, but its extensions name no period, and so get no key."),
                         satz("Report this to the plugin's author: each sub-case type needs its periods."));
    if (lage.gehalten.empty())
        return schluss(
            "all_keys_lost",
            satz("The plugin is loaded, but never answers: it lost all its keys to other plugins."),
            satz(
                "If it should answer, give it a higher product version than theirs, or take the others away."));
    if (!lage.verloren.empty())
        return schluss(
            "some_keys_lost", satz("The plugin is loaded and answers, but not for all that it offers."),
            satz("If it should answer for the keys it lost, give it a higher product version than the "
                 "plugins that hold them, or take those away."));
    return schluss("answers", satz("The plugin is loaded and answers for all that it offers."),
                   satz("Nothing needs to be done."));
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
    const std::string rat = nichtGeladen == 0
                                ? satz("Install a plugin that serves it.")
                                : satz("See to the files that were not loaded first; one of them may serve "
                                       "it. Else install a plugin that does.");
    if (hatKeinePaare(typ) && !bestand.schluessel.empty())
        return schluss("other_types",
                       satz("No loaded plugin serves this kind of extension; served are {1}.",
                            aufgezaehlt(nachbarschaft.alleArten)),
                       rat);
    if (!nachbarschaft.zeitraeume.empty())
        return schluss("other_periods",
                       satz("No loaded plugin serves that period; served are {1}.",
                            aufgezaehlt(nachbarschaft.zeitraeume)),
                       rat);
    if (!nachbarschaft.arten.empty())
        return schluss("other_types",
                       satz("No loaded plugin serves that sub-case type with this kind of extension; it is "
                            "served by {1}.",
                            aufgezaehlt(nachbarschaft.arten)),
                       rat);
    if (bestand.schluessel.empty())
        return schluss("nothing_registered", satz("No plugin is loaded that serves anything."),
                       nichtGeladen == 0
                           ? satz("Put plugins into {1}, or name another directory with --home or --dir.",
                                  einzeilig(bestand.suchpfad))
                           : rat);
    const std::string frage = rueckfrage(gemeinteUnterfallart(unterfallart, bediente(bestand)));
    return schluss("unknown_sub_case_type",
                   satz("No loaded plugin serves that sub-case type") + (frage.empty() ? "." : frage), rat);
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
std::string beschreibungsrat() {
    return satz(
        "Have \"orvoplugin describe\" write what the plugin says into its file, or have clients ask: unset "
        "basis.plugin_beschreibungen. \"orvoplugin check --only description\" names what differs.");
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
Json vergleicheDatei(Kette& kette, const Bestand& gefragt, const Bestand& beschrieben, std::uint32_t platz) {
    const DateiFakt& datei = gefragt.dateien[platz];
    const auto andere = std::ranges::find(beschrieben.dateien, datei.pfad, &DateiFakt::pfad);
    if (andere == beschrieben.dateien.end() || datei.plugin == andere->plugin) {
        kette.schritt("description", true, satz("the description in it is what the plugin says"));
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
    kette.schritt("description", false, text);
    return schluss(
        kFalscheBeschreibung,
        satz("Clients that take descriptions go by that in the file, which is not what the plugin says."),
        beschreibungsrat());
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
Json vergleicheAntwort(Kette& kette, const Bestand& gefragt, const Bestand& beschrieben) {
    const Json dort = antwortVon(beschrieben);
    if (antwortVon(gefragt) == dort)
        return nullptr;
    const std::string wer = dort.is_null() ? satz("nobody") : anbieterAlsText(dort["plugin"]);
    kette.schritt(
        "description", false,
        satz("by the descriptions in the files, {1} answers; the plugins themselves say otherwise", wer));
    return schluss(kFalscheBeschreibung,
                   dort.is_null()
                       ? satz("Clients that take descriptions get another answer: nobody answers.")
                       : satz("Clients that take descriptions get another answer: {1} answers, by a key that "
                              "comes from a description.",
                              wer),
                   beschreibungsrat());
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
            dokument["steps"] = std::move(kette).json();
            dokument["conclusion"] = std::move(ende);
            werkzeug::gibAus(optionen, dokument, alsText);
            return ausgang;
        }

        const Optionen& optionen;
        Auftrag auftrag;
        Bestand bestand;
        Json dokument;
        Kette kette;
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
            u.kette.schritt("found", false, keineDatei(u.bestand, erstes_));
            u.schliesse(schluss(
                "not_found",
                satz("The library never sees the file: it looks below {1} only.",
                     einzeilig(u.bestand.suchpfad)),
                satz("Copy the file there, or name the directory that it lies in with --home or --dir.")));
        }
        return u.gibAus();
    }

    static void verfolgeDatei(Untersuchung& u, std::uint32_t platz, bool einzeln) {
        const DateiFakt& datei = u.bestand.dateien[platz];
        const std::string voll = einzeilig(u.bestand.fundort(datei));
        u.dokument["file"] = zeileAlsJson(u.bestand, datei);
        u.kette.schritt("found", true,
                        einzeln ? satz("there is a file {1}, looked at without other plugins", voll)
                                : satz("there is a file {1}", voll));
        const bool istGeladen = verfolge(u.kette, datei, einzeln);
        if (istGeladen) {
            Schluessellage lage = schluesselVon(u.bestand, platz);
            const bool haelt = !lage.gehalten.empty();
            u.schliesse(schlussFuerGeladene(datei, lage),
                        haelt && lage.verloren.empty() ? Ausgang::GUT : Ausgang::BEFUNDE);
            u.kette.schritt("keys", haelt,
                            haelt ? satz("it holds {1} and lost {2}",
                                         anzahl(lage.gehalten.size(), "key", "keys"), lage.verloren.size())
                                  : satz("it holds no key, and so answers for nothing"));
            u.dokument["keys_held"] = std::move(lage.gehalten);
            u.dokument["keys_lost"] = std::move(lage.verloren);
        } else {
            u.schliesse(schluss(code(datei.grund), erklaerung(datei), rat(datei)),
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
    static void verfolgeSuche(Kette& kette, const AntwortFakt& antwort, bool fuerAlles,
                              const std::string& wonach) {
        const bool gefunden = antwort.treffer != RegisterAuskunft::KEINER;
        const bool unabhaengig = antwort.treffer == RegisterAuskunft::UNABHAENGIG;
        const bool ohneZeitraum = antwort.gefragt.jahr == 0;
        const auto schritt = [&](const char* name, bool gut, const std::string& wofuer) {
            kette.schritt(name, gut,
                          gut ? satz("there is a key for {1}", wofuer)
                              : satz("there is no key for {1}", wofuer));
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
        u.kette.schritt("holder", true, satz("it is held by {1}", wer));
        const bool ersatz = antwort.treffer == RegisterAuskunft::UNABHAENGIG && antwort.gefragt.jahr != 0;
        if (u.probiere({schluessel.inhaber}, wer))
            u.schliesse(
                schluss("answered",
                        fuerAlles ? satz("{1} answers, for every sub-case type and period.", wer)
                        : ersatz
                            ? satz("{1} answers, for any period: no plugin serves that year by name.", wer)
                            : satz("{1} answers.", wer),
                        satz("Nothing needs to be done.")),
                Ausgang::GUT);
        u.dokument["answer"] = antwortAlsJson(u.bestand, schluessel, antwort.treffer);
    }

    std::string erstes_;
    std::string unterfallart_;
    std::string zeitraum_;
};

} // namespace

std::unique_ptr<Befehl> macheWhy() { return std::make_unique<Why>(); }

} // namespace werkzeug
