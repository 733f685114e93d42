#include "deckung/Deckungsseite.h"

#include "deckung/Deckungsbericht.h"
#include "deckung/Seitenteile.h"
#include "kern/Berichtsteile.h"

#include <algorithm>
#include <cstdint>
#include <map>

namespace werkzeug {

namespace {

constexpr std::size_t kMeisteZellen = 500000; // of one table; a browser shows no more in reasonable time

constexpr char kKopf[] =
    "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
    "<meta name=\"color-scheme\" content=\"light dark\">\n"
    // the page loads nothing
    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src 'unsafe-inline'; "
    "script-src 'unsafe-inline'; base-uri 'none'; form-action 'none'\">\n";

constexpr char kWerkzeuge[] =
    "<div class=\"tools\" id=\"tools\" role=\"search\" aria-label=\"Rows of the tables\" hidden>\n"
    "<label>Filter<input id=\"filter\" type=\"search\" autocomplete=\"off\" spellcheck=\"false\" "
    "placeholder=\"sub-case type, plugin or version\"></label>\n"
    "<label>Show<select id=\"show\"><option value=\"all\">all rows</option>"
    "<option value=\"gap\">rows with a gap</option><option value=\"fallback\">rows with a fallback</option>"
    "<option value=\"contested\">rows with a runner-up</option></select></label>\n"
    "<output id=\"status\" role=\"status\"></output>\n"
    "<p class=\"keys\"><kbd>Tab</kbd> goes from table to table, the arrow keys, <kbd>Home</kbd>, "
    "<kbd>End</kbd> and "
    "<kbd>Page</kbd> keys from cell to cell; the details of a cell stand at the bottom. Headers "
    "sort.</p>\n</div>\n";

std::string sicher(const std::string& text) {
    std::string html;
    html.reserve(text.size());
    for (const char c : text) {
        switch (c) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default:
            html += c;
        }
    }
    return html;
}

/// A text of the document, escaped for the page.
std::string sicher(const Json& wert) {
    return sicher(wert.is_string() ? einzeilig(wert.get_ref<const std::string&>())
                                   : (wert.is_null() ? std::string() : wert.dump()));
}

std::string element(const char* name, const std::string& inhalt) {
    return std::string("<") + name + ">" + inhalt + "</" + name + ">";
}

/// The file's name in an element that shortens its middle when it is too long.
std::string zweiteiligerName(const Json& datei) {
    constexpr std::size_t kHinten = 10; // "2009.dylib"
    const std::string name = einzeilig(datei.get_ref<const std::string&>());
    std::size_t schnitt = name.size() - std::min(name.size(), kHinten);
    while (schnitt > 0 && (static_cast<unsigned char>(name[schnitt]) & 0xC0) == 0x80)
        --schnitt;
    return "<span class=\"n\"><span>" + sicher(name.substr(0, schnitt)) + "</span><span>" +
           sicher(name.substr(schnitt)) + "</span></span>";
}

class Seite {
public:
    explicit Seite(const Json& dokument) : dokument_(dokument) {
        constexpr unsigned kGoldenerWinkel = 137; // degrees: neighbours differ most
        unsigned ton = 200;
        for (const Json& plugin : dokument["plugins"]) {
            const std::string zeichen = plugin["mark"];
            zeichen_[plugin["file"]] = {
                zeichen, "<b class=\"k\" style=\"--h:" + std::to_string(ton % 360) + "\">" + zeichen + "</b>",
                zweiteiligerName(plugin["file"])};
            ton += kGoldenerWinkel;
        }
    }

    std::string alsHtml() {
        const std::string ort = sicher(dokument_["plugin_directory"]);
        html_ = kKopf;
        html_ += element("title", "Plugin coverage of " + ort) + "\n<style>\n" + kSeitenstil +
                 "</style>\n</head>\n<body>\n";
        html_ += "<header>\n<h1>Plugin coverage</h1>\n<p>Which plugin answers for which sub-case type and "
                 "year, in "
                 "<code>" +
                 ort + "</code></p>\n";
        summen();
        html_ += "</header>\n<main>\n";
        fehlendes();
        ausfaelle();
        if (dokument_["types"].empty()) {
            html_ += "<p>Nothing is served.</p>\n";
            html_ += "</main>\n</body>\n</html>\n";
            return std::move(html_);
        }
        html_ += kWerkzeuge;
        legende();
        for (const Json& typ : dokument_["types"])
            abschnitt(typ);
        plugins();
        html_ += "</main>\n<aside class=\"d\" id=\"details\" aria-live=\"polite\" aria-label=\"Details of "
                 "the cell\" "
                 "hidden></aside>\n<script>\n";
        html_ += kSeitenskript;
        html_ += "</script>\n</body>\n</html>\n";
        return std::move(html_);
    }

private:
    struct Zeichen {
        std::string text;
        std::string html;
        std::string name; ///< of the file, in two parts, of which the first may be cut
    };

    const Zeichen& zeichen(const Json& anbieter) const {
        return zeichen_.at(anbieter["file"].get_ref<const std::string&>());
    }

