#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/domain/NieZerstoert.h>
#include <orvoplugin/domain/Unterfallart.h>

#include <string>

/// \file
/// The predefined sub-case types, and the name of the period-independent case. Including this header costs nothing:
/// the names are references, each unit's own, to values that the library makes once, when it is loaded.

/// The values themselves. Their list is closed: programs may hold a copy of it, of the size that it has.
struct VordefinierteUnterfallarten {
    Unterfallart UFA_10{10};
    Unterfallart UFA_12{12};
    Unterfallart UFA_50{50};
    Unterfallart UFA_20{20};
    Unterfallart UFA_21{21};
    Unterfallart UFA_58{58};
    Unterfallart UFA_57{57};
    Unterfallart UFA_64{64};
    Unterfallart UFA_LSTB{"LSTB"};
    Unterfallart UFA_PROTOKOLL_ANFORDERUNG{"ProtokollAnforderung"};
    Unterfallart UFA_KONTOABFRAGE{"Kontoabfrage"};
    Unterfallart UFA_REGISTRIERUNG{"Registrierung"};
    Unterfallart UFA_ANTRAEGE_UND_RECHTE{"AntraegeUndRechte"};
    Unterfallart UFA_ANTRAEGE_RECHTE_LOESCHEN{"AntraegeRechteLoeschen"};
    Unterfallart UFA_30{30};
    Unterfallart UFA_31{31};
    Unterfallart UFA_32{32};
    Unterfallart UFA_33{33};
    Unterfallart UFA_90{90};
    Unterfallart UFA_95{95};
    Unterfallart UFA_77{77};
    Unterfallart UFA_KAPESTA{"KapEStA"};
    Unterfallart UFA_KAPESTINVSTG{"KapEStInvStG"};
    Unterfallart UFA_BILANZ_5_0{"Bilanz_5_0"};
    Unterfallart UFA_BILANZ_5_1{"Bilanz_5_1"};
    Unterfallart UFA_ZMDO{"ZMDO"};
    Unterfallart UFA_13{13};
    Unterfallart UFA_TALVOR_ERKLAERUNG_DATEN{"TalvorErklaerungDaten"};
    Unterfallart UFA_TALVOR_FT_DATEN{"TalvorFTDaten"};
    Unterfallart UFA_TALVOR_LOHN2_DATEN{"TalvorLohn2Daten"};
    Unterfallart UFA_DUE_ANMELDEN{"DUeAnmelden"};
    Unterfallart UFA_DUE_ABMELDEN{"DUeAbmelden"};
    Unterfallart UFA_DUE_UMMELDEN{"DUeUmmelden"};
    Unterfallart UFA_VV{"VV"};
    Unterfallart UFA_ZD{"ZD"};
    Unterfallart UFA_LOHNERSATZLEISTUNG{"Lohnersatzleistung"};
    Unterfallart UFA_ZUWENDUNGSBESTAETIGUNG{"Zuwendungsbestaetigung"};
    Unterfallart UFA_TALVOR_KMV_DATEN{"TalvorKMVDaten"};

    /// Names the period-independent case in texts.
    std::string VZ_UNABHAENGIG{"VZ_UNABHAENGIG"};
};

extern ORVOPLUGIN_API const NieZerstoert<VordefinierteUnterfallarten> kVordefinierteUnterfallarten;

[[maybe_unused]] static const Unterfallart& UFA_10 = kVordefinierteUnterfallarten.wert.UFA_10;
[[maybe_unused]] static const Unterfallart& UFA_12 = kVordefinierteUnterfallarten.wert.UFA_12;
[[maybe_unused]] static const Unterfallart& UFA_50 = kVordefinierteUnterfallarten.wert.UFA_50;
[[maybe_unused]] static const Unterfallart& UFA_20 = kVordefinierteUnterfallarten.wert.UFA_20;
[[maybe_unused]] static const Unterfallart& UFA_21 = kVordefinierteUnterfallarten.wert.UFA_21;
[[maybe_unused]] static const Unterfallart& UFA_58 = kVordefinierteUnterfallarten.wert.UFA_58;
[[maybe_unused]] static const Unterfallart& UFA_57 = kVordefinierteUnterfallarten.wert.UFA_57;
[[maybe_unused]] static const Unterfallart& UFA_64 = kVordefinierteUnterfallarten.wert.UFA_64;
[[maybe_unused]] static const Unterfallart& UFA_LSTB = kVordefinierteUnterfallarten.wert.UFA_LSTB;
[[maybe_unused]] static const Unterfallart& UFA_PROTOKOLL_ANFORDERUNG =
    kVordefinierteUnterfallarten.wert.UFA_PROTOKOLL_ANFORDERUNG;
[[maybe_unused]] static const Unterfallart& UFA_KONTOABFRAGE =
    kVordefinierteUnterfallarten.wert.UFA_KONTOABFRAGE;
