#include "Szenario.h"

namespace {

constexpr auto PRUEFUNG = ORVO_CHECK_SERVICE_ERWEITERUNG;
constexpr auto FELDINFO = ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG;
constexpr auto FINANZAMT = ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG;
constexpr auto LESER = ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG;

const std::string kLohnsteuer = "liblohnsteuer.dylib";
const std::string kPruefpaket = "libpruefpaket.dylib";
const std::string kStammdaten = "libstammdaten.dylib";

} // namespace

Szenario erstesSzenario() {
    return {
        .plugins = {{kStammdaten, "1.0.2", true},
                    {kLohnsteuer, "1.4.0", false},
                    {kPruefpaket, "2.1.0", false}},
        .ablehnungen = {{"libfrendolin.dylib", "Sperrliste"}, {"libtext.dylib", "BIBLIOTHEK_FEHLER"}},
        .kollisionen = {{PRUEFUNG, "LSTB", "2009", kPruefpaket}, {PRUEFUNG, "LSTB", "2010", kPruefpaket}},
        .anfragen =
            {
                {PRUEFUNG, "LSTB", "2006", "", Treffer::KEINER},
                {PRUEFUNG, "LSTB", "2007", kLohnsteuer, Treffer::GENAU},
                {PRUEFUNG, "LSTB", "2008", kLohnsteuer, Treffer::GENAU},
                {PRUEFUNG, "LSTB", "2009", kPruefpaket, Treffer::GENAU},
                {PRUEFUNG, "lstb", "2010", kPruefpaket, Treffer::GENAU},
                {PRUEFUNG, "LSTB", "2011", kPruefpaket, Treffer::GENAU},
                {PRUEFUNG, "10", "2009", kPruefpaket, Treffer::GENAU},
                {PRUEFUNG, "10", "2009-05", kPruefpaket, Treffer::GLEICHES_JAHR},
                {PRUEFUNG, "10", "2009-42", kPruefpaket, Treffer::GLEICHES_JAHR},
                {PRUEFUNG, "10", "2015", "", Treffer::KEINER},
                {PRUEFUNG, "50", "2010", kPruefpaket, Treffer::GENAU},
                {PRUEFUNG, "50", "2015", kPruefpaket, Treffer::UNABHAENGIG},
                {LESER, "LSTB", "2009", kStammdaten, Treffer::UNABHAENGIG},
                {FINANZAMT, "", "", kStammdaten, Treffer::EINZIGER},
                {FELDINFO, "LSTB", "2009", "", Treffer::KEINER},
            },
        .pruefungen =
            {
                {"lstb-2009-gut.txt", "LSTB", "2009", {}},
                {"lstb-2009-pruefziffer.txt", "LSTB", "2009", {{114, "IdNr"}}},
                {"lstb-2009-drei-in-folge.txt", "LSTB", "2009", {{113, "IdNr"}}},
                {"lstb-2009-betrag.txt", "LSTB", "2009", {{121, "Lohnsteuer"}, {120, "Kirchensteuer"}}},
                {"lstb-2009-datum.txt", "LSTB", "2009", {{131, "Beginn"}, {130, "Ende"}}},
                {"lstb-2008-fehlend.txt",
                 "LSTB",
                 "2008",
                 {{102, "Name"}, {102, "Bruttoarbeitslohn"}, {103, "Bruttolohn"}}},
                {"lstb-2009-zuschlag.txt", "LSTB", "2009", {{123, "Solidaritaetszuschlag"}}},
                {"lstb-2010-sammlung.txt", "LSTB", "2010", {{123, "Lohnsteuer"}, {151, "IdNr"}}},
                {"anmeldung-quartal.txt", "10", "2009-42", {}},
                {"anmeldung-quartal.txt", "10", "2009-05", {{131, "Beginn"}, {131, "Ende"}}},
                {"erklaerung-2015.txt", "50", "2015", {}},
                {"kein-datensatz.txt", "LSTB", "2009", {{100, ""}}},
                {"falsche-kodierung.txt", "LSTB", "2009", {{100, ""}}},
            },
    };
}

Szenario zweitesSzenario() {
    return {
        .plugins = {{kLohnsteuer, "1.4.0", false}, {kStammdaten, "1.0.2", true}},
        .ablehnungen = {},
        .kollisionen = {},
        .anfragen =
            {
                {PRUEFUNG, "LSTB", "2007", kLohnsteuer, Treffer::GENAU},
                {PRUEFUNG, "LSTB", "2009", kLohnsteuer, Treffer::GENAU},
                {PRUEFUNG, "LSTB", "2011", "", Treffer::KEINER},
                {PRUEFUNG, "10", "2009-05", "", Treffer::KEINER},
                {PRUEFUNG, "50", "2015", "", Treffer::KEINER},
                {LESER, "LSTB", "2009", kStammdaten, Treffer::UNABHAENGIG},
                {FINANZAMT, "", "", kStammdaten, Treffer::EINZIGER},
            },
        .pruefungen =
            {
                {"lstb-2009-gut.txt", "LSTB", "2009", {}},
                {"lstb-2009-zuschlag.txt", "LSTB", "2009", {}}, // the older plugin's rules let it pass
            },
    };
}
