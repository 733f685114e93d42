#include "deckung/Seitenzelle.h"

#include "deckung/Deckungsbericht.h"
#include "deckung/Seite.h"

#include <orvoutil/OrvoVersion.h>
#include <orvoutil/StringUtil.h>

#include <string_view>

namespace werkzeug {

namespace {

using orvo::orvoutil::OrvoVersion;
using orvo::orvoutil::tolower;

constexpr unsigned kFarben = 24; // classes of the style sheet
constexpr char kNiemand[] = "–";

std::string kurzname(const std::string& datei) {
    constexpr std::string_view kVorne = "lib";
    constexpr std::string_view kHinten = ".dylib";
    std::string name = datei.substr(datei.rfind('/') + 1);
    if (tolower(name).ends_with(kHinten))
        name.resize(name.size() - kHinten.size());
    return tolower(name).starts_with(kVorne) ? name.substr(kVorne.size()) : name;
}

std::string text(const char* name) { return seitentexte()[name]; }

/// "lohnsteuer 1.4.0"
std::string mitVersion(const Seitenplugins& plugins, const Json& anbieter) {
    const std::string version = anbieter["product_version"];
    return plugins[anbieter].name + (version.empty() ? "" : " " + version);
}

std::string wer(const Seitenplugins& plugins, const Json* antwort) {
    if (!antwort)
        return text("nobody");
    const std::string ersatz = (*antwort)["answer"] == "fallback" ? " (" + text("fallback") + ")" : "";
    return mitVersion(plugins, (*antwort)["plugin"]) + ersatz;
}

/// "A" or "~A"
std::string zeichen(const Seitenplugins& plugins, const Json* antwort) {
    if (!antwort)
        return kNiemand;
    return ((*antwort)["answer"] == "fallback" ? "~" : "") + plugins[(*antwort)["plugin"]].zeichen;
}

Json zelle(const Seitenplugins& plugins, const char* klasse, const Json* antwort) {
    Json zelle{{"class", klasse},
               {"text", zeichen(plugins, antwort)},
               {"title", wer(plugins, antwort)},
               {"color", nullptr},
               {"plugin", nullptr},
               {"name", nullptr},
               {"before", nullptr},
               {"runner_up", nullptr},
               {"parts", nullptr},
               {"required", nullptr}};
    if (antwort) {
        const Json& anbieter = (*antwort)["plugin"];
        zelle["color"] = plugins[anbieter].farbe;
        zelle["plugin"] = plugins[anbieter].zeichen;
        zelle["name"] = mitVersion(plugins, anbieter);
    }
    return zelle;
}

/// What became of an answer.
const char* aenderung(const Json* vorher, const Json* nachher) {
    if (!vorher && !nachher)
        return "gap";
    if (!vorher || !nachher)
        return vorher ? "lost" : "gained";
    if ((*vorher)["answer"] != (*nachher)["answer"]) // an entry of the year came or went
        return (*nachher)["answer"] == "served" ? "gained" : "lost";
    const Json& a = (*vorher)["plugin"];
    const Json& b = (*nachher)["plugin"];
    if (OrvoVersion(a["product_version"].get<std::string>()) >
        OrvoVersion(b["product_version"].get<std::string>()))
        return "lower";
    if (a["file"] != b["file"])
        return "other";
    return a["product_version"] == b["product_version"] ? "same" : "newer";
}

} // namespace

Seitenplugins::Seitenplugins(const Paar& dokumente) {
    if (dokumente.vorher)
        for (const Json& plugin : (*dokumente.vorher)["plugins"])
            plugins_[plugin["file"]].staende.vorher = &plugin;
    for (const Json& plugin : (*dokumente.nachher)["plugins"])
        plugins_[plugin["file"]].staende.nachher = &plugin;
    std::map<std::string, int> haeufigkeit;
    for (const auto& [datei, plugin] : plugins_)
        ++haeufigkeit[kurzname(datei)];
    unsigned nummer = 0;
    for (auto& [datei, plugin] : plugins_) {
        plugin.zeichen = merkzeichen(nummer);
        plugin.farbe = "h" + std::to_string(nummer++ % kFarben);
        plugin.name = kurzname(datei);
        if (haeufigkeit[plugin.name] > 1)
            plugin.name.insert(0, datei, 0, datei.rfind('/') + 1);
    }
}

bool istBedient(const Json* antwort) { return antwort && (*antwort)["answer"] != "broken"; }

Json deckungszelle(const Seitenplugins& plugins, const Json* antwort) {
    if (!istBedient(antwort)) {
        Json luecke = zelle(plugins, "gap", nullptr);
        if (antwort) {
            luecke["text"] = zeichen(plugins, antwort) + "✗";
            luecke["title"] = wer(plugins, antwort) + ": " + text("no_service");
        }
        return luecke;
    }
    const bool ersatz = (*antwort)["answer"] == "fallback";
    Json werte = zelle(plugins, ersatz ? "fallback" : "served", antwort);
    std::string titel = werte["title"];
    if (const Json& zweiter = (*antwort)["runner_up"]; !zweiter.is_null()) {
        werte["runner_up"] = plugins[zweiter].zeichen;
        titel += "; " + text("then") + " " + mitVersion(plugins, zweiter);
    }
    if (const Json& zeitraeume = (*antwort)["periods"]; !ersatz && !zeitraeume.empty()) {
        std::string teile;
        for (const Json& zeitraum : zeitraeume)
            teile += (teile.empty() ? "" : ", ") + zeitraum.get<std::string>();
        werte["text"] = werte["text"].get<std::string>() + "*";
        titel += "; " + text("filed_for") + " " + teile;
        werte["parts"] = std::move(teile);
    }
    werte["title"] = std::move(titel);
    return werte;
}

Json vergleichszelle(const Seitenplugins& plugins, const Json* vorher, const Json* nachher) {
    vorher = istBedient(vorher) ? vorher : nullptr;
    nachher = istBedient(nachher) ? nachher : nullptr;
    const std::string was = aenderung(vorher, nachher);
    Json werte = zelle(plugins, was.c_str(), nachher);
    if (vorher)
        werte["before"] = plugins[(*vorher)["plugin"]].zeichen;
    if (was == "same" || was == "gap")
        return werte;
    const std::string a = zeichen(plugins, vorher);
    const std::string b = zeichen(plugins, nachher);
    werte["text"] = (a == b ? a : a + "›" + b) + (was == "lower" ? "↓" : was == "newer" ? "↑" : "");
    werte["title"] =
        text("before") + ": " + wer(plugins, vorher) + "; " + text("after") + ": " + wer(plugins, nachher);
    return werte;
}

} // namespace werkzeug