    void summe(const char* was, std::int64_t wert, bool schlecht) {
        html_ += schlecht ? "<div class=\"bad\">" : "<div>";
        html_ += element("dt", was) + element("dd", std::to_string(wert)) + "</div>\n";
    }

    void summen() {
        std::map<std::string, std::int64_t> zahlen;
        for (const Json& typ : dokument_["types"])
            for (const auto& [was, zahl] : typ["totals"].items())
                zahlen[was] += zahl.get<std::int64_t>();
        html_ += "<dl class=\"totals\">\n";
        summe("table rows", zahlen["sub_case_types"], false);
        summe("cells served", zahlen["served"], false);
        summe("cells by fallback", zahlen["fallback"], false);
        summe("gaps", zahlen["gaps"], zahlen["gaps"] != 0);
        summe("cells with a runner-up", zahlen["contested"], false);
        summe("plugins not loaded", static_cast<std::int64_t>(dokument_["not_loaded"].size()),
              !dokument_["not_loaded"].empty());
        if (!dokument_["required"].is_null())
            summe("required cells missing", dokument_["required"]["missing"],
                  dokument_["required"]["missing"] != 0);
        html_ += "</dl>\n";
    }

    void fehlendes() {
        const Json& verlangt = dokument_["required"];
        if (verlangt.is_null() || verlangt["missing"] == 0)
            return;
        html_ += "<section class=\"note\" id=\"missing\">\n<h2>Required and not served</h2>\n<p>Of the " +
                 anzahl(verlangt["cells"].size(), "cell", "cells") + " in <code>" + sicher(verlangt["file"]) +
                 "</code></p>\n<ul>\n";
        for (const Json& zelle : verlangt["cells"])
            if (!zelle["served"])
                html_ += element("li", sicher(zelle["type"]["label"]) + " " + sicher(zelle["sub_case_type"]) +
                                           " " + sicher(zelle["period"]) + " (line " + sicher(zelle["line"]) +
                                           ")") +
                         "\n";
        html_ += "</ul>\n</section>\n";
    }

    void ausfaelle() {
        const Json& dateien = dokument_["not_loaded"];
        const Json& verzeichnisse = dokument_["unreadable_directories"];
        if (dateien.empty() && verzeichnisse.empty())
            return;
        html_ += "<section class=\"note\" id=\"notloaded\">\n<h2>Not loaded</h2>\n<ul>\n";
        for (const Json& datei : dateien)
            html_ += element("li", "<code>" + sicher(datei["file"]) + "</code>: " + sicher(datei["state"]) +
                                       ", " + sicher(Json(begruendung(datei)))) +
                     "\n";
        for (const Json& verzeichnis : verzeichnisse)
            html_ += element("li", "<code>" + sicher(verzeichnis["path"]) +
                                       "</code>: " + sicher(verzeichnis["reason"])) +
                     "\n";
        html_ += "</ul>\n</section>\n";
    }

    void legende() {
        const std::string beispiel = "<b class=\"k\" style=\"--h:200\">A</b><span class=\"v\">1.2.0</span>";
        html_ += "<ul class=\"legend\" aria-label=\"Marks\">\n"
                 "<li><span class=\"cell\">" +
                 beispiel +
                 "</span> served by plugin A, in version 1.2.0</li>\n"
                 "<li><span class=\"cell f\">" +
                 beispiel +
                 "<span class=\"m\">fallback</span></span> "
                 "a period-independent entry answers, for want of one of the year</li>\n"
                 "<li><span class=\"cell g\"><span class=\"m\">gap</span></span> nobody answers</li>\n"
                 "<li><span class=\"cell\"><span class=\"r\">then <b class=\"k\" style=\"--h:337\">B</b> "
                 "1.0</span></span> "
                 "runner-up: would answer without the first</li>\n"
                 "<li><span class=\"cell\"><span class=\"q\">2009-05</span></span> filed for that part of "
                 "the year; "
                 "any period of the year finds it</li>\n</ul>\n";
    }

    void kopfzelle(const std::string& text, const char* sortierung) {
        html_ += std::string("<th scope=\"col\" aria-sort=\"") + sortierung + "\"><button type=\"button\">" +
                 text + "</button></th>";
    }

    static std::string spaltenkopf(const Json& spalte) {
        const std::string von = spalte["from"].dump();
        return spalte["from"] == spalte["to"] ? von : von + "\u2013" + spalte["to"].dump();
    }

    void abschnitt(const Json& typ) {
        const bool paare = typ["by_sub_case_type_and_period"];
        const std::string name = sicher(typ["type"]["label"]);
        html_ += "<section data-type=\"" + sicher(typ["type"]["number"]) + "\">\n<h2>" + name + " <small>" +
                 sicher(typ["type"]["name"]) + ", type " + sicher(typ["type"]["number"]) + "</small></h2>\n";
        if (typ["rows"].size() * (typ["columns"].size() + 2) > kMeisteZellen) {
            html_ += "<p>Too many cells for a page: ask for them with <code>--json</code>.</p>\n</section>\n";
            return;
        }
        const bool andere = std::any_of(typ["rows"].begin(), typ["rows"].end(),
                                        [](const Json& zeile) { return !zeile["other_years"].is_null(); });
        html_ +=
            "<div class=\"scroll\">\n<table class=\"grid sortable\" role=\"grid\" aria-readonly=\"true\">\n"
            "<caption><span>" +
            beschriftung(typ, name) + "</span></caption>\n<thead><tr>";
        kopfzelle("Sub-case type", "ascending");
        for (const Json& spalte : typ["columns"])
            kopfzelle(paare ? spaltenkopf(spalte) : "any period", "none");
        if (andere)
            kopfzelle(typ["columns"].empty() ? "any year" : "other years", "none");
        html_ += "</tr></thead>\n<tbody>\n";
        for (const Json& zeile : typ["rows"])
            reihe(zeile, typ["columns"], paare, andere);
        html_ += "</tbody>\n</table>\n</div>\n</section>\n";
    }

