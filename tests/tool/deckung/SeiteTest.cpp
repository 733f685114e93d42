// The pages of orvoplugin coverage --html and diff --html, as a browser shows them.

#include "Heim.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <utility>
#include <vector>

using namespace testing;
using Json = nlohmann::json;

namespace {

std::string liesDatei(const std::string& pfad) {
    std::ifstream strom(pfad, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(strom)), {});
}

std::string entschluesselt(const std::string& text) {
    std::string klar;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            klar += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            klar += text[i];
        }
    }
    return klar;
}

bool gibtEsChromium() {
    for (const char* const pfad : {"/usr/bin/chromium", "/usr/local/bin/chromium"})
        if (access(pfad, X_OK) == 0)
            return true;
    return false;
}

const std::string probenanfang = "<pre id=\"probe\">";

class Seite : public Test {
protected:
    Seite() {
        lege("libsteuer2008.dylib",
             "produktversion 1.2.0\nfileversion 7\ncheck 10 2007,2008\ncheck LSTB 2008\n");
        lege("libsteuer2009.dylib", "produktversion 2.0.1\ncheck 10 2008,2009\ncheck LSTB 2009\n"
                                    "check 12 2007,2009\ncheck 9 2008\n");
        lege("libimmer.dylib", "produktversion 1.0\ncheck 10 immer\nfinanzamt\nfehlertext 95 immer\n");
        lege("unter/libfa.dylib", "produktversion 9.0\nfinanzamt\nresident\n");
        lege("lib\"><img src=x onerror='window.boese=1'>.dylib",
             "produktversion <script>window.boese=1</script>\nfileversion &amp;\n"
             "check </td><script>window.boese=1</script> 2008\ncheck Gr\xF6\xDF"
             "e 2009\ncheck a\x1b[31m\x9B\xFF 2009\nfeldinfo '\"& 2009\nfeldinfo =1+1 2009\n");
        lege("libmonat.dylib", "produktversion 1\ncheck 77 2009-05,2009-42\n");
        lege("libabgelehnt.dylib", "abgelehnt\n");
    }
    void lege(const std::string& name, const std::string& text) { heim_.lege(ORVO_BESCHRIEBEN, name, text); }

