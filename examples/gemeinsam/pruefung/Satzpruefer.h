#pragma once

#include <orvoplugin/service/PruefErgebnis.h>
#include <pruefung/Satzaufbau.h>
#include <steuer/Datensatz.h>
#include <steuer/Datum.h>

#include <optional>
#include <string>
#include <string_view>

namespace pruefung {

/// Checks one record: its form, that it has the fields of its kind, their contents, and the rules between them. All
/// findings are reported, in this order and within a step in the order of the rules. One fault is reported once: a
/// missing or unreadable field is left out of the later steps.
///
/// Errors: none for any text. Encoding: record and messages are Latin-1.
class Satzpruefer {
public:
    /// Parameters: `zeitspanne` limits the dates; none for no limit. `vorspann` begins each message and names the
    /// record.
    Satzpruefer(const Satzaufbau& aufbau, const std::optional<steuer::Zeitspanne>& zeitspanne,
                std::string vorspann, PruefErgebnis& ergebnis)
        : aufbau_(aufbau), zeitspanne_(zeitspanne), vorspann_(std::move(vorspann)), ergebnis_(ergebnis) {}

    void pruefe(std::string_view text);

private:
    void pruefeSatzart(const steuer::Datensatz& satz);
    void pruefeBestand(const steuer::Datensatz& satz);
    void pruefeInhalt(const Feldregel& regel, std::string_view wert);
    void pruefeIdNr(const char* feld, std::string_view wert);
    void pruefeBetrag(const char* feld, std::string_view wert);
    void pruefeDatum(const char* feld, std::string_view wert);
    void pruefeFinanzamt(const char* feld, std::string_view wert);
    void pruefeAnteil(const steuer::Datensatz& satz, const Anteilsregel& regel);
    void pruefeReihenfolge(const steuer::Datensatz& satz);

    const Feldregel* regelFuer(std::string_view feld) const;
    template <class Ruf>
    void jedeRegel(Ruf&& ruf) const;
    void melde(int code, std::string_view feld, std::string_view text);

    const Satzaufbau& aufbau_;
    const std::optional<steuer::Zeitspanne>& zeitspanne_;
    std::string vorspann_;
    PruefErgebnis& ergebnis_;
};

} // namespace pruefung
