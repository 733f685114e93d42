// The document of the diff command in text form, the worst changes first.

#include "vergleich/Vergleichsbericht.h"

#include "kern/Antwort.h"
#include "kern/Berichtsteile.h"

namespace werkzeug {

namespace {

struct Abschnitt {
    const char* was; ///< list of the document
    const char* aenderung;
    const char* ueberschrift;
};

constexpr Abschnitt kAbschnitte[] = {
    {"files", "newly_refused", N_("Newly refused")},
    {"files", "no_longer_loaded", N_("No longer loaded")},
    {"keys", "lost", N_("Keys lost")},
    {"displaced", "newly_displaced", N_("Newly displaced")},
    {"keys", "provider_changed", N_("Keys with another provider")},
    {"keys", "version_changed", N_("Keys with another version of their provider")},
    {"keys", "gained", N_("Keys gained")},
    {"displaced", "no_longer_displaced", N_("No longer displaced")},
    {"files", "no_longer_refused", N_("No longer refused")},
    {"files", "reason_changed", N_("Refused as before, for another reason")},
    {"files", "version_changed", N_("Files with another version")},
    {"files", "content_changed", N_("Files with other content under the same version")},
    {"files", "added", N_("Files added")},
    {"files", "removed", N_("Files removed")},
};

/// Kind, sub-case type and year: the first cells of a row.
std::vector<Tabelle::Zelle> schluessel(const Json& eintrag) {
    const Json& unterfallart = eintrag["sub_case_type"];
    return {zeige(eintrag["type"]["label"]),
            unterfallart.is_null() ? satz("any") : zeige(unterfallart["name"]),
            eintrag["year"].is_null() ? satz("any") : eintrag["year"].dump()};
}

std::string antwort(const Json& seite) {
    if (seite.is_null())
        return satz("nobody");
    const std::string text = anbieterAlsText(seite["plugin"]);
    return seite["match"] == "period_independent" ? "~ " + text : text;
}

std::string versionen(const Json& seite) {
    if (seite.is_null() || seite["product_version"].is_null())
        return "-";
    const std::string version = zeige(seite["product_version"]);
    return seite["file_version"] == ""
               ? version
               : satz("{1} (file version {2})", version, zeige(seite["file_version"]));
}

/// The beginning is enough to see that it is another, and to find it.
std::string pruefsumme(const Json& seite) {
    return " sha256 " + seite["sha256"].get<std::string>().substr(0, 12) + "…";
}

std::string zustand(const Json& seite) {
    return seite.is_null() ? satz("not there") : zustandsname(seite["state"]);
}

Tabelle schluesseltabelle(const Json& liste, const char* aenderung) {
    Tabelle tabelle({satz("TYPE"), satz("SUB-CASE TYPE"), satz("YEAR"), satz("BEFORE"), satz("AFTER")});
    for (const Json& eintrag : liste)
        if (eintrag["change"] == aenderung) {
            auto zeile = schluessel(eintrag);
            zeile.emplace_back(antwort(eintrag["before"]));
            zeile.emplace_back(antwort(eintrag["after"]));
            if (eintrag["lower_version"])
                zeile.back() = {satz("{1}  lower version!", zeile.back().text), Farbe::ROT};
            tabelle.zeile(std::move(zeile));
        }
    return tabelle;
}

Tabelle verdraengtentabelle(const Json& liste, const char* aenderung) {
    Tabelle tabelle(
        {satz("TYPE"), satz("SUB-CASE TYPE"), satz("YEAR"), satz("DISPLACED"), satz("BY"), satz("RULE")});
    for (const Json& eintrag : liste)
        if (eintrag["change"] == aenderung) {
            auto zeile = schluessel(eintrag);
            zeile.insert(zeile.end(), {anbieterAlsText(eintrag["plugin"]), anbieterAlsText(eintrag["by"]),
                                       zeige(eintrag["rule"])});
            tabelle.zeile(std::move(zeile));
        }
    return tabelle;
}

Tabelle dateitabelle(const Json& liste, const std::string& aenderung) {
    const bool zustaende = aenderung == "newly_refused" || aenderung == "no_longer_loaded" ||
                           aenderung == "no_longer_refused" || aenderung == "reason_changed";
    Tabelle tabelle({satz("FILE"), satz("BEFORE"), satz("AFTER")});
    for (const Json& eintrag : liste) {
        if (eintrag["change"] != aenderung)
            continue;
        const Json& vorher = eintrag["before"];
        const Json& nachher = eintrag["after"];
        if (!zustaende) {
            const bool inhalt = aenderung == "content_changed";
            tabelle.zeile({zeige(eintrag["file"]), versionen(vorher) + (inhalt ? pruefsumme(vorher) : ""),
                           versionen(nachher) + (inhalt ? pruefsumme(nachher) : "")});
            continue;
        }
        tabelle.zeile({zeige(eintrag["file"]),
                       zustand(vorher),
                       {zustand(nachher), nachher.is_null() ? Farbe::BLASS : farbe(nachher["state"])}});
        if (!nachher.is_null() && !nachher["reason"].is_null())
            tabelle.bemerkung(begruendung(nachher));
    }
    return tabelle;
}

std::string abschnittAlsText(const Json& dokument, const Abschnitt& abschnitt, const Farben& farben) {
    const std::string was = abschnitt.was;
    const Json& anzahlen = dokument["totals"][was];
    if (anzahlen[abschnitt.aenderung] == 0)
        return {};
    const Json& liste = dokument[was];
    const Tabelle tabelle = was == "keys"        ? schluesseltabelle(liste, abschnitt.aenderung)
                            : was == "displaced" ? verdraengtentabelle(liste, abschnitt.aenderung)
                                                 : dateitabelle(liste, abschnitt.aenderung);
    return farben(Farbe::FETT, satz("{1}: {2}", uebersetzt(abschnitt.ueberschrift),
                                    anzahlen[abschnitt.aenderung].dump())) +
           "\n" + tabelle.alsText(farben) + "\n";
}

} // namespace

std::string vergleichAlsText(const Json& dokument, const Farben& farben) {
    const std::string danach = zeige(dokument["other_directory"]);
    std::string text = satz("Before: {1}", zeige(dokument["plugin_directory"])) + "\n" +
                       (dokument["merge"] ? satz("After:  the same, with {1} copied over it", danach)
                                          : satz("After:  {1}", danach)) +
                       "\n\n";
    if (!dokument["lock_files"].empty())
        text +=
            satz(
                "A lock file does not say why a file was refused, nor who is displaced: both are left out.") +
            "\n\n";
    text += unlesbareAlsText(dokument["unreadable_directories"], farben);
    bool ersatz = false;
    for (const Json& eintrag : dokument["keys"])
        for (const char* const seite : {"before", "after"})
            ersatz = ersatz || (!eintrag[seite].is_null() && eintrag[seite]["match"] == "period_independent");
    for (const Abschnitt& abschnitt : kAbschnitte)
        text += abschnittAlsText(dokument, abschnitt, farben);
    if (ersatz)
        text += satz("~  a period-independent entry answers, for want of one of the year") + "\n\n";
    const Json& summen = dokument["totals"];
    if (summen["changes"] == 0)
        return text + satz("No difference.") + "\n";
    return text + anzahl(summen["changes"], "difference", "differences") + ", " +
           (summen["findings"] == 0 ? farben(Farbe::GRUEN, satz("none of them a finding"))
                                    : farben(Farbe::ROT, anzahl(summen["findings"], "finding", "findings"))) +
           "\n";
}

} // namespace werkzeug