    std::string schreibeSeite(std::vector<std::string> mehr = {}) {
        const std::string seite = heim_.verzeichnis.pfad("seite.html");
        mehr.insert(mehr.begin(), {"coverage", "--quiet", "--html", seite});
        const Ergebnis ergebnis = heim_.rufe(mehr);
        EXPECT_THAT(ergebnis.ausgang, AnyOf(0, 1, 5)) << ergebnis.fehler;
        return liesDatei(seite);
    }
    /// The page before and after the plugins of `neue` are added to the directory or replace those of their names.
    std::string schreibeVergleich(const std::vector<std::pair<std::string, std::string>>& neue) {
        heim_.verzeichnis.legeAn("neu");
        for (const auto& [name, text] : neue) {
            heim_.verzeichnis.schreibe("neu/" + name + ".txt", text);
            heim_.verzeichnis.kopiere(ORVO_BESCHRIEBEN, "neu/" + name);
        }
        const std::string seite = heim_.verzeichnis.pfad("vergleich.html");
        const Ergebnis ergebnis = rufeTool(
            {"diff", "--merge", "--quiet", "--html", seite, heim_.plugins(), heim_.verzeichnis.pfad("neu")});
        EXPECT_THAT(ergebnis.ausgang, AnyOf(0, 1)) << ergebnis.fehler;
        return liesDatei(seite);
    }
    /// The page's elements after its scripts have run.
    Ergebnis imBrowser(const std::string& html, const std::string& fenster = "1440,1043") {
        const std::string seite = heim_.verzeichnis.schreibe("probe.html", html);
        return rufe("timeout",
                    {"90", "chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                     "--no-first-run", "--disable-background-networking", "--disable-component-update",
                     "--disable-sync", "--enable-logging=stderr", "--window-size=" + fenster,
                     "--user-data-dir=" + heim_.verzeichnis.pfad("profil"), "--virtual-time-budget=20000",
                     "--dump-dom", "file://" + seite});
    }
    /// The page with the probe, which its security policy lets through.
    static std::string mitProbe(std::string html) {
        html = ersetze(html, "script-src '", "script-src 'nonce-probe' '");
        html.insert(html.rfind("</body>"),
                    "<script nonce=\"probe\">" + liesDatei(ORVO_SEITENPROBE) + "</script>");
        return html;
    }
    static Json ergebnisDerProbe(const Ergebnis& ergebnis) {
        const std::size_t von = ergebnis.ausgabe.rfind(probenanfang);
        if (von == std::string::npos) {
            ADD_FAILURE() << "the probe did not come to its end\n" << ergebnis.fehler;
            return {};
        }
        const std::size_t ab = von + probenanfang.size();
        return Json::parse(entschluesselt(ergebnis.ausgabe.substr(ab, ergebnis.ausgabe.find('<', ab) - ab)));
    }
    /// A browser that died on a busy machine says nothing about the page: it has three tries.
    Ergebnis bisZurProbe(const std::string& html) {
        Ergebnis ergebnis = imBrowser(html);
        for (int mal = 0; mal < 2 && ergebnis.ausgabe.find(probenanfang) == std::string::npos; ++mal)
            ergebnis = imBrowser(html);
        return ergebnis;
    }
    Json probe(const std::string& html) { return ergebnisDerProbe(bisZurProbe(mitProbe(html))); }
    Json probe() { return probe(schreibeSeite()); }
    /// The same in a frame of that width: a window of the browser is 500 pixels wide at least.
    Json probeImRahmen(const std::string& html, int breite) {
        heim_.verzeichnis.schreibe("innen.html", mitProbe(html));
        return ergebnisDerProbe(bisZurProbe(
            "<body><script>onmessage = event => { const pre = document.createElement('pre'); pre.id = 'probe';"
            "pre.textContent = encodeURIComponent(event.data); document.body.append(pre); };</script>"
            "<iframe src=\"innen.html\" height=\"800\" width=\"" +
            std::to_string(breite) + "\"></iframe></body>"));
    }
    Json dokument() { return Json::parse(heim_.rufe({"coverage", "--json"}).ausgabe); }

    const Heim heim_;
};

/// A text as displayed: control characters are escaped.
std::string sichtbar(const std::string& text) {
    return ersetze(ersetze(text, "\x1b", "\\x1b"), "\xC2\x9B", "\\x9b");
}

/// What the table has to show for a cell of the document.
void vergleicheZelle(const Json& gezeigt, const Json& zelle,
                     const std::map<std::string, std::string>& zeichen) {
    EXPECT_EQ(gezeigt["kind"], zelle["answer"]);
    if (zelle["answer"] == "gap") {
        EXPECT_EQ(gezeigt["text"], "–") << "not by colour alone";
        EXPECT_EQ(gezeigt["title"], "nobody");
        EXPECT_EQ(gezeigt["mark"], nullptr);
        return;
    }
    const bool ersatz = zelle["answer"] == "fallback";
    const std::string mark = zeichen.at(zelle["plugin"]["file"]);
    EXPECT_EQ(gezeigt["mark"], mark);
    EXPECT_EQ(gezeigt["text"], (ersatz ? "~" : "") + mark + (zelle["periods"].empty() ? "" : "*"));
    EXPECT_THAT(gezeigt["title"].get<std::string>(),
                HasSubstr(zelle["plugin"]["product_version"].get<std::string>()));
    const Json& zweiter = zelle["runner_up"];
    EXPECT_EQ(gezeigt["second"], zweiter.is_null() ? Json(nullptr) : Json(zeichen.at(zweiter["file"])));
    EXPECT_EQ(gezeigt["periods"], zelle["periods"].empty() ? Json(nullptr) : Json("2009-05, 2009Q2"));
}

/// Counts in each row of the sums: "served", "fallback", "gaps".
std::vector<std::string> summe(const Json& tabelle, const std::string& was) {
    for (const Json& zeile : tabelle["sums"])
        if (zeile[0] == was)
            return zeile;
    return {};
}

