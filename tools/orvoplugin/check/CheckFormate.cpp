// The results of `check` in the formats of build servers.

#include "check/CheckAusgabe.h"
#include "kern/Herkunft.h"

#include <algorithm>
#include <cstdio>

namespace werkzeug::check {

namespace {

bool istFehler(Urteil urteil) { return istHindernis(urteil) && urteil != Urteil::UEBERSPRUNGEN; }

/// Why a file has no results, or not all.
const std::string& fehlerVon(const Dateiergebnis& datei) {
    return datei.unlesbar.empty() ? datei.abbruch : datei.unlesbar;
}

/// "crashed: ended by signal 11 (SIGSEGV)"
std::string meldung(const Befund& befund) { return urteilName(befund.urteil) + (": " + befund.grund()); }

std::string uebersprungenSatz(std::size_t zahl) {
    return satz("{1} skipped, because they build on this one",
                werkzeug::anzahl(zahl, "check was", "checks were"));
}

/// A text for XML, in an attribute or between tags.
std::string xml(std::string_view text) {
    std::string sicher;
    const std::string zeile = einzeilig(text); // no control characters, which XML cannot hold
    for (std::size_t i = 0; i < zeile.size(); ++i)
        if (const std::string_view zeichen = std::string_view(zeile).substr(i, 3);
            zeichen == "\uFFFE" || zeichen == "\uFFFF") {
            sicher += "\uFFFD"; // neither can it hold these two
            i += 2;
        } else if (zeile[i] == '&')
            sicher += "&amp;";
        else if (zeile[i] == '<')
            sicher += "&lt;";
        else if (zeile[i] == '>')
            sicher += "&gt;";
        else if (zeile[i] == '"')
            sicher += "&quot;";
        else
            sicher += zeile[i];
    return sicher;
}

/// Counts of a test suite, or of all.
struct Zaehlung {
    std::size_t faelle = 0, fehler = 0, abstuerze = 0, uebersprungene = 0;