    static std::string beschriftung(const Json& typ, const std::string& name) {
        if (!typ["by_sub_case_type_and_period"])
            return name + ": one plugin answers for every sub-case type and period";
        const Json& summen = typ["totals"];
        std::string text = name + ": " + anzahl(summen["sub_case_types"], "sub-case type", "sub-case types");
        if (!typ["first_year"].is_null())
            text += ", " + jahresspanne(typ) + ", " + anzahl(summen["gaps"], "gap", "gaps");
        return text;
    }

    void reihe(const Json& zeile, const Json& spalten, bool paare, bool andere) {
        html_ += "<tr><th scope=\"row\" tabindex=\"-1\">";
        html_ += paare ? sicher(zeile["sub_case_type"]["name"]) : std::string("any");
        html_ += "</th>";
        auto eine = zeile["cells"].begin();
        for (const Json& spalte : spalten) {
            while ((*eine)["to"] < spalte["from"])
                ++eine;
            zelle(*eine);
        }
        if (andere && zeile["other_years"].is_null())
            html_ += "<td class=\"x\" tabindex=\"-1\">\u2013</td>";
        else if (andere)
            zelle(zeile["other_years"]);
        html_ += "</tr>\n";
    }

    void zelle(const Json& zelle) {
        if (zelle["answer"] == "gap") {
            html_ += "<td class=\"g\" tabindex=\"-1\"><span class=\"m\">gap</span></td>";
            return;
        }
        const bool ersatz = zelle["answer"] == "fallback";
        const Zeichen& wer = zeichen(zelle["plugin"]);
        html_ += ersatz ? "<td class=\"f\" data-p=\"" : "<td class=\"o\" data-p=\"";
        html_ += wer.text;
        if (!zelle["runner_up"].is_null())
            html_ += "\" data-r=\"" + zeichen(zelle["runner_up"]).text;
        html_ += "\" tabindex=\"-1\">" + wer.html + "<span class=\"v\">" +
                 sicher(zelle["plugin"]["product_version"]) + "</span>";
        if (ersatz)
            html_ += "<span class=\"m\">fallback</span>";
        html_ += wer.name;
        if (!zelle["runner_up"].is_null())
            html_ += "<span class=\"r\">then " + zeichen(zelle["runner_up"]).html + " " +
                     sicher(zelle["runner_up"]["product_version"]) + "</span>";
        if (!ersatz && !zelle["periods"].empty()) {
            html_ += "<span class=\"q\">";
            const char* trenner = "";
            for (const Json& zeitraum : zelle["periods"]) {
                html_ += trenner + element("span", sicher(zeitraum));
                trenner = ", ";
            }
            html_ += "</span>";
        }
        html_ += "</td>";
    }

    void plugins() {
        html_ +=
            "<section>\n<h2>Plugins</h2>\n<div class=\"scroll\">\n<table class=\"sortable\" id=\"plugins\">\n"
            "<caption><span>The plugins of these tables</span></caption>\n<thead><tr>";
        kopfzelle("Mark", "ascending");
        for (const char* const kopf :
             {"File", "Version", "File version", "Resident", "Cells served", "Runner-up in"})
            kopfzelle(kopf, "none");
        html_ += "</tr></thead>\n<tbody>\n";
        for (const Json& plugin : dokument_["plugins"]) {
            const Zeichen& wer = zeichen(plugin);
            html_ += "<tr data-p=\"" + wer.text + "\"><th scope=\"row\">" + wer.html + "</th>";
            for (const char* const feld : {"file", "product_version", "file_version"})
                html_ += "<td data-p=\"1\">" + sicher(plugin[feld]) + "</td>";
            html_ += plugin["resident"] ? "<td data-p=\"1\">yes</td>" : "<td data-p=\"1\">no</td>";
            for (const char* const feld : {"serves", "runner_up"})
                html_ += "<td class=\"num\" data-v=\"" + plugin[feld].dump() + "\">" + plugin[feld].dump() +
                         "</td>";
            html_ += "</tr>\n";
        }
        html_ += "</tbody>\n</table>\n</div>\n</section>\n";
    }

    const Json& dokument_;
    std::map<std::string, Zeichen> zeichen_;
    std::string html_;
};

} // namespace

std::string deckungAlsSeite(const Json& dokument) { return Seite(dokument).alsHtml(); }

} // namespace werkzeug