#define UEBERSPRINGE_OHNE_BROWSER()                                                                          \
    if (!gibtEsChromium())                                                                                   \
    GTEST_SKIP() << "there is no chromium here: apt-get install chromium"

} // namespace

TEST_F(Seite, ShowsInABrowserWhatTheJsonSays) {
    UEBERSPRINGE_OHNE_BROWSER();
    const Json gefunden = probe();
    const Json soll = dokument();
    ASSERT_EQ(gefunden["tables"].size(), soll["types"].size());
    std::map<std::string, std::string> zeichen;
    for (std::size_t i = 0; i < soll["plugins"].size(); ++i) {
        const Json& plugin = soll["plugins"][i];
        zeichen[plugin["file"]] = plugin["mark"];
        EXPECT_EQ(gefunden["plugins"][i]["p"], plugin["mark"]);
        EXPECT_EQ(gefunden["plugins"][i]["file"], plugin["file"]);
        EXPECT_EQ(gefunden["plugins"][i]["version"], plugin["product_version"]);
        EXPECT_EQ(gefunden["plugins"][i]["fileVersion"], plugin["file_version"]);
    }
    std::size_t zellen = 0;
    for (std::size_t t = 0; t < soll["types"].size(); ++t) {
        const Json& typ = soll["types"][t];
        const Json& tabelle = gefunden["tables"][t];
        EXPECT_EQ(tabelle["type"], typ["type"]["number"]);
        ASSERT_EQ(tabelle["rows"].size(), typ["rows"].size());
        for (std::size_t r = 0; r < typ["rows"].size(); ++r) {
            const Json& zeile = typ["rows"][r];
            const Json& gezeigt = tabelle["rows"][r];
            EXPECT_EQ(gezeigt["count"], zeile["gaps"].dump());
            if (typ["by_sub_case_type_and_period"]) {
                EXPECT_EQ(gezeigt["name"], sichtbar(zeile["sub_case_type"]["name"]));
            }
            std::size_t spalte = typ["columns"].size(); // the newest year comes first
            for (const Json& zelle : zeile["cells"])
                for (int jahr = zelle["from"]; jahr <= zelle["to"]; ++jahr, ++zellen)
                    vergleicheZelle(gezeigt["cells"][--spalte], zelle, zeichen);
            if (!zeile["other_years"].is_null())
                vergleicheZelle(gezeigt["cells"].back(), zeile["other_years"], zeichen);
        }
    }
    EXPECT_GT(zellen, 20u);
    EXPECT_EQ(gefunden["tables"][0]["heads"],
              (Json{"Sub-case type", "2009", "2008", "2007", "other", "gaps"}));
}

TEST_F(Seite, NothingThatAPluginSaysIsTakenForThePage) {
    for (const std::string& seite :
         {schreibeSeite(), schreibeVergleich({{"libneu.dylib", "check 10 2009\n"}})}) {
        EXPECT_THAT(seite, Not(HasSubstr("<img")));
        EXPECT_THAT(seite, Not(HasSubstr("<script>window")));
        EXPECT_THAT(seite, Not(HasSubstr("\x1b")));
        EXPECT_THAT(seite, HasSubstr("Gr\xC3\xB6\xC3\x9F"
                                     "e"));
        EXPECT_THAT(seite, Not(AnyOf(HasSubstr("http://"), HasSubstr("https://"), HasSubstr("@import"),
                                     HasSubstr("url("), HasSubstr("style=\""), HasSubstr("onclick"))));
    }
    UEBERSPRINGE_OHNE_BROWSER();
    const Json gefunden = probe();
    EXPECT_EQ(gefunden["hurt"], false);
    EXPECT_EQ(gefunden["foreign"], 0);
    EXPECT_EQ(gefunden["scripts"], 2) << "its own, and the probe";
}

