#include "kern/Antwort.h"

#include "kern/Berichtsteile.h"
#include "kern/Gruende.h"

#include <orvoplugin/domain/Veranlagungszeitraum.h>

namespace werkzeug {

Json schluesselAlsJson(const SchluesselFakt& schluessel) {
    if (hatKeinePaare(schluessel.typ)) {
        const Veranlagungszeitraum jeder;
        return {{"type", typAlsJson(schluessel.typ, schluessel.typName)},
                {"sub_case_type", {{"number", nullptr}, {"name", uebersetzt("any")}}},
                {"period", alsJson({jeder.getTyp(), jeder.getJahr(), jeder.getZeitraum(), jeder.getTag(),
                                    jeder.getQuartal(), jeder.getText()})}};
    }
    return {{"type", typAlsJson(schluessel.typ, schluessel.typName)},
            {"sub_case_type", alsJson(schluessel.unterfallart)},
            {"period", alsJson(schluessel.zeitraum)}};
}

Json antwortAlsJson(const Bestand& bestand, const SchluesselFakt& schluessel, std::int32_t treffer) {
    Json antwort = schluesselAlsJson(schluessel);
    antwort["match"] = treffer == RegisterAuskunft::KEINER ? Json(nullptr) : Json(treffercode(treffer));
    antwort["plugin"] = anbieterAlsJson(bestand, schluessel.inhaber);
    antwort["factory"] = jsonText(bestand.erweiterung(schluessel.inhaber).factory);
    antwort["service"] = serviceAlsJson(bestand.erweiterung(schluessel.inhaber));
    Json verdraengte = Json::array();
    for (const SchluesselEreignis& ereignis : schluessel.ereignisse)
        if (const ErweiterungsOrt* const wer = verlierer(ereignis)) {
            verdraengte.push_back({{"plugin", anbieterAlsJson(bestand, *wer)}});
            verdraengte.back().update(verlustAlsJson(bestand, ereignis));
        }
    antwort["displaced"] = std::move(verdraengte);
    return antwort;
}

const ErweiterungsOrt* verlierer(const SchluesselEreignis& ereignis) {
    if (ereignis.art == SchluesselEreignis::Art::EINGETRAGEN)
        return nullptr;
    return ereignis.art == SchluesselEreignis::Art::VERDRAENGT ? &ereignis.gegen : &ereignis.wer;
}

Json verlustAlsJson(const Bestand& bestand, const SchluesselEreignis& ereignis) {
    const bool neuerGewann = ereignis.art == SchluesselEreignis::Art::VERDRAENGT;
    return {{"lost_to", anbieterAlsJson(bestand, neuerGewann ? ereignis.wer : ereignis.gegen)},
            {"rule", regelcode(ereignis.regel)},
            {"explanation", regelsatz(ereignis.regel)}};
}

std::string schluesselAlsText(const Json& schluessel) {
    return zeige(schluessel["type"]["label"]) + " " + zeige(schluessel["sub_case_type"]["name"]) + " " +
           zeige(schluessel["period"]["label"]);
}

std::vector<std::string> bediente(const Bestand& bestand) {
    std::vector<std::string> namen;
    for (const SchluesselFakt& schluessel : bestand.schluessel)
        namen.push_back(schluessel.unterfallart.name);
    return namen;
}

std::string servicemangelAlsText(const Json& service) {
    if (service["advice"].is_null())
        return {};
    std::string text = satz("no service: {1}", zeige(service["explanation"]));
    if (!service["message"].is_null())
        text += " [" + zeige(service["message"]) + "]";
    return text;
}

std::string anbieterAlsText(const Json& plugin) {
    return zeige(plugin["file"]) + " (" + zeige(plugin["product_version"]) + ")";
}

} // namespace werkzeug
