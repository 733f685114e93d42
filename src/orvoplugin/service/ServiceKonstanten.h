#pragma once

#include <orvoplugin/domain/Konstanten.h>

#include <array>
#include <string>

/// \file
/// Constants of the service interface, for clients and plugins. Each unit that includes this header has objects of its
/// own, as with `Konstanten.h`.

const std::string LEERER_TEXT = "";
/// Stands for the version of a client that gave none.
const std::string VERSIONCLIENT_NICHT_ANGEGEBEN = "VERSIONCLIENT_NICHT_ANGEGEBEN";
const std::string NEUN_NULLEN = "000000000";
const std::string NEUN_LEERZEICHEN = "         ";
const std::string KENNUNG_00200 = "00200";
/// Names of the procedures ("Verfahren"), by number; the last one stands for an unknown procedure.
const std::array<std::string, 13> VERFAHREN = {
    "TalvorExtern",       "TalvorLohn",          "TalvorAnmeldung", "TalvorErklaerung", "TalvorKapESt",
    "TalvorBilanz",       "TalvorDatenabholung", "TalvorFT",        "TalvorFTintern",   "TalvorLohn2",
    "TalvorKontoabfrage", "TalvorKMV",           "UNBEKANNT"};