TEST_F(Seite, OnlyItsOwnStyleAndScriptAreAllowed) {
    const std::string html = schreibeSeite();
    EXPECT_THAT(html, Not(HasSubstr("unsafe")));
    EXPECT_THAT(html, HasSubstr("content=\"default-src 'none'; style-src 'sha256-"));
    UEBERSPRINGE_OHNE_BROWSER();
    const std::string versteckt = "aria-label=\"Filter of the tables\" hidden";
    const Ergebnis ganz = imBrowser(html);
    EXPECT_THAT(ganz.ausgabe, Not(HasSubstr(versteckt))) << "the script ran";
    EXPECT_THAT(ganz.fehler, Not(HasSubstr("Content Security Policy")));
    const Ergebnis anders = imBrowser(ersetze(html, "\"use strict\";", "\"use strict\"; window.boese = 1;"));
    EXPECT_THAT(anders.ausgabe, HasSubstr(versteckt)) << "another script does not";
    EXPECT_THAT(anders.fehler, HasSubstr("Content Security Policy"));
    EXPECT_THAT(imBrowser(ersetze(html, "<style>", "<style>a{}")).fehler,
                HasSubstr("Content Security Policy"));
    EXPECT_EQ(probe()["styled"], "sticky");
}

TEST_F(Seite, WithoutScriptsThereIsNothingThatDoesNothing) {
    std::string html = schreibeSeite();
    html.erase(html.find("<script"), html.rfind("</script>") - html.find("<script"));
    const std::size_t werkzeuge = html.find("<div class=\"tools\"");
    const std::size_t ende = html.find("</div>", werkzeuge);
    EXPECT_THAT(html.substr(werkzeuge, ende - werkzeuge), HasSubstr(" hidden>"));
    html.erase(werkzeuge, ende - werkzeuge);
    for (const char* const bedienung : {"<button", "<input", "<select", "role=\"grid\"", "aria-sort=\""})
        EXPECT_EQ(html.find(bedienung), std::string::npos) << bedienung;
    EXPECT_THAT(html, HasSubstr("title=\"steuer2009 2.0.1; then steuer2008 1.2.0\""))
        << "the details are there";
}

TEST_F(Seite, TablesSayWhatTheyAreToAssistiveTechnology) {
    UEBERSPRINGE_OHNE_BROWSER();
    const Json gefunden = probe();
    EXPECT_EQ(gefunden["lang"], "en");
    EXPECT_THAT(gefunden["title"].get<std::string>(), StartsWith("Plugin coverage: /"));
    for (const Json& tabelle : gefunden["tables"]) {
        EXPECT_EQ(tabelle["labelled"], true);
        EXPECT_EQ(tabelle["scopes"], true);
        EXPECT_EQ(tabelle["sorts"][0], "ascending");
    }
    EXPECT_THAT(gefunden["labels"], Each(1));
    const std::vector<std::string> namen = gefunden["ids"];
    EXPECT_EQ(std::set<std::string>(namen.begin(), namen.end()).size(), namen.size());
    for (const Json& ziel : gefunden["targets"])
        EXPECT_THAT(namen, Contains(ziel.get<std::string>()));
}

TEST_F(Seite, SaysWhenAndByWhatItWasMade) {
    UEBERSPRINGE_OHNE_BROWSER();
    const std::string fuss = probe(schreibeSeite({"--resident", "a b,"}))["footer"];
    EXPECT_THAT(fuss, ContainsRegex("20[0-9]{2}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2} UTC"));
    const std::string versionen = rufeTool({"--version"}).ausgabe;
    EXPECT_THAT(fuss, HasSubstr(versionen.substr(0, versionen.size() - 1)));
    EXPECT_THAT(fuss,
                AllOf(HasSubstr("orvoplugin coverage --quiet --html /"), HasSubstr("--resident 'a b,'")));
}

TEST_F(Seite, PluginsHaveShortNamesAndTheirFolderWhereItIsNeeded) {
    lege("unter/libmonat.dylib", "produktversion 2\ncheck 77 2008\n");
    lege("unter/lohn.dylib", "produktversion 3\ncheck 78 2008\n");
    UEBERSPRINGE_OHNE_BROWSER();
    std::vector<std::string> namen;
    const Json gefunden = probe();
    for (const Json& plugin : gefunden["plugins"])
        namen.push_back(plugin["name"]);
    EXPECT_THAT(namen, ElementsAre("\"><img src=x onerror='window.boese=1'>", "immer", "monat", "steuer2008",
                                   "steuer2009", "fa", "unter/monat", "lohn"));
}

