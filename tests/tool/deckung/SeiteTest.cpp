// The page of orvoplugin coverage --html, as a browser shows it.

#include "Heim.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>

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
             "e 2009\ncheck a\x1b[31m\x9B\xFF 2009\nfeldinfo '\"& 2009\n");
        lege("libmonat.dylib", "produktversion 1\ncheck 77 2009-05,2009-42\n");
        lege("libabgelehnt.dylib", "abgelehnt\n");
    }
    void lege(const std::string& name, const std::string& text) { heim_.lege(ORVO_BESCHRIEBEN, name, text); }

    std::string schreibeSeite() {
        const std::string seite = heim_.verzeichnis.pfad("seite.html");
        const Ergebnis ergebnis = heim_.rufe({"coverage", "--quiet", "--html", seite});
        EXPECT_EQ(ergebnis.ausgang, 1) << ergebnis.fehler;
        return seite;
    }
    /// The results of the probe in the browser.
    Json probe() {
        std::string html = liesDatei(schreibeSeite());
        html.insert(html.rfind("</body>"), "<script>" + liesDatei(ORVO_SEITENPROBE) + "</script>");
        const std::string seite = heim_.verzeichnis.schreibe("probe.html", html);
        const Ergebnis ergebnis = rufe(
            "timeout", {"90", "chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                        "--no-first-run", "--disable-background-networking", "--disable-component-update",
                        "--disable-sync", "--user-data-dir=" + heim_.verzeichnis.pfad("profil"), "--dump-dom",
                        "file://" + seite});
        const std::string anfang = "<pre id=\"probe\">";
        const std::size_t von = ergebnis.ausgabe.rfind(anfang);
        if (von == std::string::npos) {
            ADD_FAILURE() << "the probe did not come to its end\n" << ergebnis.fehler;
            return {};
        }
        const std::size_t ab = von + anfang.size();
        return Json::parse(entschluesselt(ergebnis.ausgabe.substr(ab, ergebnis.ausgabe.find('<', ab) - ab)));
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
    if (zelle["answer"] == "gap") {
        EXPECT_EQ(gezeigt["kind"], "g");
        EXPECT_EQ(gezeigt["text"], "gap") << "not by colour alone";
        EXPECT_EQ(gezeigt["mark"], nullptr);
        return;
    }
    const bool ersatz = zelle["answer"] == "fallback";
    EXPECT_EQ(gezeigt["kind"], ersatz ? "f" : "o");
    EXPECT_EQ(gezeigt["text"].get<std::string>().find("fallback") != std::string::npos, ersatz);
    EXPECT_EQ(gezeigt["file"], zelle["plugin"]["file"]);
    EXPECT_EQ(gezeigt["version"], zelle["plugin"]["product_version"]);
    EXPECT_EQ(gezeigt["mark"], zeichen.at(zelle["plugin"]["file"]));
    const Json& zweiter = zelle["runner_up"];
    EXPECT_EQ(gezeigt["second"], zweiter.is_null() ? Json(nullptr) : Json(zeichen.at(zweiter["file"])));
    EXPECT_EQ(gezeigt["periods"], zelle["periods"].empty() ? Json(nullptr) : Json("2009-05, 2009Q2"));
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
        EXPECT_EQ(gefunden["plugins"][i], (Json{plugin["mark"], plugin["file"], plugin["product_version"],
                                                plugin["file_version"], plugin["resident"] ? "yes" : "no",
                                                plugin["serves"].dump(), plugin["runner_up"].dump()}));
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
            if (typ["by_sub_case_type_and_period"]) {
                EXPECT_EQ(gezeigt["name"], sichtbar(zeile["sub_case_type"]["name"]));
            }
            std::size_t spalte = 0;
            for (const Json& zelle : zeile["cells"])
                for (int jahr = zelle["from"]; jahr <= zelle["to"]; ++jahr, ++zellen, ++spalte)
                    vergleicheZelle(gezeigt["cells"][spalte], zelle, zeichen);
            if (!zeile["other_years"].is_null())
                vergleicheZelle(gezeigt["cells"][spalte], zeile["other_years"], zeichen);
        }
    }
    EXPECT_GT(zellen, 20u);
    EXPECT_EQ(gefunden["tables"][0]["heads"], (Json{"Sub-case type", "2007", "2008", "2009", "other years"}));
}

