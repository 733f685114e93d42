#include "kern/Gruende.h"

#include "kern/Gruendetafel.h"
#include "kern/Sprache.h"

#include <nlohmann/json.hpp>

namespace werkzeug {

namespace {

using nlohmann::json;

/// The row of gruende.json for a value of an enumeration; the first of the list for a value that has none.
template <class Wert>
const json& zeile(const char* liste, Wert wert) {
    static const json tafel = json::parse(kGruendetafel);
    const json& zeilen = tafel[liste];
    for (const json& eine : zeilen)
        if (eine["id"] == static_cast<std::int32_t>(wert))
            return eine;
    return zeilen[0];
}

const char* text(const json& zeile, const char* feld) {
    return zeile[feld].get_ref<const std::string&>().c_str();
}

/// The cause's row; the reason's where no cause is known.
const json& zeile(const DateiFakt& datei) {
    return datei.ursache == Ursache::KEINE ? zeile("reasons", datei.grund) : zeile("causes", datei.ursache);
}

const json& zeile(const ErweiterungFakt& erweiterung) {
    const bool fehlt = erweiterung.factoryExport == Export::NEIN;
    return zeile("services", fehlt ? ServiceFakt::Art::NICHT_EXPORTIERT : erweiterung.service.art);
}

} // namespace

const char* code(Zustand zustand) { return text(zeile("states", zustand), "code"); }
const char* code(Grund grund) { return text(zeile("reasons", grund), "code"); }
const char* code(Ursache ursache) { return text(zeile("causes", ursache), "code"); }
const char* code(Schritt schritt) { return text(zeile("steps", schritt), "code"); }
const char* code(Export export_) { return text(zeile("exports", export_), "code"); }
const char* stufe(Grund grund) { return text(zeile("reasons", grund), "stage"); }
const char* regelcode(std::int32_t regel) { return text(zeile("rules", regel), "code"); }
const char* treffercode(std::int32_t treffer) { return text(zeile("matches", treffer), "code"); }
const char* zeitraumcode(std::int32_t typ) { return text(zeile("periods", typ), "code"); }

const char* servicecode(const ErweiterungFakt& erweiterung) {
    const bool istUngeprueft = erweiterung.factoryExport == Export::UNGEPRUEFT &&
                               erweiterung.service.art == ServiceFakt::Art::UNGEPRUEFT;
    return istUngeprueft ? "unchecked" : text(zeile(erweiterung), "code");
}

std::string erklaerung(const DateiFakt& datei) { return uebersetzt(text(zeile(datei), "text")); }
std::string rat(const DateiFakt& datei) { return uebersetzt(text(zeile(datei), "advice")); }
std::string wobei(Schritt schritt) { return uebersetzt(text(zeile("steps", schritt), "text")); }
std::string regelsatz(std::int32_t regel) { return uebersetzt(text(zeile("rules", regel), "text")); }
std::string servicesatz(const ErweiterungFakt& erweiterung) {
    return uebersetzt(text(zeile(erweiterung), "text"));
}
std::string servicerat(const ErweiterungFakt& erweiterung) {
    return uebersetzt(text(zeile(erweiterung), "advice"));
}

} // namespace werkzeug
