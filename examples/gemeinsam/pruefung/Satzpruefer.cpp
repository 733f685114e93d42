#include <pruefung/Satzpruefer.h>

#include <orvoutil/Latin1.h>
#include <pruefung/Befundcode.h>
#include <steuer/Betrag.h>
#include <steuer/SteuerId.h>

#include <algorithm>
#include <variant>

using orvo::orvoutil::Latin1Text;
using steuer::BetragFehler;
using steuer::Datensatz;
using steuer::Lesefehler;
using steuer::SteuerIdFehler;

namespace pruefung {
namespace {

constexpr Latin1Text kSatzartFalsch{u8"Die Satzart passt nicht zur Unterfallart, erwartet: "};
constexpr Latin1Text kFehlt{u8"Das Pflichtfeld fehlt oder ist leer."};
constexpr Latin1Text kUnbekannt{u8"Das Feld gehört nicht zu dieser Satzart."};
constexpr Latin1Text kMehrfach{u8"Das Feld steht mehrfach im Datensatz."};

constexpr Latin1Text kIdNrForm{u8"Die Identifikationsnummer muss aus genau elf Ziffern bestehen."};
constexpr Latin1Text kIdNrNull{u8"Die Identifikationsnummer darf nicht mit 0 beginnen."};
constexpr Latin1Text kIdNrWiederholung{u8"Von den ersten zehn Ziffern muss genau eine zwei- oder dreimal "
                                       u8"vorkommen, die übrigen höchstens einmal."};
constexpr Latin1Text kIdNrDreiInFolge{
    u8"Eine dreifache Ziffer darf nicht dreimal unmittelbar hintereinander stehen."};
constexpr Latin1Text kIdNrPruefziffer{u8"Die Prüfziffer der Identifikationsnummer ist falsch."};

constexpr Latin1Text kBetragForm{u8"Kein gültiger Betrag; erwartet wird die Form 1234,56."};
constexpr Latin1Text kBetragNegativ{u8"Der Betrag darf nicht negativ sein."};
constexpr Latin1Text kBetragZuGross{u8"Der Betrag ist zu groß."};
constexpr Latin1Text kHoeherAls{u8"Der Betrag ist höher als "};

constexpr Latin1Text kDatumForm{u8"Kein gültiges Datum; erwartet wird die Form TT.MM.JJJJ."};
constexpr Latin1Text kDatumAusserhalb{u8"Das Datum liegt außerhalb des Veranlagungszeitraums."};
constexpr Latin1Text kEndeVorBeginn{u8"Das Ende liegt vor dem Beginn."};

constexpr Latin1Text kFinanzamtForm{u8"Die Nummer des Finanzamts muss aus genau vier Ziffern bestehen."};

constexpr Latin1Text kLeer{u8"Kein Datensatz: kein einziges Feld."};
constexpr Latin1Text kZuGross{u8"Kein Datensatz: zu groß."};
constexpr Latin1Text kZeile{u8" hat nicht die Form Feld=Wert."};
constexpr Latin1Text kZeichen{u8" enthält unzulässige Zeichen."};

std::string textZu(const Lesefehler& fehler) {
    const std::string zeile = "Kein Datensatz: Zeile " + std::to_string(fehler.zeile);
    switch (fehler.art) {
    case Lesefehler::Art::LEER:
        return kLeer.c_str();
    case Lesefehler::Art::ZU_GROSS:
        return kZuGross.c_str();
    case Lesefehler::Art::ZEILE:
        return zeile + kZeile.c_str();
    case Lesefehler::Art::ZEICHEN:
        break;
    }
    return zeile + kZeichen.c_str();
}

/// "55 Promille von Lohnsteuer", or the field alone when it is the bound itself.
std::string grenzeVon(const Anteilsregel& regel) {
    if (regel.promille == 1000)
        return regel.grundlage;
    return std::to_string(regel.promille) + " Promille von " + regel.grundlage;
}

} // namespace

void Satzpruefer::pruefe(std::string_view text) {
    const std::variant<Datensatz, Lesefehler> gelesen = steuer::liesDatensatz(text);
    if (const auto* const fehler = std::get_if<Lesefehler>(&gelesen))
        return melde(KEIN_DATENSATZ, "", textZu(*fehler));

    const Datensatz& satz = *std::get_if<Datensatz>(&gelesen);
    pruefeBestand(satz);
    pruefeSatzart(satz);
    jedeRegel([&](const Feldregel& regel) { pruefeInhalt(regel, satz.wert(regel.name)); });
    for (const Anteilsregel& regel : aufbau_.anteile)
        pruefeAnteil(satz, regel);
    pruefeReihenfolge(satz);
}

void Satzpruefer::pruefeBestand(const Datensatz& satz) {
    jedeRegel([&](const Feldregel& regel) {
        if (regel.pflicht && satz.wert(regel.name).empty())
            melde(FELD_FEHLT, regel.name, kFehlt.c_str());
    });
    for (const Datensatz::Feld& feld : satz.getFelder()) {
        if (!regelFuer(feld.name))
            melde(FELD_UNBEKANNT, feld.name, kUnbekannt.c_str());
        else if (satz.finde(feld.name) != &feld)
            melde(FELD_MEHRFACH, feld.name, kMehrfach.c_str());
    }
}

void Satzpruefer::pruefeSatzart(const Datensatz& satz) {
    const std::string_view satzart = satz.wert(kSatzart);
    if (!satzart.empty() && satzart != aufbau_.satzart)
        melde(SATZART_FALSCH, kSatzart, std::string(kSatzartFalsch.c_str()) + aufbau_.satzart);
}

void Satzpruefer::pruefeInhalt(const Feldregel& regel, std::string_view wert) {
    if (wert.empty())
        return; // reported already, where the field is required
    switch (regel.art) {
    case Feldart::TEXT:
        return;
    case Feldart::IDNR:
        return pruefeIdNr(regel.name, wert);
    case Feldart::BETRAG:
        return pruefeBetrag(regel.name, wert);
    case Feldart::DATUM:
        return pruefeDatum(regel.name, wert);
    case Feldart::FINANZAMT:
        return pruefeFinanzamt(regel.name, wert);
    }
}

void Satzpruefer::pruefeIdNr(const char* feld, std::string_view wert) {
    switch (steuer::pruefeSteuerId(wert)) {
    case SteuerIdFehler::KEINER:
        return;
    case SteuerIdFehler::FORM:
        return melde(IDNR_FORM, feld, kIdNrForm.c_str());
    case SteuerIdFehler::FUEHRENDE_NULL:
        return melde(IDNR_FUEHRENDE_NULL, feld, kIdNrNull.c_str());
    case SteuerIdFehler::WIEDERHOLUNG:
        return melde(IDNR_WIEDERHOLUNG, feld, kIdNrWiederholung.c_str());
    case SteuerIdFehler::DREI_IN_FOLGE:
        return melde(IDNR_DREI_IN_FOLGE, feld, kIdNrDreiInFolge.c_str());
    case SteuerIdFehler::PRUEFZIFFER:
        return melde(IDNR_PRUEFZIFFER, feld, kIdNrPruefziffer.c_str());
    }
}

void Satzpruefer::pruefeBetrag(const char* feld, std::string_view wert) {
    switch (steuer::liesBetrag(wert).fehler) {
    case BetragFehler::KEINER:
        return;
    case BetragFehler::FORM:
        return melde(BETRAG_FORM, feld, kBetragForm.c_str());
    case BetragFehler::NEGATIV:
        return melde(BETRAG_NEGATIV, feld, kBetragNegativ.c_str());
    case BetragFehler::ZU_GROSS:
        return melde(BETRAG_ZU_GROSS, feld, kBetragZuGross.c_str());
    }
}

void Satzpruefer::pruefeDatum(const char* feld, std::string_view wert) {
    const std::optional<steuer::Datum> datum = steuer::liesDatum(wert);
    if (!datum)
        melde(DATUM_FORM, feld, kDatumForm.c_str());
    else if (zeitspanne_ && !zeitspanne_->enthaelt(*datum))
        melde(DATUM_AUSSERHALB, feld, kDatumAusserhalb.c_str());
}

void Satzpruefer::pruefeFinanzamt(const char* feld, std::string_view wert) {
    if (wert.size() != 4 || wert.find_first_not_of("0123456789") != std::string_view::npos)
        melde(FINANZAMT_FORM, feld, kFinanzamtForm.c_str());
}

void Satzpruefer::pruefeAnteil(const Datensatz& satz, const Anteilsregel& regel) {
    const steuer::GelesenerBetrag betrag = steuer::liesBetrag(satz.wert(regel.betrag));
    const steuer::GelesenerBetrag grundlage = steuer::liesBetrag(satz.wert(regel.grundlage));
    if (betrag.fehler != BetragFehler::KEINER || grundlage.fehler != BetragFehler::KEINER)
        return;
    if (betrag.cent * 1000 > grundlage.cent * regel.promille) // `kHoechsterBetrag` leaves room for this
        melde(BETRAG_UEBER_GRENZE, regel.betrag, kHoeherAls.c_str() + grenzeVon(regel) + ".");
}

void Satzpruefer::pruefeReihenfolge(const Datensatz& satz) {
    const std::optional<steuer::Datum> beginn = steuer::liesDatum(satz.wert(kBeginn));
    const std::optional<steuer::Datum> ende = steuer::liesDatum(satz.wert(kEnde));
    if (beginn && ende && *ende < *beginn)
        melde(ENDE_VOR_BEGINN, kEnde, kEndeVorBeginn.c_str());
}

const Feldregel* Satzpruefer::regelFuer(std::string_view feld) const {
    const Feldregel* gefunden = nullptr;
    jedeRegel([&](const Feldregel& regel) {
        if (feld == regel.name)
            gefunden = &regel;
    });
    return gefunden;
}

template <class Ruf>
void Satzpruefer::jedeRegel(Ruf&& ruf) const {
    for (const Feldregel& regel : kopffelder())
        ruf(regel);
    for (const Feldregel& regel : aufbau_.felder)
        ruf(regel);
}

void Satzpruefer::melde(int code, std::string_view feld, std::string_view text) {
    ergebnis_.fuegeHinzu(code, std::string(feld), vorspann_ + std::string(text));
}

} // namespace pruefung
