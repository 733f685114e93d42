#pragma once

namespace pruefung {

/// Codes in `PruefErgebnis::Meldung::code`. The numbers never change: clients store them.
enum Befundcode : int {
    KEIN_DATENSATZ = 100,
    SATZART_FALSCH = 101,
    FELD_FEHLT = 102,
    FELD_UNBEKANNT = 103,
    FELD_MEHRFACH = 104,

    IDNR_FORM = 110,
    IDNR_FUEHRENDE_NULL = 111,
    IDNR_WIEDERHOLUNG = 112,
    IDNR_DREI_IN_FOLGE = 113,
    IDNR_PRUEFZIFFER = 114,

    BETRAG_FORM = 120,
    BETRAG_NEGATIV = 121,
    BETRAG_ZU_GROSS = 122,
    BETRAG_UEBER_GRENZE = 123, ///< more than the share of another amount that it may be at most

    DATUM_FORM = 130,
    DATUM_AUSSERHALB = 131, ///< not in the assessment period
    ENDE_VOR_BEGINN = 132,

    FINANZAMT_FORM = 140,

    UNTERFALLART_UNBEKANNT = 150,
    DATENSATZ_DOPPELT = 151 ///< in collected data: the same person and period twice
};

} // namespace pruefung
