#pragma once

#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <cstddef>
#include <iterator>

/// The names of the kinds, also for use at compile time.
constexpr const char* kErweiterungTypNamen[] = {
    "NONE",
    "ORVO_CHECK_SERVICE_ERWEITERUNG",
    "ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG",
    "ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG",
    "ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG",
    "ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG",
    "ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG",
    "UNBEKANNT",
};

/// Where the name of a kind stands; every value beyond the kinds shares the last place.
constexpr std::size_t erweiterungTypPlatz(tag_erweiterung_typ typ) {
    return typ >= NONE && typ <= ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG
               ? static_cast<std::size_t>(typ)
               : std::size(kErweiterungTypNamen) - 1;
}
