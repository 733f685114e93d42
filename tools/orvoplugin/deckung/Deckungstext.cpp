// The coverage document in text form: a table for each kind, split into blocks that fit the terminal.

#include "deckung/Deckungsbericht.h"

#include "kern/Antwort.h"
#include "kern/Berichtsteile.h"
#include "kern/Eingabe.h"
#include "kern/Naehe.h"

#include <algorithm>
#include <map>
#include <set>

namespace werkzeug {

namespace {

constexpr std::size_t kAbstand = 2;           // between columns, as in `Tabelle`
constexpr std::size_t kBreitesterName = 28;   // of a sub-case type
constexpr std::size_t kSchmalster = 12;       // of a shortened plugin name
constexpr std::size_t kMeisteZellen = 500000; // larger tables are unreadable

/// The marks that occur, by a character of each: only these are explained.
using Zeichenkunde = std::set<char>;

class Zellentext {
public:
    explicit Zellentext(const Json& plugins) {
        for (const Json& plugin : plugins)
            zeichen_.emplace(plugin["file"].get<std::string>(), plugin["mark"].get<std::string>());
    }

    /// "A", "A 1.2.0", "~A>B", "A(05)" or "-".
    Tabelle::Zelle operator()(const Json& zelle, bool mitVersion) {
        if (zelle["answer"] == "gap") {
            kunde.insert('-');
            return {"-", Farbe::ROT};
        }
        if (zelle["answer"] == "broken") {
            kunde.insert('!');
            return {"!" + zeichen(zelle["plugin"]), Farbe::ROT};
        }
        const bool ersatz = zelle["answer"] == "fallback";
        std::string text = (ersatz ? "~" : "") + zeichen(zelle["plugin"]);
        if (mitVersion && zelle["plugin"]["product_version"] != "")
            text += " " + gekuerzt(zeige(zelle["plugin"]["product_version"]), 16);
        if (!zelle["runner_up"].is_null()) {
            text += ">" + zeichen(zelle["runner_up"]);
            kunde.insert('>');
        }
        if (!ersatz && !zelle["periods"].empty())
            text += teile(zelle["periods"]);
        if (!ersatz)
            return text;
        kunde.insert('~');
        return {text, Farbe::GELB};
    }

    Zeichenkunde kunde;

private:
    const std::string& zeichen(const Json& anbieter) const {
        return zeichen_.at(anbieter["file"].get_ref<const std::string&>());
    }
    /// The suffix of the year: "(05)" or "(Q1,Q2,...)".
    std::string teile(const Json& zeitraeume) {
        constexpr std::size_t kMeiste = 2;
        std::string text;
        for (std::size_t i = 0; i < std::min(zeitraeume.size(), kMeiste); ++i) {
            const std::string zeitraum = zeitraeume[i];
            const std::size_t jahrende = zeitraum.find_first_of("-Q", 1);
            text += text.empty() ? "(" : ",";
            text += jahrende == std::string::npos ? zeitraum
                                                  : zeitraum.substr(jahrende + (zeitraum[jahrende] == '-'));
        }
        kunde.insert('(');
        return text + (zeitraeume.size() > kMeiste ? ",...)" : ")");
    }

    std::map<std::string, std::string> zeichen_;
};

/// One kind's table, cell by cell, before it is cut into blocks.
struct Raster {
    std::vector<std::string> kopf;
    std::vector<std::vector<Tabelle::Zelle>> zeilen; ///< the sub-case type, then a cell for each head