TEST_F(Seite, CellsAreCountedByYearAndByPlugin) {
    UEBERSPRINGE_OHNE_BROWSER();
    const Json gefunden = probe();
    const Json soll = dokument();
    const Json& tabelle = gefunden["tables"][0];
    EXPECT_THAT(summe(tabelle, "served"), ElementsAre("served", "6", "4", "2", "", "12"));
    EXPECT_THAT(summe(tabelle, "gaps"), ElementsAre("gaps", "2", "4", "6", "", "12"));
    EXPECT_EQ(gefunden["yearHeads"], (Json{"Plugin", "Version", "File version", "Resident", "Runner-up",
                                           "Cells", "2009", "2008", "2007", "File"}));
    for (const Json& plugin : gefunden["byYear"])
        if (plugin[0] == "D steuer2009") {
            EXPECT_EQ(plugin, (Json{"D steuer2009", "2.0.1", "", "no", "0", "6", "3", "2", "1",
                                    "libsteuer2009.dylib"}));
        }
    EXPECT_THAT(gefunden["byYear"], SizeIs(soll["plugins"].size()));
}

TEST_F(Seite, GapsAreListedAndTheRequiredOnesMarked) {
    const std::string soll = heim_.verzeichnis.schreibe(
        "muss.txt", "check 12 2007-2009\ncheck lstb 2007\ncheck 4711 2005-2007\nreader\ncheck 9 2009-05\n");
    UEBERSPRINGE_OHNE_BROWSER();
    const Json gefunden = probe(schreibeSeite({"--require", soll}));
    const std::vector<Json> luecken = gefunden["gaps"];
    ASSERT_GE(luecken.size(), 8u);
    EXPECT_EQ(gefunden["required"], 5);
    EXPECT_EQ(luecken[0], (Json{"CHECK 12", "2008", "line 1"}));
    EXPECT_EQ(luecken[1], (Json{"CHECK lstb", "2007", "line 2"}));
    EXPECT_EQ(luecken[2], (Json{"CHECK 4711", "2005–2007", "line 3"}));
    EXPECT_EQ(luecken[3], (Json{"DATENSATZ_READER any", "any", "line 4"}));
    EXPECT_EQ(luecken[4], (Json{"CHECK 9", "2009-05", "line 5"}));
    EXPECT_THAT(luecken, Contains(Json{"CHECK 9", "2007", ""}));
    EXPECT_THAT(luecken, Contains(Json{"CHECK 77", "2007–2008", ""}));
    std::size_t verlangte = 0;
    for (const Json& zeile : gefunden["tables"][0]["rows"])
        for (const Json& zelle : zeile["cells"])
            if (zelle["required"]) {
                EXPECT_EQ(zelle["text"], "!");
                ++verlangte;
            }
    EXPECT_EQ(verlangte, 3u) << "the others are outside the table";
    EXPECT_THAT(gefunden["tiles"], Contains("7 required, not served"));
}

