#pragma once

#include <orvoplugin/service/PruefErgebnis.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

/// The text of a record, made from a valid one by changing its fields.
class Satz {
public:
    /// A wage-tax certificate of the year 2009 without faults.
    static Satz bescheinigung() {
        Satz satz;
        satz.felder_ = {{"Satzart", "LSTB"},
                        {"IdNr", "86095742719"},
                        {"Name", "J\xF6rg M\xFC\xDFiggang"},
                        {"Finanzamt", "9902"},
                        {"Beginn", "01.01.2009"},
                        {"Ende", "31.12.2009"},
                        {"Bruttoarbeitslohn", "38400,00"},
                        {"Lohnsteuer", "5946,00"},
                        {"Solidaritaetszuschlag", "327,03"},
                        {"Kirchensteuer", "535,14"}};
        return satz;
    }

    /// Sets the field; a new field is appended.
    Satz& setze(const std::string& name, const std::string& wert) {
        const auto feld = std::find_if(felder_.begin(), felder_.end(),
                                       [&](const auto& paar) { return paar.first == name; });
        if (feld == felder_.end())
            return dazu(name, wert);
        feld->second = wert;
        return *this;
    }
    /// Appends a field, even if there is one of that name.
    Satz& dazu(const std::string& name, const std::string& wert) {
        felder_.emplace_back(name, wert);
        return *this;
    }
    Satz& ohne(const std::string& name) {
        std::erase_if(felder_, [&](const auto& paar) { return paar.first == name; });
        return *this;
    }

    std::string text() const {
        std::string text;
        for (const auto& [name, wert] : felder_)
            text += name + '=' + wert + '\n';
        return text;
    }

private:
    std::vector<std::pair<std::string, std::string>> felder_;
};

/// The findings, without their texts.
struct Befund {
    int code;
    std::string feld;

    bool operator==(const Befund&) const = default;
    friend void PrintTo(const Befund& befund, std::ostream* out) {
        *out << befund.code << " \"" << befund.feld << '"';
    }
};

inline std::vector<Befund> befunde(const PruefErgebnis& ergebnis) {
    std::vector<Befund> liste;
    for (const PruefErgebnis::Meldung& meldung : ergebnis.getMeldungen())
        liste.push_back({meldung.code, meldung.feld});
    return liste;
}
