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
    {"files", "newly_refused", "Newly refused"},
    {"files", "no_longer_loaded", "No longer loaded"},
    {"keys", "lost", "Keys lost"},
    {"displaced", "newly_displaced", "Newly displaced"},
    {"keys", "provider_changed", "Keys with another provider"},
    {"keys", "version_changed", "Keys with another version of their provider"},
    {"keys", "gained", "Keys gained"},
    {"displaced", "no_longer_displaced", "No longer displaced"},
    {"files", "no_longer_refused", "No longer refused"},
    {"files", "reason_changed", "Refused as before, for another reason"},
    {"files", "version_changed", "Files with another version"},
    {"files", "content_changed", "Files with other content under the same version"},
    {"files", "added", "Files added"},
    {"files", "removed", "Files removed"},
};

std::string jahr(const Json& eintrag) { return eintrag["year"].is_null() ? "any" : eintrag["year"].dump(); }
std::string unterfallart(const Json& eintrag) {
    return eintrag["sub_case_type"].is_null() ? "any" : zeige(eintrag["sub_case_type"]["name"]);
}

std::string antwort(const Json& seite) {
    if (seite.is_null())
        return "nobody";
    const std::string text = anbieterAlsText(seite["plugin"]);
    return seite["match"] == "period_independent" ? "~ " + text : text;
}

std::string versionen(const Json& seite) {
    if (seite.is_null() || seite["product_version"].is_null())
        return "-";
    return zeige(seite["product_version"]) +
           (seite["file_version"] == "" ? "" : " (file version " + zeige(seite["file_version"]) + ")");
}

/// The beginning is enough to see that it is another, and to find it.
std::string pruefsumme(const Json& seite) {
    return " sha256 " + seite["sha256"].get<std::string>().substr(0, 12) + "…";
}

std::string zustand(const Json& seite) { return seite.is_null() ? "not there" : zeige(seite["state"]); }

Tabelle schluesseltabelle(const Json& liste, const char* aenderung) {
    Tabelle tabelle({"TYPE", "SUB-CASE TYPE", "YEAR", "BEFORE", "AFTER"});
    for (const Json& eintrag : liste)
        if (eintrag["change"] == aenderung) {
            const bool niedriger = eintrag["lower_version"];
            tabelle.zeile({zeige(eintrag["type"]["label"]),
                           unterfallart(eintrag),
                           jahr(eintrag),
                           antwort(eintrag["before"]),
                           {antwort(eintrag["after"]) + (niedriger ? "  lower version!" : ""),
                            niedriger ? std::optional(Farbe::ROT) : std::nullopt}});
        }
    return tabelle;
}

Tabelle verdraengtentabelle(const Json& liste, const char* aenderung) {
    Tabelle tabelle({"TYPE", "SUB-CASE TYPE", "YEAR", "DISPLACED", "BY", "RULE"});
    for (const Json& eintrag : liste)
        if (eintrag["change"] == aenderung)
            tabelle.zeile({zeige(eintrag["type"]["label"]), unterfallart(eintrag), jahr(eintrag),
                           anbieterAlsText(eintrag["plugin"]), anbieterAlsText(eintrag["by"]),
                           zeige(eintrag["rule"])});
    return tabelle;
}

Tabelle dateitabelle(const Json& liste, const std::string& aenderung) {
    const bool zustaende = aenderung == "newly_refused" || aenderung == "no_longer_loaded" ||
                           aenderung == "no_longer_refused" || aenderung == "reason_changed";
    Tabelle tabelle({"FILE", "BEFORE", "AFTER"});
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
    return farben(Farbe::FETT,
                  std::string(abschnitt.ueberschrift) + ": " + anzahlen[abschnitt.aenderung].dump()) +
           "\n" + tabelle.alsText(farben) + "\n";
}

} // namespace

std::string vergleichAlsText(const Json& dokument, const Farben& farben) {
    std::string text = "Before: " + zeige(dokument["plugin_directory"]) + "\n";
    text += dokument["merge"]
                ? "After:  the same, with " + zeige(dokument["other_directory"]) + " copied over it\n\n"
                : "After:  " + zeige(dokument["other_directory"]) + "\n\n";
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
        text += "~  a period-independent entry answers, for want of one of the year\n\n";
    const Json& summen = dokument["totals"];
    if (summen["changes"] == 0)
        return text + "No difference.\n";
    return text + anzahl(summen["changes"], "difference", "differences") + ", " +
           (summen["findings"] == 0 ? farben(Farbe::GRUEN, "none of them a finding")
                                    : farben(Farbe::ROT, anzahl(summen["findings"], "finding", "findings"))) +
           "\n";
}

} // namespace werkzeug
