#include <orvoplugin/plugin/erweiterung/OrvoUaVzServiceErweiterung.h>

#include <orvoutil/StringUtil.h>

#include <algorithm>
#include <functional>

namespace {

using VzListe = std::list<Veranlagungszeitraum>;

bool istBeliebig(const Unterfallart& ua) {
    return orvo::orvoutil::compareIgnoreCase(ua.getName(), Unterfallart::beliebig()) == 0;
}

bool istBeliebig(const Veranlagungszeitraum& vz) {
    return vz.getTyp() == Veranlagungszeitraum::UNGELESEN || vz.getTyp() == Veranlagungszeitraum::UNABHAENGIG;
}

/// Whether the period offered holds the one asked for. The kind of the latter is not looked at.
bool enthaelt(const Veranlagungszeitraum& angeboten, const Veranlagungszeitraum& gefragt) {
    const bool jahr = angeboten.getJahr() == gefragt.getJahr();
    const bool quartal = jahr && angeboten.getQuartal() == gefragt.getQuartal();
    const bool monat = quartal && angeboten.getZeitraum() == gefragt.getZeitraum();
    switch (angeboten.getTyp()) {
    case Veranlagungszeitraum::UNGELESEN:
    case Veranlagungszeitraum::IMMER:
    case Veranlagungszeitraum::UNABHAENGIG:
        return true;
    case Veranlagungszeitraum::JAHR:
        return jahr;
    case Veranlagungszeitraum::QUARTAL:
    case Veranlagungszeitraum::QUARTAL_ALTERNATIV:
        return quartal;
    case Veranlagungszeitraum::MONAT:
        return monat;
    case Veranlagungszeitraum::TAG:
        return monat && angeboten.getTag() == gefragt.getTag();
    default:
        return false;
    }
}

/// Periods of an extension, each once: of equal ones the first, whatever the kinds of the others.
using Angebot = std::set<std::reference_wrapper<const Veranlagungszeitraum>, std::less<Veranlagungszeitraum>>;

} // namespace

OrvoUaVzServiceErweiterung::OrvoUaVzServiceErweiterung(tag_erweiterung_typ typ, const Unterfallart& ua,
                                                       const Veranlagungszeitraum& vz,
                                                       const std::string& factoryName)
    : OrvoUaVzServiceErweiterung(typ, ua, VzListe{vz}, factoryName) {}

OrvoUaVzServiceErweiterung::OrvoUaVzServiceErweiterung(tag_erweiterung_typ typ,
                                                       const std::list<Unterfallart>& uas,
                                                       const Veranlagungszeitraum& vz,
                                                       const std::string& factoryName)
    : OrvoServiceErweiterung(typ, factoryName) {
    const VzListe vzs{vz};
    for (const Unterfallart& ua : uas)
        nimmAuf(ua, vzs);
}

OrvoUaVzServiceErweiterung::OrvoUaVzServiceErweiterung(tag_erweiterung_typ typ, const Unterfallart& ua,
                                                       const std::list<Veranlagungszeitraum>& vzs,
                                                       const std::string& factoryName)
    : OrvoServiceErweiterung(typ, factoryName) {
    nimmAuf(ua, vzs);
}

OrvoUaVzServiceErweiterung::OrvoUaVzServiceErweiterung(tag_erweiterung_typ typ, const VzMap& map,
                                                       const std::string& factoryName)
    : OrvoServiceErweiterung(typ, factoryName) {
    init(map);
}

OrvoUaVzServiceErweiterung::OrvoUaVzServiceErweiterung(const OrvoUaVzServiceErweiterung& other)
    : OrvoServiceErweiterung(other), unterfallArten_(other.unterfallArten_), vzMap_(other.vzMap_) {}

OrvoUaVzServiceErweiterung::~OrvoUaVzServiceErweiterung() = default;

void OrvoUaVzServiceErweiterung::init(const VzMap& map) {
    for (const auto& [ua, vzs] : map)
        nimmAuf(ua, vzs);
}

void OrvoUaVzServiceErweiterung::nimmAuf(const Unterfallart& ua, const VzListe& vzs) {
    vzMap_.emplace(ua, vzs);
    unterfallArten_.insert(ua);
}

void OrvoUaVzServiceErweiterung::addUnterstuetzteUnterfallArt(const Unterfallart& ua, const VzListe& vzs) {
    nimmAuf(ua, vzs);
}

const std::set<Unterfallart>& OrvoUaVzServiceErweiterung::getUnterfallArten() const {
    return unterfallArten_;
}

const VzListe*
OrvoUaVzServiceErweiterung::getVeranlagungszeitraeumeFuerUnterfallArt(const Unterfallart& ua) const {
    const auto gefunden = vzMap_.find(ua);
    return gefunden == vzMap_.end() ? nullptr : &gefunden->second;
}

const OrvoUaVzServiceErweiterung::VzMap&
OrvoUaVzServiceErweiterung::getVeranlagungszeitraumUnterfallartMap() const {
    return vzMap_;
}

bool OrvoUaVzServiceErweiterung::istUnterfallartUndVeranlagungszeitraumUnterstuetzt(
    const Unterfallart& ua, const Veranlagungszeitraum& vz) {
    if (istBeliebig(ua) && istBeliebig(vz))
        return true;
    Angebot angebot;
    if (istBeliebig(ua)) {
        for (const auto& [jede, vzs] : vzMap_)
            angebot.insert(vzs.begin(), vzs.end());
    } else if (const auto gefunden = vzMap_.find(ua); gefunden != vzMap_.end()) {
        angebot.insert(gefunden->second.begin(), gefunden->second.end());
    }
    return std::any_of(angebot.begin(), angebot.end(), [&](const Veranlagungszeitraum& angeboten) {
        return istBeliebig(vz) || enthaelt(angeboten, vz);
    });
}
