#include "kern/Gruende.h"

#include "kern/Gruendetafel.h"
#include "kern/Sprache.h"

#include <nlohmann/json.hpp>

#include <map>
#include <vector>

namespace werkzeug {

namespace {

using nlohmann::json;

enum Liste { ZUSTAENDE, GRUENDE, URSACHEN, SCHRITTE, SERVICES, EXPORTE, REGELN, TREFFER, ZEITRAEUME };
constexpr const char* kListen[] = {"states",  "reasons", "causes",  "steps",  "services",
                                   "exports", "rules",   "matches", "periods"};

const json& tafel() {
    static const json gelesen = json::parse(kGruendetafel);
    return gelesen;
}

/// The lists of gruende.json, by the values of the enumerations.
std::vector<std::map<std::int32_t, json>> liesTafel() {
    std::vector<std::map<std::int32_t, json>> listen;
    for (const char* const name : kListen) {
        auto& liste = listen.emplace_back();
        for (const json& zeile : tafel().at(name))
            liste.emplace(zeile["id"].is_null() ? INT32_MIN : zeile["id"].get<std::int32_t>(), zeile);
    }
    return listen;
}

/// The row for a value; the first of the list for a value that has none.
template <class Wert>
const json& zeile(Liste liste, Wert wert) {
    static const auto listen = liesTafel();
    const auto fund = listen[liste].find(static_cast<std::int32_t>(wert));
    return fund == listen[liste].end() ? listen[liste].begin()->second : fund->second;
}

const char* text(const json& zeile, const char* feld) {
    return zeile[feld].get_ref<const std::string&>().c_str();
}

/// The cause's row; the reason's where no cause is known.
const json& zeile(const DateiFakt& datei) {
    return datei.ursache == Ursache::KEINE ? zeile(GRUENDE, datei.grund) : zeile(URSACHEN, datei.ursache);
}

const json& zeile(const ErweiterungFakt& erweiterung) {
    const bool fehlt = erweiterung.factoryExport == Export::NEIN;
    return zeile(SERVICES, fehlt ? ServiceFakt::Art::NICHT_EXPORTIERT : erweiterung.service.art);
}

} // namespace

const char* code(Zustand zustand) { return text(zeile(ZUSTAENDE, zustand), "code"); }
const char* code(Grund grund) { return text(zeile(GRUENDE, grund), "code"); }
const char* code(Ursache ursache) { return text(zeile(URSACHEN, ursache), "code"); }
const char* code(Schritt schritt) { return text(zeile(SCHRITTE, schritt), "code"); }
const char* code(Export export_) { return text(zeile(EXPORTE, export_), "code"); }
const char* stufe(Grund grund) { return text(zeile(GRUENDE, grund), "stage"); }
const char* ladestufe(Grund grund) { return text(zeile(GRUENDE, grund), "step"); }
const char* regelcode(std::int32_t regel) { return text(zeile(REGELN, regel), "code"); }
const char* treffercode(std::int32_t treffer) { return text(zeile(TREFFER, treffer), "code"); }
const char* zeitraumcode(std::int32_t typ) { return text(zeile(ZEITRAEUME, typ), "code"); }

const char* servicecode(const ErweiterungFakt& erweiterung) {
    const bool istUngeprueft = erweiterung.factoryExport == Export::UNGEPRUEFT &&
                               erweiterung.service.art == ServiceFakt::Art::UNGEPRUEFT;
    return istUngeprueft ? "unchecked" : text(zeile(erweiterung), "code");
}

std::string erklaerung(const DateiFakt& datei) { return uebersetzt(text(zeile(datei), "text")); }
std::string rat(const DateiFakt& datei) { return uebersetzt(text(zeile(datei), "advice")); }
std::string wobei(Schritt schritt) { return uebersetzt(text(zeile(SCHRITTE, schritt), "text")); }
std::string regelsatz(std::int32_t regel) { return uebersetzt(text(zeile(REGELN, regel), "text")); }
std::string servicesatz(const ErweiterungFakt& erweiterung) {
    return uebersetzt(text(zeile(erweiterung), "text"));
}
std::string servicerat(const ErweiterungFakt& erweiterung) {
    return uebersetzt(text(zeile(erweiterung), "advice"));
}

Json schluss(const char* code, const std::vector<std::string>& werte, std::size_t fall, std::size_t rat) {
    const auto gefuellt = [&](const char* feld, std::size_t nummer) {
        const json& eintrag = tafel().at("conclusions").at(code).at(feld);
        return fuelleSatz(
            (eintrag.is_array() ? eintrag.at(nummer) : eintrag).get_ref<const std::string&>().c_str(), werte);
    };
    return {{"code", code}, {"text", gefuellt("text", fall)}, {"advice", gefuellt("advice", rat)}};
}

} // namespace werkzeug
