#include <orvoplugin/service/PruefErgebnis.h>

PruefErgebnis::PruefErgebnis() = default;
PruefErgebnis::PruefErgebnis(const PruefErgebnis&) = default;
PruefErgebnis& PruefErgebnis::operator=(const PruefErgebnis&) = default;
PruefErgebnis::~PruefErgebnis() = default;

void PruefErgebnis::fuegeHinzu(int code, const std::string& feld, const std::string& text) {
    meldungen_.push_back({code, feld, text});
}
