#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <cstddef>
#include <cstdint>

/// Key under which the registry files an extension: kind of extension, sub-case type ("Unterfallart") and
/// assessment period ("Veranlagungszeitraum"). The class is also the hash functor of the registry's map.
///
/// Two keys are equal when their kinds are, their sub-case types compare equal, and the years of their periods
/// are the same: any period of a year finds what is filed for another one of that year.
class ORVOPLUGIN_API ErweiterungsSchluessel {
public:
    /// Kind `NONE`, sub-case type "notset", the period-independent period. As a hash functor, any key serves.
    ErweiterungsSchluessel();
    ErweiterungsSchluessel(const tag_erweiterung_typ& typ, const Unterfallart& ua,
                           const Veranlagungszeitraum& vz);
    ErweiterungsSchluessel(const ErweiterungsSchluessel&);
    ErweiterungsSchluessel& operator=(const ErweiterungsSchluessel&);
    virtual ~ErweiterungsSchluessel();

    /// Hash of `schluessel`: 32 bits over the text "kind#number#year", kind by its name. Equal keys have equal hashes,
    /// except a negative number other than -99 and a name of the same text. (Not noexcept, so that the table caches each
    /// entry's hash.)
    std::size_t operator()(const ErweiterungsSchluessel& schluessel) const;
    /// The same hash, from its parts.
    static std::uint32_t streuwert(tag_erweiterung_typ typ, std::int32_t nummer, std::int32_t jahr) noexcept;

    tag_erweiterung_typ getTyp() const { return typ_; }
    const Unterfallart& getUnterfallart() const { return unterfallart_; }
    const Veranlagungszeitraum& getVeranlagungszeitraum() const { return veranlagungszeitraum_; }

    friend bool operator==(const ErweiterungsSchluessel& a, const ErweiterungsSchluessel& b) noexcept {
        return a.typ_ == b.typ_ && a.unterfallart_ == b.unterfallart_ &&
               a.veranlagungszeitraum_.getJahr() == b.veranlagungszeitraum_.getJahr();
    }
    /// Kind, then sub-case type, then year.
    friend bool operator<(const ErweiterungsSchluessel& a, const ErweiterungsSchluessel& b) noexcept {
        if (a.typ_ != b.typ_)
            return a.typ_ < b.typ_;
        const int ua = a.unterfallart_.compare(b.unterfallart_);
        return ua != 0 ? ua < 0 : a.veranlagungszeitraum_.getJahr() < b.veranlagungszeitraum_.getJahr();
    }

private:
    tag_erweiterung_typ typ_;
    Unterfallart unterfallart_;
    Veranlagungszeitraum veranlagungszeitraum_;
};
