#include <pruefpaket/Statistik.h>

#include <orvoutil/Latin1.h>
#include <orvoutil/Logger.h>

#include <string>

using orvo::orvoutil::Latin1Text;
using orvo::orvoutil::Logger;

namespace {

constexpr Latin1Text kGeprueft{u8" Datensätze geprüft, Meldungen: "};

struct Zaehler {
    std::size_t datensaetze = 0;
    std::size_t meldungen = 0;
};

Zaehler zaehler;

void protokolliere(const std::string& text) {
    Logger* const logger = Logger::getInstance("beispiel.pruefpaket");
    if (logger && logger->isInfoEnabled())
        logger->info(text);
}

} // namespace

void pruefpaket::zaehlePruefung(std::size_t datensaetze, std::size_t meldungen) {
    zaehler.datensaetze += datensaetze;
    zaehler.meldungen += meldungen;
}

void pruefpaket_onload() {
    zaehler = {};
    protokolliere("Bereit.");
}

void pruefpaket_onunload() {
    protokolliere(std::to_string(zaehler.datensaetze) + kGeprueft.c_str() +
                  std::to_string(zaehler.meldungen) + ".");
}