    std::string alsAttribute() const {
        return " tests=\"" + std::to_string(faelle) + "\" failures=\"" + std::to_string(fehler) +
               "\" errors=\"" + std::to_string(abstuerze) + "\" skipped=\"" + std::to_string(uebersprungene) +
               "\"";
    }
};

/// What stands in a test case.
std::string fallinhalt(const Befund& befund, Zaehlung& zaehlung) {
    const std::string grund = xml(befund.grund());
    const std::string attribute = " message=\"" + grund + "\" type=\"" + xml(befund.code) + "\"";
    switch (befund.urteil) {
    case Urteil::BESTANDEN:
        return {};
    case Urteil::WARNUNG:
        return "<system-out>warning: " + grund + "</system-out>";
    case Urteil::UEBERSPRUNGEN:
        ++zaehlung.uebersprungene;
        return "<skipped message=\"" + grund + "\"/>";
    case Urteil::DURCHGEFALLEN:
        ++zaehlung.fehler;
        return "<failure" + attribute + "/>";
    default:
        ++zaehlung.abstuerze;
        return "<error" + attribute + "/>";
    }
}

std::string suite(const Dateiergebnis& datei, Zaehlung& summe) {
    const std::string pfad = xml(datei.pfad);
    Zaehlung hier;
    std::string faelle;
    const auto fall = [&](const char* name, const Befund& befund) {
        ++hier.faelle;
        faelle += "    <testcase classname=\"" + pfad + "\" name=\"" + name + "\">" +
                  fallinhalt(befund, hier) + "</testcase>\n";
    };
    if (!fehlerVon(datei).empty())
        fall("file",
             {Urteil::ABGESTUERZT, fehlerVon(datei), datei.unlesbar.empty() ? "aborted" : "unreadable"});
    for (const Pruefergebnis& e : datei.ergebnisse)
        fall(e.pruefung->name, e.befund);
    summe.faelle += hier.faelle;
    summe.fehler += hier.fehler;
    summe.abstuerze += hier.abstuerze;
    summe.uebersprungene += hier.uebersprungene;
    return "  <testsuite name=\"" + pfad + "\"" + hier.alsAttribute() + ">\n" + faelle + "  </testsuite>\n";
}

/// The path as a URI: of a full path with the scheme "file", else relative.
std::string uri(const std::string& pfad) {
    std::string text = pfad.starts_with('/') ? "file://" : "";
    for (const char c : pfad) {
        char puffer[4];
        std::snprintf(puffer, sizeof puffer, "%%%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
        const bool bleibt = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                            std::string_view("-._~/").find(c) != std::string_view::npos;
        text += bleibt ? std::string(1, c) : puffer;
    }
    return text;
}

Json sarifOrte(const Dateiergebnis& datei) {
    return Json::array({{{"physicalLocation", {{"artifactLocation", {{"uri", uri(datei.pfad)}}}}}}});
}

Json sarifErgebnis(const Dateiergebnis& datei, const std::string& regel, const char* stufe,
                   const std::string& text) {
    return {
        {"ruleId", regel}, {"level", stufe}, {"message", {{"text", text}}}, {"locations", sarifOrte(datei)}};
}

/// A text in a workflow command. Parameters: in a property, the characters that end it are escaped too.
std::string kommandotext(std::string_view text, bool eigenschaft) {
    std::string sicher;
    for (const char c : einzeilig(text)) { // so that it has no line breaks
        if (c == '%')
            sicher += "%25";
        else if (eigenschaft && c == ':')
            sicher += "%3A";
        else if (eigenschaft && c == ',')
            sicher += "%2C";
        else
            sicher += c;
    }
    return sicher;
}

std::string kommando(const char* stufe, const Dateiergebnis& datei, const std::string& titel,
                     const std::string& text) {
    return std::string("::") + stufe + " file=" + kommandotext(datei.pfad, true) +
           ",title=" + kommandotext(titel, true) + "::" + kommandotext(text, false) + "\n";
}

} // namespace

std::string alsJunit(const std::vector<Dateiergebnis>& ergebnisse) {
    Zaehlung summe;
    std::string suiten;
    for (const Dateiergebnis& datei : ergebnisse)
        suiten += suite(datei, summe);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"orvoplugin check\"" +
           summe.alsAttribute() + ">\n" + suiten + "</testsuites>\n";
}

Json alsSarif(const std::vector<Dateiergebnis>& ergebnisse, const std::vector<const Pruefung*>& auswahl) {
    Json regeln = Json::array(), befunde = Json::array(), meldungen = Json::array();
    for (const Pruefung* const pruefung : auswahl)
        regeln.push_back({{"id", pruefung->name}, {"shortDescription", {{"text", pruefung->satz}}}});
    for (const Dateiergebnis& datei : ergebnisse) {
        if (!fehlerVon(datei).empty())
            meldungen.push_back({{"level", "error"},
                                 {"message", {{"text", fehlerVon(datei)}}},
                                 {"locations", sarifOrte(datei)}});
        for (const Pruefergebnis& e : datei.ergebnisse)
            if (e.befund.urteil == Urteil::WARNUNG || istFehler(e.befund.urteil)) {
                befunde.push_back(sarifErgebnis(datei, e.pruefung->name,
                                                istFehler(e.befund.urteil) ? "error" : "warning",
                                                meldung(e.befund)));
                befunde.back()["properties"] = {{"code", e.befund.code}};
            }
        for (const auto& [hindernis, zahl] : uebersprungeneNach(datei))
            befunde.push_back(sarifErgebnis(datei, hindernis, "note", uebersprungenSatz(zahl)));
    }
    const Json lauf{
        {"tool", {{"driver", {{"name", "orvoplugin"}, {"version", versionen()}, {"rules", regeln}}}}},
        {"invocations", Json::array({{{"executionSuccessful", meldungen.empty()},
                                      {"toolExecutionNotifications", meldungen}}})},
        {"results", befunde}};
    return {{"$schema",
             "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json"},
            {"version", "2.1.0"},
            {"runs", Json::array({lauf})}};
}

std::string alsGithub(const std::vector<Dateiergebnis>& ergebnisse) {
    std::string text;
    for (const Dateiergebnis& datei : ergebnisse) {
        if (!fehlerVon(datei).empty())
            text += kommando("error", datei, "orvoplugin check", fehlerVon(datei));
        for (const Pruefergebnis& e : datei.ergebnisse)
            if (e.befund.urteil == Urteil::WARNUNG || istFehler(e.befund.urteil))
                text += kommando(istFehler(e.befund.urteil) ? "error" : "warning", datei,
                                 std::string("orvoplugin check ") + e.pruefung->name, meldung(e.befund));
        for (const auto& [hindernis, zahl] : uebersprungeneNach(datei))
            text += kommando("notice", datei, "orvoplugin check " + hindernis, uebersprungenSatz(zahl));
    }
    return text;
}

} // namespace werkzeug::check
