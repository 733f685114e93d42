#pragma once

#include <orvoplugin/domain/Unterfallart.h>

#include <string>

/// \file
/// The predefined sub-case types, and the name of the period-independent case. Each unit that includes this header has
/// objects of its own, which cost start-up time: include it only where they are used.

// Initialised with "=": only then does GCC 12 initialise the short ones when it compiles.
const Unterfallart UFA_10 = 10;
const Unterfallart UFA_12 = 12;
const Unterfallart UFA_50 = 50;
const Unterfallart UFA_20 = 20;
const Unterfallart UFA_21 = 21;
const Unterfallart UFA_58 = 58;
const Unterfallart UFA_57 = 57;
const Unterfallart UFA_64 = 64;
const Unterfallart UFA_LSTB = "LSTB";
const Unterfallart UFA_PROTOKOLL_ANFORDERUNG = "ProtokollAnforderung";
const Unterfallart UFA_KONTOABFRAGE = "Kontoabfrage";
const Unterfallart UFA_REGISTRIERUNG = "Registrierung";
const Unterfallart UFA_ANTRAEGE_UND_RECHTE = "AntraegeUndRechte";
const Unterfallart UFA_ANTRAEGE_RECHTE_LOESCHEN = "AntraegeRechteLoeschen";
const Unterfallart UFA_30 = 30;
const Unterfallart UFA_31 = 31;
const Unterfallart UFA_32 = 32;
const Unterfallart UFA_33 = 33;
const Unterfallart UFA_90 = 90;
const Unterfallart UFA_95 = 95;
const Unterfallart UFA_77 = 77;
const Unterfallart UFA_KAPESTA = "KapEStA";
const Unterfallart UFA_KAPESTINVSTG = "KapEStInvStG";
const Unterfallart UFA_BILANZ_5_0 = "Bilanz_5_0";
const Unterfallart UFA_BILANZ_5_1 = "Bilanz_5_1";
const Unterfallart UFA_ZMDO = "ZMDO";
const Unterfallart UFA_13 = 13;
const Unterfallart UFA_TALVOR_ERKLAERUNG_DATEN = "TalvorErklaerungDaten";
const Unterfallart UFA_TALVOR_FT_DATEN = "TalvorFTDaten";
const Unterfallart UFA_TALVOR_LOHN2_DATEN = "TalvorLohn2Daten";
const Unterfallart UFA_DUE_ANMELDEN = "DUeAnmelden";
const Unterfallart UFA_DUE_ABMELDEN = "DUeAbmelden";
const Unterfallart UFA_DUE_UMMELDEN = "DUeUmmelden";
const Unterfallart UFA_VV = "VV";
const Unterfallart UFA_ZD = "ZD";
const Unterfallart UFA_LOHNERSATZLEISTUNG = "Lohnersatzleistung";
const Unterfallart UFA_ZUWENDUNGSBESTAETIGUNG = "Zuwendungsbestaetigung";
const Unterfallart UFA_TALVOR_KMV_DATEN = "TalvorKMVDaten";

/// Names the period-independent case in texts.
const std::string VZ_UNABHAENGIG = "VZ_UNABHAENGIG";
