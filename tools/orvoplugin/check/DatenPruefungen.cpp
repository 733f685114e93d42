// The check of records by a plugin's check services.

#include "check/Katalog.h"
#include "check/Pluginnutzung.h"
#include "check/Text.h"
#include "kern/Anzeige.h"
#include "kern/Sprache.h"

#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/service/PruefErgebnis.h>
#include <orvoplugin/service/SteuerfallListe.h>
#include <orvoplugin/service/ValidierungsService.h>

#include <chrono>
#include <string>
#include <vector>

namespace werkzeug::check {

namespace {

/// The records as a plugin sees them. Beyond the last there is an empty one.
struct Datensaetze final : orvo::data::SteuerfallListe {
    explicit Datensaetze(const std::vector<std::string>& alle) : daten(alle) {}

    std::size_t getAnzahl() const override { return daten.size(); }
    const std::string& getDatensatz(std::size_t index) const override {
        return index < daten.size() ? daten[index] : keiner;
    }

    const std::vector<std::string>& daten;
    const std::string keiner;
};

/// Has a service check the records. Returns: what came of it, as in the JSON output; exceptions pass.
Json rufe(orvo::service::ValidierungsService& service, const Datensaetze& daten, const Unterfallart& ua,
          const Veranlagungszeitraum& vz) {
    constexpr std::size_t kGenannte = 3;
    PruefErgebnis ergebnis;
    const auto beginn = std::chrono::steady_clock::now();
    const int antwort = service.pruefe(daten, ua, vz, ergebnis);
    const double ms = millisekundenSeit(beginn);
    Json erste = Json::array();
    for (const PruefErgebnis::Meldung& m : ergebnis.getMeldungen())
        if (erste.size() < kGenannte)
            erste.push_back(
                {{"code", m.code}, {"field", ausnahmetext(m.feld)}, {"text", ausnahmetext(m.text)}});
    return {{"sub_case_type", jsonText(ua.getName())},
            {"period", jsonText(vz.getText())},
            {"returned", antwort},
            {"messages", ergebnis.getMeldungen().size()},
            {"first_messages", erste},
            {"ms", ms}};
}

/// "2 messages for LSTB 2009 (returned 0): 4711 Feld: Text, ..."
std::string alsSatz(const Json& ruf, const std::string& wofuer) {
    std::string text = satz("{1} for {2} (returned {3})", anzahl(ruf["messages"], "message", "messages"),
                            wofuer, ruf["returned"].get<int>());
    for (const Json& m : ruf["first_messages"])
        text += (&m == &ruf["first_messages"][0] ? ": " : ", ") + std::to_string(m["code"].get<int>()) + " " +
                m["field"].get<std::string>() + ": " + m["text"].get<std::string>();
    return text;
}

void pruefeDaten(const Pruefling& p, Fundliste& funde) {
    const Datensaetze daten(p.vorgaben->daten);
    if (daten.getAnzahl() == 0)
        return funde.uebersprungen(satz("no data given: name it with --data"), "no_data");
    const std::unique_ptr<OrvoPluginV1> plugin = lade(p.pfad);
    Json rufe_ = Json::array();
    const auto nimm = [&](OrvoValidierungsServiceErweiterung& erweiterung, const Unterfallart& ua,
                          const Veranlagungszeitraum& vz) {
        orvo::service::ValidierungsService* const service = erweiterung.holeService();
        if (!service)
            return funde.fehler(satz("{1} makes no service", zitiert(erweiterung.getServiceFactoryName())),
                                "no_service");
        try {
            rufe_.push_back(rufe(*service, daten, ua, vz));
            funde.bericht(alsSatz(rufe_.back(), paar(ua, vz)));
        } catch (...) { // while the service, and so the plugin, is still there
            funde.fehler(satz("an exception leaves pruefe for {1}: {2}", paar(ua, vz), laufendeAusnahme()),
                         "throws");
        }
        gibAllesZurueck(erweiterung);
    };
    for (OrvoServiceErweiterung* const eine : serviceErweiterungen(*plugin))
        if (auto* const erweiterung = dynamic_cast<OrvoValidierungsServiceErweiterung*>(eine))
            for (const auto& [ua, vzs] : erweiterung->getVeranlagungszeitraumUnterfallartMap())
                if (!vzs.empty())
                    nimm(*erweiterung, ua, vzs.front());
    if (funde.istLeer())
        return funde.uebersprungen(satz("the plugin offers no check service"), "no_check_service");
    funde.zahlen = {{"records", daten.getAnzahl()}, {"calls", rufe_}};
}

} // namespace

std::vector<Pruefung> datenPruefungen() { return {{"data", pruefeDaten}}; }

} // namespace werkzeug::check