TEST_F(Seite, SixtySubCaseTypesByTwentyFiveYearsFitOnOneScreen) {
    std::string text = "produktversion 1.0\n";
    for (int art = 100; art < 160; ++art) {
        text += "check " + std::to_string(art) + " 2001";
        for (int jahr = 2002; jahr <= 2025; ++jahr)
            text += "," + std::to_string(jahr);
        text += "\n";
    }
    std::filesystem::remove_all(heim_.plugins());
    heim_.verzeichnis.legeAn("plugins");
    lege("liballes.dylib", text);
    UEBERSPRINGE_OHNE_BROWSER();
    const std::string html = schreibeSeite();
    const Json gross = probe(html);
    EXPECT_THAT(gross["tables"][0]["rows"], SizeIs(60));
    EXPECT_THAT(gross["tables"][0]["heads"], SizeIs(27));
    const Json& platz = gross["room"];
    EXPECT_LE(platz["window"][1], 900);
    EXPECT_LE(platz["bottom"], platz["window"][1]);
    EXPECT_LE(platz["right"], platz["window"][0]);
    EXPECT_EQ(platz["scrolls"], false);
    EXPECT_GE(platz["type"], 8) << "large enough to be read";
    EXPECT_EQ(gross["headerAfterScrolling"], 0) << "it stays in sight";

    const Json schmal = probeImRahmen(html, 400);
    EXPECT_EQ(schmal["room"]["window"][0], 400);
    EXPECT_EQ(schmal["room"]["overflow"], 0) << "only the table scrolls sideways";
    EXPECT_GE(schmal["room"]["type"], 12);
    EXPECT_GT(schmal["scrolled"], 100);
    EXPECT_LE(schmal["yearsAfterScrolling"], 2) << "the years stay at the top of the table";
}

TEST_F(Seite, HeadersSortByClicks) {
    UEBERSPRINGE_OHNE_BROWSER();
    const Json sortiert = probe()["sorting"];
    const std::string fremd = "</td><script>window.boese=1</script>";
    const std::string bytes = "a\\x1b[31m\\x9b\xC3\xBF";
    const std::string groesse = "Gr\xC3\xB6\xC3\x9F"
                                "e";
    const Json urspruenglich{"9", "10", "12", "77", fremd, bytes, groesse, "LSTB"};
    // By who serves 2008, gaps last: the hostile name, steuer2008, steuer2009 twice.
    EXPECT_EQ(sortiert[0]["names"], (Json{fremd, "LSTB", "9", "10", "12", "77", bytes, groesse}));
    EXPECT_EQ(sortiert[0]["sorts"], (Json{"none", "none", "ascending", "none", "none", "none"}));
    EXPECT_EQ(sortiert[1]["sorts"], (Json{"none", "none", "descending", "none", "none", "none"}));
    EXPECT_EQ(sortiert[1]["names"].back(), fremd);
    EXPECT_EQ(sortiert[2]["names"], urspruenglich);
    EXPECT_EQ(sortiert[2]["sorts"][0], "ascending");
    Json umgekehrt = urspruenglich;
    std::reverse(umgekehrt.begin(), umgekehrt.end());
    EXPECT_EQ(sortiert[3]["names"], umgekehrt);
    EXPECT_EQ(sortiert[4]["names"], urspruenglich);
}

TEST_F(Seite, IsUsedByTheKeyboardAlone) {
    UEBERSPRINGE_OHNE_BROWSER();
    const Json gefunden = probe();
    for (const Json& stops : gefunden["stops"])
        EXPECT_EQ(stops, 1) << "one stop of the tab key for each table";
    EXPECT_EQ(gefunden["walk"], (Json{{"ArrowDown", 1, 0},
                                      {"ArrowRight", 1, 1},
                                      {"ArrowRight", 1, 2},
                                      {"End", 1, 5},
                                      {"Home", 1, 0},
                                      {"ArrowUp", 0, 0},
                                      {"ArrowUp", 0, 0},
                                      {"PageDown", 8, 0},
                                      {"Ctrl+End", 8, 5},
                                      {"Ctrl+Home", 0, 0}}));
    EXPECT_THAT(gefunden["details"].get<std::string>(),
                AllOf(HasSubstr("CHECK, 9, 2009"), HasSubstr("nobody")));
    EXPECT_EQ(gefunden["closed"], true);
}

