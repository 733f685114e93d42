#pragma once

#include <orvoplugin/Export.h>

#include <cstdint>
#include <string>

/// Assessment period ("Veranlagungszeitraum") of a submission: a year, quarter, month or day, read strictly
/// from digits under a pattern such as "YYYY" or "YYYY-MM".
///
/// In a pattern, 'Y' stands for a digit of the year, 'M' or 'Z' for one of the month or period code, 'T' for
/// one of the day; '-', '/' and the backslash stand for themselves. A period code of 41 to 44 is a quarter,
/// 51 to 54 a quarter in the alternative writing, 19 the whole year. Years of up to three digits are completed:
/// 98 and 99 lie in the 1900s, all others in the 2000s, so the year written 0 is 2000.
///
/// Equality and order go by year, quarter, month code and day, whatever the kind. (The registry's key goes by the year
/// alone.)
///
/// Errors: `orvo::exception::InvalidFormatException`, from the constructor with a pattern and from `parse`.
class ORVOPLUGIN_API Veranlagungszeitraum {
public:
    /// Kinds of period, the values of `getTyp`.
    enum Typ : std::int32_t {
        UNGELESEN = -1,        ///< nothing read yet; asked for, it stands for any period
        JAHR = 0,              ///< a year
        TAG = 1,               ///< a day
        MONAT = 2,             ///< a month
        QUARTAL = 3,           ///< a quarter, codes 41 to 44
        IMMER = 4,             ///< every period; plugins may set it
        UNABHAENGIG = 5,       ///< independent of any period
        QUARTAL_ALTERNATIV = 6 ///< a quarter, codes 51 to 54
    };

    /// The period-independent period: no year, and in the support test of an extension it matches any period.
    Veranlagungszeitraum();

    /// Reads the number, with leading zeros up to the pattern's width: `Veranlagungszeitraum(2009, "YYYY")`. A null
    /// pattern counts as the empty one.
    Veranlagungszeitraum(int wert, const char* format);

    /// Reads a text such as "2009-05" under "YYYY-MM".
    static Veranlagungszeitraum parse(const std::string& text, const char* format);

    virtual ~Veranlagungszeitraum();

    /// Kind of period, one of `Typ`.
    std::int32_t getTyp() const { return typ_; }
    /// Year with all its digits; 0 for the period-independent period.
    std::int32_t getJahr() const { return jahr_; }
    /// Month 1 to 12, or period code (19, 41 to 44, 51 to 54); 0 when none was given.
    std::int32_t getZeitraum() const { return zeitraum_; }
    /// Day of the month; 0 when none was given.
    std::int32_t getTag() const { return tag_; }
    /// Code 41 to 44 of the quarter that holds the period; -1 for a year.
    std::int32_t getQuartal() const { return quartal_; }
    /// The text that the period was made from, before any completion.
    const std::string& getText() const { return text_; }

    ORVOPLUGIN_API friend bool operator==(const Veranlagungszeitraum& a,
                                          const Veranlagungszeitraum& b) noexcept;
    ORVOPLUGIN_API friend bool operator<(const Veranlagungszeitraum& a,
                                         const Veranlagungszeitraum& b) noexcept;

private:
    template <bool>
    friend class Beschreibungsstrom;

    void lies(const std::string& ziffern, const std::string& format);
    void ordneEin();

    std::int32_t typ_;
    std::int32_t jahr_ = 0;
    std::int32_t zeitraum_ = 0;
    std::int32_t tag_ = 0;
    std::int32_t quartal_ = -1;
    std::string text_;
    [[maybe_unused]] std::int32_t reserviert_ = 0; ///< carried along with the value; nothing here reads it
};
