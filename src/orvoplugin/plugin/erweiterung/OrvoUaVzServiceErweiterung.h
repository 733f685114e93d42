#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/domain/Unterfallart.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>

#include <cstdint>
#include <list>
#include <map>
#include <set>
#include <string>

/// A service extension that serves certain sub-case types ("Unterfallart") and, for each, certain assessment
/// periods ("Veranlagungszeitraum"). The registry files it once per pair.
class ORVOPLUGIN_API OrvoUaVzServiceErweiterung : public OrvoServiceErweiterung {
public:
    using VzMap = std::map<Unterfallart, std::list<Veranlagungszeitraum>>;

    ~OrvoUaVzServiceErweiterung() override;

    virtual const std::set<Unterfallart>& getUnterfallArten() const;
    /// Returns: the periods in the order given, owned by the extension; null for a sub-case type that is not served.
    virtual const std::list<Veranlagungszeitraum>*
    getVeranlagungszeitraeumeFuerUnterfallArt(const Unterfallart& ua) const;
    virtual const VzMap& getVeranlagungszeitraumUnterfallartMap() const;

    /// Adds a sub-case type with its periods. By contract, one that is there already keeps the periods it has: a plugin
    /// gives all periods at once.
    virtual void addUnterstuetzteUnterfallArt(const Unterfallart& ua,
                                              const std::list<Veranlagungszeitraum>& vzs);

    /// Whether the extension serves the pair. The sub-case type "notset" stands for any of the extension's; a
    /// period without a kind, or the period-independent one, for any period. An offered year holds each quarter,
    /// month and day of it, an offered quarter its months and days, an offered month its days.
    virtual bool istUnterfallartUndVeranlagungszeitraumUnterstuetzt(const Unterfallart& ua,
                                                                    const Veranlagungszeitraum& vz);

protected:
    OrvoUaVzServiceErweiterung(tag_erweiterung_typ typ, const Unterfallart& ua,
                               const Veranlagungszeitraum& vz, const std::string& factoryName);
    OrvoUaVzServiceErweiterung(tag_erweiterung_typ typ, const std::list<Unterfallart>& uas,
                               const Veranlagungszeitraum& vz, const std::string& factoryName);
    OrvoUaVzServiceErweiterung(tag_erweiterung_typ typ, const Unterfallart& ua,
                               const std::list<Veranlagungszeitraum>& vzs, const std::string& factoryName);
    OrvoUaVzServiceErweiterung(tag_erweiterung_typ typ, const VzMap& map, const std::string& factoryName);
    OrvoUaVzServiceErweiterung(const OrvoUaVzServiceErweiterung& other);

    /// Adds each entry.
    void init(const VzMap& map);

private:
    void nimmAuf(const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs);

    std::set<Unterfallart> unterfallArten_;
    VzMap vzMap_;
    [[maybe_unused]] std::int32_t reserviert_ = 0; ///< never copied; nothing here reads it
};
