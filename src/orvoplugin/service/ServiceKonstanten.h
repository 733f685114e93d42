#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/domain/Konstanten.h>
#include <orvoplugin/domain/NieZerstoert.h>

#include <array>
#include <string>

/// \file
/// Constants of the service interface, for clients and plugins; nothing in this library reads them. Including this
/// header costs nothing: the names are references, each unit's own, to values that the library makes once.

/// The values themselves. Their list is closed: programs may hold a copy of it, of the size that it has.
struct VordefinierteServiceTexte {
    std::string LEERER_TEXT;
    std::string VERSIONCLIENT_NICHT_ANGEGEBEN{"VERSIONCLIENT_NICHT_ANGEGEBEN"};
    std::string NEUN_NULLEN{"000000000"};
    std::string NEUN_LEERZEICHEN{"         "};
    std::string KENNUNG_00200{"00200"};
    std::array<std::string, 13> VERFAHREN{
        "TalvorExtern",       "TalvorLohn",          "TalvorAnmeldung", "TalvorErklaerung", "TalvorKapESt",
        "TalvorBilanz",       "TalvorDatenabholung", "TalvorFT",        "TalvorFTintern",   "TalvorLohn2",
        "TalvorKontoabfrage", "TalvorKMV",           "UNBEKANNT"};
};

extern ORVOPLUGIN_API const NieZerstoert<VordefinierteServiceTexte> kVordefinierteServiceTexte;

[[maybe_unused]] static const std::string& LEERER_TEXT = kVordefinierteServiceTexte.wert.LEERER_TEXT;
/// Stands for the version of a client that gave none.
[[maybe_unused]] static const std::string& VERSIONCLIENT_NICHT_ANGEGEBEN =
    kVordefinierteServiceTexte.wert.VERSIONCLIENT_NICHT_ANGEGEBEN;
[[maybe_unused]] static const std::string& NEUN_NULLEN = kVordefinierteServiceTexte.wert.NEUN_NULLEN;
[[maybe_unused]] static const std::string& NEUN_LEERZEICHEN =
    kVordefinierteServiceTexte.wert.NEUN_LEERZEICHEN;
[[maybe_unused]] static const std::string& KENNUNG_00200 = kVordefinierteServiceTexte.wert.KENNUNG_00200;

/// Names of the procedures ("Verfahren"), by number; the last one stands for an unknown procedure.
[[maybe_unused]] static const std::array<std::string, 13>& VERFAHREN =
    kVordefinierteServiceTexte.wert.VERFAHREN;