    std::vector<std::size_t> breiten() const {
        std::vector<std::size_t> liste;
        for (const std::string& name : kopf)
            liste.push_back(anzeigebreite(name));
        for (const auto& zeile : zeilen)
            for (std::size_t i = 0; i < liste.size(); ++i)
                liste[i] = std::max(liste[i], anzeigebreite(zeile[i].text));
        return liste;
    }
};

std::string spaltenkopf(const Json& spalte) {
    return spalte["from"] == spalte["to"] ? spalte["from"].dump()
                                          : spalte["from"].dump() + "-" + spalte["to"].dump();
}

Raster raster(const Json& typ, Zellentext& zellentext, bool mitVersion) {
    const bool paare = typ["by_sub_case_type_and_period"];
    const bool andereJahre = std::any_of(typ["rows"].begin(), typ["rows"].end(),
                                         [](const Json& zeile) { return !zeile["other_years"].is_null(); });
    Raster r;
    r.kopf.push_back(uebersetzt("SUB-CASE TYPE"));
    for (const Json& spalte : typ["columns"])
        r.kopf.push_back(paare ? spaltenkopf(spalte) : uebersetzt("ANY PERIOD"));
    if (andereJahre)
        r.kopf.push_back(typ["columns"].empty() ? uebersetzt("ANY YEAR") : uebersetzt("OTHER YEARS"));
    for (const Json& zeile : typ["rows"]) {
        std::vector<Tabelle::Zelle>& zellen = r.zeilen.emplace_back();
        zellen.push_back(paare ? gekuerzt(zeige(zeile["sub_case_type"]["name"]), kBreitesterName)
                               : uebersetzt("any"));
        auto zelle = zeile["cells"].begin();
        for (const Json& spalte : typ["columns"]) {
            while ((*zelle)["to"] < spalte["from"])
                ++zelle;
            zellen.push_back(zellentext(*zelle, mitVersion));
        }
        if (andereJahre)
            zellen.push_back(zeile["other_years"].is_null() ? Tabelle::Zelle("-")
                                                            : zellentext(zeile["other_years"], mitVersion));
    }
    return r;
}

/// Where each block ends: as many columns as fit beside that of the sub-case types, one at least.
std::vector<std::size_t> blockenden(const std::vector<std::size_t>& breiten, std::size_t platz) {
    std::vector<std::size_t> enden;
    std::size_t belegt = breiten[0];
    for (std::size_t spalte = 1; spalte < breiten.size(); ++spalte) {
        if (spalte > 1 && belegt > breiten[0] && belegt + kAbstand + breiten[spalte] > platz) {
            enden.push_back(spalte);
            belegt = breiten[0];
        }
        belegt += kAbstand + breiten[spalte];
    }
    enden.push_back(breiten.size());
    return enden;
}

std::string alsText(const Raster& r, const std::vector<std::size_t>& enden, const Farben& farben) {
    std::string text;
    std::size_t von = 1;
    for (const std::size_t bis : enden) {
        std::vector<Tabelle::Zelle> kopf{r.kopf[0]};
        for (std::size_t i = von; i < bis; ++i)
            kopf.emplace_back(r.kopf[i]);
        Tabelle tabelle(std::move(kopf));
        for (const auto& zeile : r.zeilen) {
            std::vector<Tabelle::Zelle> zellen{zeile[0]};
            zellen.insert(zellen.end(), zeile.begin() + static_cast<std::ptrdiff_t>(von),
                          zeile.begin() + static_cast<std::ptrdiff_t>(bis));
            tabelle.zeile(std::move(zellen));
        }
        text += tabelle.alsText(farben) + "\n";
        von = bis;
    }
    return text;
}

std::string ueberschrift(const Json& typ, const Farben& farben) {
    const Json& summen = typ["totals"];
    std::string text = satz("{1} (type {2})", farben(Farbe::FETT, zeige(typ["type"]["label"])),
                            typ["type"]["number"].dump());
    if (!typ["by_sub_case_type_and_period"])
        return satz("{1}, for every sub-case type and period", text) + "\n";
    text += ", " + anzahl(summen["sub_case_types"], "sub-case type", "sub-case types");
    if (!typ["first_year"].is_null()) {
        text += ", " + jahresspanne(typ);
        text += ": " + anzahl(summen["served"], "cell served", "cells served");
        if (summen["fallback"] != 0)
            text += ", " + satz("{1} more by a period-independent entry", summen["fallback"].dump());
        if (summen["broken"] != 0)
            text += ", " + satz("{1} without a service", summen["broken"].dump());
        text += ", " + (summen["gaps"] == 0 ? satz("no gap") : anzahl(summen["gaps"], "gap", "gaps"));
    }
    return text + "\n";
}

std::string typAlsText(const Json& typ, Zellentext& zellentext, std::size_t platz, const Farben& farben) {
    std::string text = ueberschrift(typ, farben);
    if (typ["rows"].size() * (typ["columns"].size() + 1) > kMeisteZellen)
        return text + uebersetzt("too many cells for a table; --json has them all") + "\n\n";
    Raster r = raster(typ, zellentext, true);
    std::vector<std::size_t> enden = blockenden(r.breiten(), platz);
    if (enden.size() > 1) { // the list of plugins has the versions too
        r = raster(typ, zellentext, false);
        enden = blockenden(r.breiten(), platz);
    }
    return text + alsText(r, enden, farben);
}

Tabelle plugintabelle(const Json& plugins, bool mitDateiversion, std::size_t namensbreite) {
    std::vector<Tabelle::Zelle> kopf{uebersetzt("MARK"), uebersetzt("PLUGIN"), uebersetzt("VERSION")};
    if (mitDateiversion)
        kopf.emplace_back(uebersetzt("FILE VERSION"));
    kopf.insert(kopf.end(), {uebersetzt("CELLS"), uebersetzt("RUNNER-UP")});
    Tabelle tabelle(std::move(kopf));
    for (const Json& plugin : plugins) {
        std::vector<Tabelle::Zelle> zellen{zeige(plugin["mark"]),
                                           gekuerzt(zeige(plugin["file"]), namensbreite),
                                           zeige(plugin["product_version"])};
        if (mitDateiversion)
            zellen.emplace_back(zeige(plugin["file_version"]));
        zellen.insert(zellen.end(), {plugin["serves"].dump(), plugin["runner_up"].dump()});
        tabelle.zeile(std::move(zellen));
    }
    return tabelle;
}

/// When space is short, first the file versions are dropped, then names are shortened.
std::string pluginsAlsText(const Json& plugins, std::size_t platz, const Farben& farben) {
    std::size_t laengster = 0;
    for (const Json& plugin : plugins)
        laengster = std::max(laengster, anzeigebreite(zeige(plugin["file"])));
    const auto ohneName = [&](bool mitDateiversion) {
        return plugintabelle(plugins, mitDateiversion, kSchmalster).breite() -
               std::min(kSchmalster, laengster);
    };
    const bool mitDateiversion = ohneName(true) + laengster <= platz;
    const std::size_t rest = ohneName(mitDateiversion);
    const std::size_t namensbreite = std::max(kSchmalster, platz - std::min(platz, rest));
    return plugintabelle(plugins, mitDateiversion, namensbreite).alsText(farben) + "\n";
}

std::string zeichenAlsText(const Zeichenkunde& kunde) {
    std::string text;
    const auto zeile = [&](char kennzeichen, const char* zeichen, const char* worte) {
        text += kunde.contains(kennzeichen) ? zeichen + std::string(uebersetzt(worte)) + "\n" : "";
    };
    zeile('>', "  A>B    ", N_("plugin B would answer if A were not there"));
    zeile('~', "  ~A     ", N_("a period-independent entry of A answers, for want of one of the year"));
    zeile('(', "  A(05)  ", N_("filed for that part of the year (month, quarter Q2, day 05-31);"));
    zeile('(', "         ", N_("look-ups for any period of the year find it"));
    zeile('!', "  !A     ", N_("A holds the entry, but no service of it can be had"));
    zeile('-', "  -      ", N_("nobody answers"));
    return text.empty() ? text : uebersetzt("Marks:") + ("\n" + text) + "\n";
}

std::string verlangtesAlsText(const Json& verlangt, const std::vector<std::string>& bediente,
                              const Farben& farben) {
    const std::size_t fehlen = verlangt["missing"];
    std::string text = satz("Required by {1}: {2}, {3}", zeige(verlangt["file"]),
                            anzahl(verlangt["cells"].size(), "cell", "cells"),
                            fehlen == 0 ? farben(Farbe::GRUEN, satz("none missing"))
                                        : farben(Farbe::ROT, satz("{1} missing", fehlen))) +
                       "\n";
    if (fehlen == 0)
        return text;
    Tabelle tabelle(
        {uebersetzt("MISSING"), uebersetzt("TYPE"), uebersetzt("SUB-CASE TYPE"), uebersetzt("PERIOD")});
    for (const Json& zelle : verlangt["cells"]) {
        if (zelle["served"])
            continue;
        tabelle.zeile({satz("line {1}", zelle["line"].dump()), zeige(zelle["type"]["label"]),
                       zeige(zelle["sub_case_type"]), zeige(zelle["period"])});
        if (zelle["sub_case_type"].is_null())
            continue;
        if (const std::string gemeint = gemeinteUnterfallart(zelle["sub_case_type"], bediente);
            !gemeint.empty())
            tabelle.bemerkung(einzeilig(verlangt["file"].get<std::string>()) + ":" + zelle["line"].dump() +
                              rueckfrage(gemeint));
    }
    return text + tabelle.alsText(farben);
}

} // namespace

std::string jahresspanne(const Json& typ) {
    const std::string erstes = typ["first_year"].dump();
    return typ["first_year"] == typ["last_year"] ? erstes
                                                 : satz("{1} to {2}", erstes, typ["last_year"].dump());
}

std::string deckungAlsText(const Json& dokument, const Farben& farben) {
    const std::size_t platz = terminalbreite(stdout);
    std::string text = satz("Plugin directory: {1}", zeige(dokument["plugin_directory"])) + "\n\n";
    text += unlesbareAlsText(dokument["unreadable_directories"], farben);
    Zellentext zellentext(dokument["plugins"]);
    std::vector<std::string> bediente;
    for (const Json& typ : dokument["types"]) {
        text += typAlsText(typ, zellentext, platz, farben);
        for (const Json& zeile : typ["rows"])
            bediente.push_back(zeile["sub_case_type"]["name"]);
    }
    if (dokument["types"].empty())
        text += uebersetzt("nothing is served") + std::string("\n\n");
    else
        text += pluginsAlsText(dokument["plugins"], platz, farben) + zeichenAlsText(zellentext.kunde);
    if (const Json& ausfaelle = dokument["not_loaded"]; !ausfaelle.empty()) {
        Tabelle tabelle({uebersetzt("NOT LOADED"), uebersetzt("FILE")});
        for (const Json& zeile : ausfaelle) {
            tabelle.zeile({{zustandsname(zeile["state"]), farbe(zeile["state"])}, zeige(zeile["file"])});
            tabelle.bemerkung(begruendung(zeile));
        }
        text += tabelle.alsText(farben) + "\n";
    }
    if (const Json& kaputte = dokument["broken"]; !kaputte.empty()) {
        Tabelle tabelle({satz("NO SERVICE"), satz("TYPE"), satz("FACTORY")});
        for (const Json& zeile : kaputte) {
            tabelle.zeile({{anbieterAlsText(zeile["plugin"]), Farbe::ROT},
                           zeige(zeile["type"]["label"]),
                           zeige(zeile["factory"])});
            tabelle.bemerkung(servicemangelAlsText(zeile["service"]));
        }
        text += tabelle.alsText(farben) + "\n";
    }
    if (!dokument["required"].is_null())
        text += verlangtesAlsText(dokument["required"], bediente, farben);
    while (text.ends_with("\n\n"))
        text.pop_back();
    return text;
}

} // namespace werkzeug
