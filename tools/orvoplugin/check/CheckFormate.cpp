// The results of `check` in the formats of build servers.

#include "check/CheckAusgabe.h"
#include "check/Junitvorlage.h"
#include "deckung/Vorlage.h"
#include "kern/Herkunft.h"

#include <cstdio>

namespace werkzeug::check {

namespace {

/// A test case of JUnit; what it counts as is true.
Json fall(const char* name, const Befund& befund) {
    return {{"name", name},
            {"reason", befund.grund()},
            {"code", befund.code},
            {"tests", true},
            {"failures", befund.urteil == Urteil::DURCHGEFALLEN},
            {"errors", artVon(befund.urteil).ausgang == Ausgang::ABGESTUERZT},
            {"skipped", befund.urteil == Urteil::UEBERSPRUNGEN},
            {"warnings", befund.urteil == Urteil::WARNUNG}};
}

Json suite(const Dateiergebnis& datei) {
    Json faelle = Json::array();
    if (!datei.fehler.empty())
        faelle.push_back(
            fall("file", {Urteil::ABGESTUERZT, datei.fehler, datei.istUnlesbar ? "unreadable" : "aborted"}));
    for (const Pruefergebnis& e : datei.ergebnisse)
        faelle.push_back(fall(e.pruefung->name, e.befund));
    return {{"file", jsonText(datei.pfad)}, {"cases", faelle}};
}

/// What SARIF and GitHub report: of a file as a whole, of a check, or of the checks in whose way that one stood.
struct Meldung {
    std::string pfad, pruefung; ///< no check: the file
    const char* stufe;          ///< "error", "warning" or "note"
    std::string text, code = {};
};

std::vector<Meldung> meldungen(const std::vector<Dateiergebnis>& ergebnisse) {
    std::vector<Meldung> alle;
    for (const Dateiergebnis& datei : ergebnisse) {
        if (!datei.fehler.empty())
            alle.push_back({datei.pfad, {}, "error", datei.fehler});
        for (const auto& [pruefung, befund] : datei.ergebnisse)
            if (istAuffaellig(befund.urteil))
                alle.push_back({datei.pfad, pruefung->name, istHindernis(befund.urteil) ? "error" : "warning",
                                urteilName(befund.urteil) + (": " + befund.grund()), befund.code});
        for (const auto& [hindernis, zahl] : uebersprungeneNach(datei))
            alle.push_back({datei.pfad, hindernis, "note",
                            std::to_string(zahl) + (zahl == 1 ? " check was" : " checks were") +
                                " skipped, because they build on this one"});
    }
    return alle;
}

/// A character as "%25".
std::string prozent(char c) {
    char puffer[4];
    std::snprintf(puffer, sizeof puffer, "%%%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
    return puffer;
}

/// The path as a URI: of a full path with the scheme "file", else relative.
std::string uri(const std::string& pfad) {
    std::string text = pfad.starts_with('/') ? "file://" : "";
    for (const char c : pfad) {
        const bool bleibt = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                            std::string_view("-._~/").find(c) != std::string_view::npos;
        text += bleibt ? std::string(1, c) : prozent(c);
    }
    return text;
}

/// A text in a workflow command. Parameters: in a property, the characters that end it are escaped too.
std::string kommandotext(std::string_view text, bool eigenschaft) {
    std::string sicher;
    for (const char c : einzeilig(text)) // so that it has no line breaks
        sicher += c == '%' || (eigenschaft && (c == ':' || c == ',')) ? prozent(c) : std::string(1, c);
    return sicher;
}

} // namespace

std::string alsJunit(const std::vector<Dateiergebnis>& ergebnisse) {
    const Json nichts{{"tests", 0}, {"failures", 0}, {"errors", 0}, {"skipped", 0}};
    Json alles = nichts;
    alles["suites"] = Json::array();
    for (const Dateiergebnis& datei : ergebnisse) {
        Json& eine = alles["suites"].emplace_back(suite(datei));
        eine.update(nichts);
        for (const Json& fall : eine["cases"])
            for (const auto& [name, null] : nichts.items())
                for (Json* const summe : {&eine, &alles})
                    (*summe)[name] = (*summe)[name].get<int>() + (fall[name] == true ? 1 : 0);
    }
    std::string xml = fuelleVorlage(kJunitvorlage, alles);
    for (const char* const zeichen : {"\uFFFE", "\uFFFF"}) // which XML cannot hold
        for (std::size_t i = 0; (i = xml.find(zeichen, i)) != std::string::npos;)
            xml.replace(i, 3, "\uFFFD");
    return xml;
}

Json alsSarif(const std::vector<Dateiergebnis>& ergebnisse, const std::vector<const Pruefung*>& auswahl) {
    Json regeln = Json::array(), befunde = Json::array(), fehler = Json::array();
    for (const Pruefung* const pruefung : auswahl)
        regeln.push_back({{"id", pruefung->name}, {"shortDescription", {{"text", pruefung->satz}}}});
    for (const Meldung& m : meldungen(ergebnisse)) {
        Json eintrag{{"level", m.stufe}, {"message", {{"text", m.text}}}};
        eintrag["locations"] =
            Json::array({{{"physicalLocation", {{"artifactLocation", {{"uri", uri(m.pfad)}}}}}}});
        if (!m.pruefung.empty())
            eintrag["ruleId"] = m.pruefung;
        if (!m.code.empty())
            eintrag["properties"] = {{"code", m.code}};
        (m.pruefung.empty() ? fehler : befunde).push_back(eintrag);
    }
    const Json lauf{
        {"tool", {{"driver", {{"name", "orvoplugin"}, {"version", versionen()}, {"rules", regeln}}}}},
        {"invocations",
         Json::array({{{"executionSuccessful", fehler.empty()}, {"toolExecutionNotifications", fehler}}})},
        {"results", befunde}};
    return {{"$schema",
             "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json"},
            {"version", "2.1.0"},
            {"runs", Json::array({lauf})}};
}

std::string alsGithub(const std::vector<Dateiergebnis>& ergebnisse) {
    std::string text;
    for (const Meldung& m : meldungen(ergebnisse))
        text += (m.stufe == std::string_view("note") ? "::notice" : std::string("::") + m.stufe) +
                " file=" + kommandotext(m.pfad, true) + ",title=orvoplugin check" +
                (m.pruefung.empty() ? "" : " ") + m.pruefung + "::" + kommandotext(m.text, false) + "\n";
    return text;
}

} // namespace werkzeug::check