TEST_F(Seite, RowsAndColumnsAreFiltered) {
    UEBERSPRINGE_OHNE_BROWSER();
    const Json gefiltert = probe()["filtered"];
    EXPECT_EQ(gefiltert["words"]["names"], (Json{"LSTB"}));
    EXPECT_EQ(gefiltert["words"]["status"], "1 of 12 rows shown");
    EXPECT_EQ(gefiltert["words"]["sums"][0], (Json{"served", "1", "1", "0", "", "2"}))
        << "of what is in sight";
    EXPECT_EQ(gefiltert["plugin"]["names"], (Json{"77"}));
    EXPECT_EQ(gefiltert["years"]["heads"], (Json{"Sub-case type", "2008", "other", "gaps"}));
    EXPECT_THAT(gefiltert["gap"]["names"], Not(Contains("10")));
    EXPECT_THAT(gefiltert["gap"]["names"], SizeIs(7));
    EXPECT_EQ(gefiltert["fallback"]["names"], (Json{"10"}));
    EXPECT_EQ(gefiltert["fallback"]["heads"], (Json{"Sub-case type", "other", "gaps"}));
    EXPECT_EQ(gefiltert["contested"]["names"], (Json{"10"}));
    EXPECT_EQ(gefiltert["contested"]["heads"], (Json{"Sub-case type", "2008", "gaps"}));
    EXPECT_EQ(gefiltert["none"]["names"], Json::array());
    EXPECT_EQ(gefiltert["all"]["names"].size(), 8u);
    EXPECT_EQ(gefiltert["all"]["heads"].size(), 6u);
}

TEST_F(Seite, WhatIsInSightCanBeDownloadedAsCsv) {
    UEBERSPRINGE_OHNE_BROWSER();
    const Json gefunden = probe();
    EXPECT_EQ(
        gefunden["csvOfRow"],
        "\xEF\xBB\xBF\"type\";\"sub_case_type\";\"from\";\"to\";\"answer\";\"plugin\";\"version\";"
        "\"runner_up\";\"runner_up_version\";\"periods\";\"required\"\r\n"
        "\"CHECK\";\"LSTB\";\"2009\";\"2009\";\"served\";\"libsteuer2009.dylib\";\"2.0.1\";\"\";\"\";\"\";"
        "\"\"\r\n"
        "\"CHECK\";\"LSTB\";\"2008\";\"2008\";\"served\";\"libsteuer2008.dylib\";\"1.2.0\";\"\";\"\";\"\";"
        "\"\"\r\n"
        "\"CHECK\";\"LSTB\";\"2007\";\"2007\";\"gap\";\"\";\"\";\"\";\"\";\"\";\"\"\r\n"
        "\"CHECK\";\"LSTB\";\"other\";\"other\";\"none\";\"\";\"\";\"\";\"\";\"\";\"\"\r\n");
    const std::string alles = gefunden["csv"];
    EXPECT_THAT(alles, HasSubstr("\"FELD_INFORMATION\";\"'=1+1\";\"2009\"")) << "no formula";
    EXPECT_THAT(alles, HasSubstr("\"lib\"\"><img src=x onerror='window.boese=1'>.dylib\""));
    EXPECT_THAT(alles, HasSubstr("\"77\";\"2009\";\"2009\";\"served\";\"libmonat.dylib\";\"1\";\"\";\"\";"
                                 "\"2009-05, 2009Q2\""));
    EXPECT_THAT(alles, HasSubstr("\"10\";\"2008\";\"2008\";\"served\";\"libsteuer2009.dylib\";\"2.0.1\";"
                                 "\"libsteuer2008.dylib\";\"1.2.0\""));
}