[[maybe_unused]] static const Unterfallart& UFA_REGISTRIERUNG =
    kVordefinierteUnterfallarten.wert.UFA_REGISTRIERUNG;
[[maybe_unused]] static const Unterfallart& UFA_ANTRAEGE_UND_RECHTE =
    kVordefinierteUnterfallarten.wert.UFA_ANTRAEGE_UND_RECHTE;
[[maybe_unused]] static const Unterfallart& UFA_ANTRAEGE_RECHTE_LOESCHEN =
    kVordefinierteUnterfallarten.wert.UFA_ANTRAEGE_RECHTE_LOESCHEN;
[[maybe_unused]] static const Unterfallart& UFA_30 = kVordefinierteUnterfallarten.wert.UFA_30;
[[maybe_unused]] static const Unterfallart& UFA_31 = kVordefinierteUnterfallarten.wert.UFA_31;
[[maybe_unused]] static const Unterfallart& UFA_32 = kVordefinierteUnterfallarten.wert.UFA_32;
[[maybe_unused]] static const Unterfallart& UFA_33 = kVordefinierteUnterfallarten.wert.UFA_33;
[[maybe_unused]] static const Unterfallart& UFA_90 = kVordefinierteUnterfallarten.wert.UFA_90;
[[maybe_unused]] static const Unterfallart& UFA_95 = kVordefinierteUnterfallarten.wert.UFA_95;
[[maybe_unused]] static const Unterfallart& UFA_77 = kVordefinierteUnterfallarten.wert.UFA_77;
[[maybe_unused]] static const Unterfallart& UFA_KAPESTA = kVordefinierteUnterfallarten.wert.UFA_KAPESTA;
[[maybe_unused]] static const Unterfallart& UFA_KAPESTINVSTG =
    kVordefinierteUnterfallarten.wert.UFA_KAPESTINVSTG;
[[maybe_unused]] static const Unterfallart& UFA_BILANZ_5_0 = kVordefinierteUnterfallarten.wert.UFA_BILANZ_5_0;
[[maybe_unused]] static const Unterfallart& UFA_BILANZ_5_1 = kVordefinierteUnterfallarten.wert.UFA_BILANZ_5_1;
[[maybe_unused]] static const Unterfallart& UFA_ZMDO = kVordefinierteUnterfallarten.wert.UFA_ZMDO;
[[maybe_unused]] static const Unterfallart& UFA_13 = kVordefinierteUnterfallarten.wert.UFA_13;
[[maybe_unused]] static const Unterfallart& UFA_TALVOR_ERKLAERUNG_DATEN =
    kVordefinierteUnterfallarten.wert.UFA_TALVOR_ERKLAERUNG_DATEN;
[[maybe_unused]] static const Unterfallart& UFA_TALVOR_FT_DATEN =
    kVordefinierteUnterfallarten.wert.UFA_TALVOR_FT_DATEN;
[[maybe_unused]] static const Unterfallart& UFA_TALVOR_LOHN2_DATEN =
    kVordefinierteUnterfallarten.wert.UFA_TALVOR_LOHN2_DATEN;
[[maybe_unused]] static const Unterfallart& UFA_DUE_ANMELDEN =
    kVordefinierteUnterfallarten.wert.UFA_DUE_ANMELDEN;
[[maybe_unused]] static const Unterfallart& UFA_DUE_ABMELDEN =
    kVordefinierteUnterfallarten.wert.UFA_DUE_ABMELDEN;
[[maybe_unused]] static const Unterfallart& UFA_DUE_UMMELDEN =
    kVordefinierteUnterfallarten.wert.UFA_DUE_UMMELDEN;
[[maybe_unused]] static const Unterfallart& UFA_VV = kVordefinierteUnterfallarten.wert.UFA_VV;
[[maybe_unused]] static const Unterfallart& UFA_ZD = kVordefinierteUnterfallarten.wert.UFA_ZD;
[[maybe_unused]] static const Unterfallart& UFA_LOHNERSATZLEISTUNG =
    kVordefinierteUnterfallarten.wert.UFA_LOHNERSATZLEISTUNG;
[[maybe_unused]] static const Unterfallart& UFA_ZUWENDUNGSBESTAETIGUNG =
    kVordefinierteUnterfallarten.wert.UFA_ZUWENDUNGSBESTAETIGUNG;
[[maybe_unused]] static const Unterfallart& UFA_TALVOR_KMV_DATEN =
    kVordefinierteUnterfallarten.wert.UFA_TALVOR_KMV_DATEN;

/// Names the period-independent case in texts.
[[maybe_unused]] static const std::string& VZ_UNABHAENGIG = kVordefinierteUnterfallarten.wert.VZ_UNABHAENGIG;