TEST_F(Seite, NothingThatAPluginSaysIsTakenForThePage) {
    const std::string html = liesDatei(schreibeSeite());
    EXPECT_THAT(html, Not(HasSubstr("<img")));
    EXPECT_THAT(html, Not(HasSubstr("<script>window")));
    EXPECT_THAT(html, Not(HasSubstr("\x1b")));
    EXPECT_THAT(html, HasSubstr("Gr\xC3\xB6\xC3\x9F"
                                "e"));
    EXPECT_THAT(html, Not(AnyOf(HasSubstr("http://"), HasSubstr("https://"), HasSubstr("@import"),
                                HasSubstr("url("))));
    UEBERSPRINGE_OHNE_BROWSER();
    const Json gefunden = probe();
    EXPECT_EQ(gefunden["hurt"], false);
    EXPECT_EQ(gefunden["foreign"], 0);
    EXPECT_EQ(gefunden["scripts"], 2) << "its own, and the probe";
}

TEST_F(Seite, TablesSayWhatTheyAreToAssistiveTechnology) {
    UEBERSPRINGE_OHNE_BROWSER();
    const Json gefunden = probe();
    EXPECT_EQ(gefunden["lang"], "en");
    EXPECT_THAT(gefunden["title"].get<std::string>(), StartsWith("Plugin coverage of /"));
    for (const Json& tabelle : gefunden["tables"]) {
        EXPECT_NE(tabelle["caption"], "");
        EXPECT_EQ(tabelle["scopes"], true);
        EXPECT_EQ(tabelle["sorts"][0], "ascending");
    }
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
    EXPECT_EQ(sortiert[0]["sorts"], (Json{"none", "none", "ascending", "none", "none"}));
    EXPECT_EQ(sortiert[1]["sorts"], (Json{"none", "none", "descending", "none", "none"}));
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
                                      {"End", 1, 4},
                                      {"Home", 1, 0},
                                      {"ArrowUp", 0, 0},
                                      {"ArrowUp", 0, 0},
                                      {"PageDown", 8, 0},
                                      {"Ctrl+End", 8, 4},
                                      {"Ctrl+Home", 0, 0}}));
    EXPECT_EQ(gefunden["details"]["hidden"], false);
    EXPECT_THAT(gefunden["details"]["text"].get<std::string>(),
                AllOf(HasSubstr("CHECK, 9, 2007"), HasSubstr("Nobody answers")));
    EXPECT_EQ(gefunden["closed"], true);
}

TEST_F(Seite, RowsAreFiltered) {
    UEBERSPRINGE_OHNE_BROWSER();
    const Json gefiltert = probe()["filtered"];
    EXPECT_EQ(gefiltert["words"], (Json{"LSTB"}));
    EXPECT_THAT(gefiltert["gap"], Not(Contains("10")));
    EXPECT_EQ(gefiltert["gap"].size(), 7u);
    EXPECT_EQ(gefiltert["fallback"], (Json{"10"}));
    EXPECT_EQ(gefiltert["contested"], (Json{"10"}));
    EXPECT_EQ(gefiltert["none"], Json::array());
    EXPECT_EQ(gefiltert["all"].size(), 8u);
}

TEST_F(Seite, APageThatCannotBeWrittenIsAnErrorWithItsReason) {
    const Ergebnis ergebnis = heim_.rufe({"coverage", "--html", "/gibt/es/nicht.html"});
    EXPECT_EQ(ergebnis.ausgang, 3);
    EXPECT_THAT(ergebnis.ausgabe, IsEmpty());
    EXPECT_THAT(ergebnis.fehler, HasSubstr("cannot write /gibt/es/nicht.html: No such file or directory"));
}