TEST_F(Seite, AComparisonShowsBeforeAndAfterInEachCell) {
    const std::string html = schreibeVergleich(
        {{"libsteuer2008.dylib", "produktversion 1.1.0\ncheck 10 2007\n"},
         {"libsteuer2009.dylib", "produktversion 3.0\ncheck 10 2009\ncheck LSTB 2009\ncheck 12 2007,2009\n"},
         {"libneu.dylib", "produktversion 4.0\ncheck 12 2009\ncheck LSTB 2010\n"}});
    UEBERSPRINGE_OHNE_BROWSER();
    const Json gefunden = probe(html);
    EXPECT_EQ(gefunden["tables"][0]["heads"],
              (Json{"Sub-case type", "2010", "2009", "2008", "2007", "other", "changes"}));
    std::map<std::string, std::vector<std::string>> zellen;
    for (const Json& zeile : gefunden["tables"][0]["rows"])
        for (const Json& zelle : zeile["cells"])
            zellen[zeile["name"]].push_back(zelle["kind"].get<std::string>() + " " +
                                            zelle["text"].get<std::string>());
    // B immer, D neu, E steuer2008, F steuer2009
    EXPECT_THAT(zellen["10"], ElementsAre("same ~B", "newer F↑", "lost F›~B", "lower E↓", "same ~B"));
    EXPECT_THAT(zellen["12"], ElementsAre("gap –", "other F›D", "gap –", "newer F↑", "none –"));
    EXPECT_THAT(zellen["LSTB"], ElementsAre("gained –›D", "newer F↑", "lost E›–", "gap –", "none –"));
    EXPECT_THAT(zellen["9"], ElementsAre("gap –", "gap –", "lost F›–", "gap –", "none –"));
    EXPECT_EQ(gefunden["tables"][0]["rows"][1]["cells"][2]["title"],
              "before: steuer2009 2.0.1; after: immer 1.0 (period-independent)");
    EXPECT_THAT(summe(gefunden["tables"][0], "lost"), ElementsAre("lost", "0", "0", "3", "0", "", "3"));
    EXPECT_THAT(gefunden["legend"],
                IsSupersetOf({"D neu – › 4.0", "F steuer2009 2.0.1 › 3.0", "B immer 1.0"}));
    EXPECT_THAT(gefunden["gaps"],
                ElementsAre(Json{"CHECK 9", "2008", "before: steuer2009 2.0.1; after: nobody"},
                            Json{"CHECK 10", "2008",
                                 "before: steuer2009 2.0.1; after: immer 1.0 (period-independent)"},
                            Json{"CHECK 10", "2007", "before: steuer2008 1.2.0; after: steuer2008 1.1.0"},
                            Json{"CHECK LSTB", "2008", "before: steuer2008 1.2.0; after: nobody"}));
    EXPECT_THAT(gefunden["notes"], IsSupersetOf({"libneu.dylib added: not there › loaded 4.0",
                                                 "steuer2009 3.0 by neu 4.0 newly displaced: 1 keys"}));
    EXPECT_EQ(gefunden["filtered"]["lost"]["names"], (Json{"9", "10", "LSTB"}));
    EXPECT_EQ(gefunden["filtered"]["lost"]["heads"], (Json{"Sub-case type", "2008", "changes"}));
    EXPECT_THAT(gefunden["csv"].get<std::string>(),
                HasSubstr("\"10\";\"2009\";\"2009\";\"newer\";\"libsteuer2009.dylib\";\"2.0.1\";"
                          "\"libsteuer2009.dylib\";\"3.0\"\r\n"));
}

TEST_F(Seite, NamesThatLookTheSameHaveARowEach) {
    lege("liblatin1.dylib", "produktversion 1\ncheck \xFC 2009\n");
    lege("libutf8.dylib", "produktversion 2\ncheck \xC3\xBC 2009\n");
    const std::string html = schreibeSeite();
    const std::string zeile = "<th scope=\"row\" title=\"ü\">";
    const std::size_t erste = html.find(zeile);
    ASSERT_NE(erste, std::string::npos);
    EXPECT_NE(html.find(zeile, erste + 1), std::string::npos);
}

TEST_F(Seite, AnEmptyDirectoryGivesAPageThatSaysSo) {
    std::filesystem::remove_all(heim_.plugins());
    heim_.verzeichnis.legeAn("plugins");
    const std::string html = schreibeSeite();
    EXPECT_THAT(html, AllOf(HasSubstr("Nothing is served."), Not(HasSubstr("<table"))));
}

TEST_F(Seite, APageThatCannotBeWrittenIsAnErrorWithItsReason) {
    const Ergebnis ergebnis = heim_.rufe({"coverage", "--html", "/gibt/es/nicht.html"});
    EXPECT_EQ(ergebnis.ausgang, 3);
    EXPECT_THAT(ergebnis.ausgabe, IsEmpty());
    EXPECT_THAT(ergebnis.fehler, HasSubstr("cannot write /gibt/es/nicht.html: No such file or directory"));
}
