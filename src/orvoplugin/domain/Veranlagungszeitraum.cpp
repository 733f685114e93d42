#include <orvoplugin/domain/Veranlagungszeitraum.h>

#include <orvoplugin/domain/InvalidFormatException.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/StringUtil.h>

#include <limits>
#include <tuple>

using namespace orvo::orvoutil;
using orvo::exception::InvalidFormatException;

namespace {

constexpr Latin1Text kUngueltigeLaenge{u8"Ungültige String Länge"};
constexpr Latin1Text kTrennzeichenPosition{
    u8"Angegebener Zeitraumstring entspricht nicht dem erwarteten Format. An Position "};
constexpr Latin1Text kTrennzeichenErwartet{u8" wird das Trennzeichen "};
constexpr Latin1Text kNichtNumerisch{u8"Zeitraum nicht numerisch."};
constexpr Latin1Text kUngueltigeFormatangabe{u8"Ungültige Formatangabe: "};

constexpr int kQuartalEins = 41;
constexpr int kAlternativesQuartalEins = 51;
constexpr int kGanzesJahr = 19;

bool istTrennzeichen(char p) { return p == '-' || p == '/' || p == '\\'; }

bool istQuartalscode(int code, int erstes) { return code >= erstes && code < erstes + 4; }

int quartalDesMonats(int monat) { return (monat - 1) / 3 + kQuartalEins; }

auto rang(const Veranlagungszeitraum& v) {
    return std::make_tuple(v.getJahr(), v.getQuartal(), v.getZeitraum(), v.getTag());
}

} // namespace

Veranlagungszeitraum::Veranlagungszeitraum() : typ_(UNABHAENGIG) {}

Veranlagungszeitraum::Veranlagungszeitraum(int wert, const char* format)
    : typ_(UNGELESEN), text_(int2String(wert)) {
    const std::string muster = format ? format : "";
    lies(formatNumeric(text_, muster.size()), muster);
}

Veranlagungszeitraum Veranlagungszeitraum::parse(const std::string& text, const char* format) {
    Veranlagungszeitraum gelesen;
    gelesen.text_ = text;
    gelesen.lies(text, format ? format : "");
    return gelesen;
}

Veranlagungszeitraum::~Veranlagungszeitraum() = default;

void Veranlagungszeitraum::lies(const std::string& ziffern, const std::string& format) {
    if (ziffern.size() != format.size())
        throw InvalidFormatException(kUngueltigeLaenge.c_str());

    for (std::size_t i = 0; i < format.size(); ++i) {
        const char p = format[i];
        const char c = ziffern[i];
        if (istTrennzeichen(p)) {
            if (c != p)
                throw InvalidFormatException(kTrennzeichenPosition.c_str() +
                                             long2String(static_cast<long>(i)) +
                                             kTrennzeichenErwartet.c_str() + p + " erwartet.");
            continue;
        }
        if (c < '0' || c > '9')
            throw InvalidFormatException(kNichtNumerisch.c_str());
        std::int32_t* const zahl = p == 'Y'               ? &jahr_
                                   : p == 'M' || p == 'Z' ? &zeitraum_
                                   : p == 'T'             ? &tag_
                                                          : nullptr;
        if (!zahl) // by contract the message shows the digit, not the letter of the pattern
            throw InvalidFormatException(kUngueltigeFormatangabe.c_str() + format + " Zeichen " + c +
                                         " nicht erlaubt in Formatangabe!");
        const int ziffer = c - '0';
        if (*zahl > (std::numeric_limits<std::int32_t>::max() - ziffer) / 10)
            throw InvalidFormatException(kNichtNumerisch.c_str());
        *zahl = *zahl * 10 + ziffer;
    }
    ordneEin();
}

void Veranlagungszeitraum::ordneEin() {
    if (tag_ != 0) {
        typ_ = TAG;
        quartal_ = quartalDesMonats(zeitraum_);
    } else if (zeitraum_ == 0 || zeitraum_ == kGanzesJahr) {
        typ_ = JAHR;
    } else if (istQuartalscode(zeitraum_, kQuartalEins)) {
        typ_ = QUARTAL;
        quartal_ = zeitraum_;
    } else if (istQuartalscode(zeitraum_, kAlternativesQuartalEins)) {
        typ_ = QUARTAL_ALTERNATIV;
        quartal_ = zeitraum_ - 10;
    } else {
        // A month beyond 12 too: plugins refuse impossible months.
        typ_ = MONAT;
        quartal_ = quartalDesMonats(zeitraum_);
    }

    if (jahr_ == 98 || jahr_ == 99)
        jahr_ += 1900;
    else if (jahr_ <= 999) // never negative: digits only
        jahr_ += 2000;
}

bool operator==(const Veranlagungszeitraum& a, const Veranlagungszeitraum& b) noexcept {
    return rang(a) == rang(b);
}

bool operator<(const Veranlagungszeitraum& a, const Veranlagungszeitraum& b) noexcept {
    return rang(a) < rang(b);
}
