#include "Lauf.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;

Pruefplugin::Pruefplugin(const char* quelle, const std::string& auftraege, const std::string& name)
    : pfad_(verzeichnis_.kopiere(quelle, name)) {
    verzeichnis_.schreibe(name + ".txt", auftraege);
    // Where the build's files are writable by a group.
    fs::permissions(pfad_, fs::perms::group_write, fs::perm_options::remove);
}

nlohmann::json pruefeAlsJson(std::vector<std::string> argumente, int& ausgang) {
    argumente.insert(argumente.begin(), {"check", "--json"});
    const Ergebnis ergebnis = rufeTool(argumente);
    ausgang = ergebnis.ausgang;
    EXPECT_TRUE(nlohmann::json::accept(ergebnis.ausgabe)) << ergebnis.ausgabe << ergebnis.fehler;
    return nlohmann::json::parse(ergebnis.ausgabe, nullptr, false);
}

Dateilauf alsDateilauf(const nlohmann::json& datei) {
    Dateilauf lauf;
    for (const nlohmann::json& pruefung : datei.at("checks")) {
        const auto name = pruefung.at("name").get<std::string>();
        const auto ergebnis = pruefung.at("result").get<std::string>();
        lauf.ergebnisse[name] = ergebnis;
        EXPECT_EQ(pruefung.at("code").is_null(), ergebnis == "passed")
            << name << " names no code for what it found";
        lauf.gruende[name] = pruefung.at("reason").get<std::string>();
        if (ergebnis != "passed" && ergebnis != "skipped")
            lauf.auffaellige[name] = ergebnis;
    }
    return lauf;
}

Dateilauf pruefe(const std::string& datei, std::vector<std::string> argumente) {
    argumente.push_back(datei);
    int ausgang = 0;
    return alsDateilauf(pruefeAlsJson(std::move(argumente), ausgang).at("files").at(0));
}
