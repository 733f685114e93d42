// Periods: a pattern and a text, one per line. Either parsing fails, or the period is consistent.

#include <orvoplugin/domain/InvalidFormatException.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoutil/StringUtil.h>

#include "Eingabe.h"

using orvo::exception::InvalidFormatException;

namespace {

void pruefe(const Veranlagungszeitraum& vz) {
    const bool istQuartal = vz.getTyp() == Veranlagungszeitraum::QUARTAL ||
                            vz.getTyp() == Veranlagungszeitraum::QUARTAL_ALTERNATIV;
    verlange(vz.getTyp() == Veranlagungszeitraum::JAHR || vz.getTyp() == Veranlagungszeitraum::TAG ||
                 vz.getTyp() == Veranlagungszeitraum::MONAT || istQuartal,
             "what was read is a year, a day, a month or a quarter");
    verlange(vz.getJahr() >= 1000, "years are completed");
    verlange(vz.getTag() >= 0 && vz.getZeitraum() >= 0, "no number is negative");
    verlange((vz.getTag() != 0) == (vz.getTyp() == Veranlagungszeitraum::TAG), "what has a day is a day");
    verlange((vz.getTyp() == Veranlagungszeitraum::JAHR) == (vz.getQuartal() == -1),
             "all but years have a quarter");
    verlange(!istQuartal || (vz.getQuartal() >= 41 && vz.getQuartal() <= 44),
             "quarters are numbered 41 to 44");
    verlange(vz == vz && !(vz < vz), "a period equals itself");
    const Veranlagungszeitraum kopie(vz);
    verlange(kopie == vz && kopie.getText() == vz.getText() && kopie.getTyp() == vz.getTyp(),
             "copies are the same");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t laenge) {
    Zeilen zeilen(daten, laenge);
    const std::string muster = zeilen.naechste();
    const std::string text = zeilen.rest();
    const bool ohneNull = muster.find('\0') == std::string::npos;
    try {
        const auto vz = Veranlagungszeitraum::parse(text, muster.c_str());
        verlange(vz.getText() == text, "a period keeps its text");
        verlange(!ohneNull || text.size() == muster.size(), "text and pattern are of one length");
        pruefe(vz);
    } catch (const InvalidFormatException&) {
    }

    const int zahl = orvo::orvoutil::string2Int(text);
    const std::string ziffern = orvo::orvoutil::int2String(zahl);
    try {
        const Veranlagungszeitraum vz(zahl, muster.c_str());
        verlange(vz.getText() == ziffern, "a period keeps its number");
        pruefe(vz);
        const auto gelesen = Veranlagungszeitraum::parse(
            orvo::orvoutil::formatNumeric(ziffern, std::string(muster.c_str()).size()), muster.c_str());
        verlange(gelesen == vz && gelesen.getTyp() == vz.getTyp(), "a number is read as its digits are");
    } catch (const InvalidFormatException&) {
    }
    return 0;
}
