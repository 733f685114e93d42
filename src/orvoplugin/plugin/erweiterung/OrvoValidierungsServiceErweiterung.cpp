#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>

namespace {

constexpr tag_erweiterung_typ kTyp = ORVO_CHECK_SERVICE_ERWEITERUNG;
constexpr char kFactory[] = "orvo_plugin_get_check_service";

} // namespace

OrvoValidierungsServiceErweiterung::OrvoValidierungsServiceErweiterung(const Unterfallart& ua,
                                                                       const Veranlagungszeitraum& vz)
    : OrvoUaVzServiceErweiterung(kTyp, ua, vz, kFactory) {}

OrvoValidierungsServiceErweiterung::OrvoValidierungsServiceErweiterung(const std::list<Unterfallart>& uas,
                                                                       const Veranlagungszeitraum& vz)
    : OrvoUaVzServiceErweiterung(kTyp, uas, vz, kFactory) {}

OrvoValidierungsServiceErweiterung::OrvoValidierungsServiceErweiterung(
    const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs)
    : OrvoUaVzServiceErweiterung(kTyp, ua, vzs, kFactory) {}

OrvoValidierungsServiceErweiterung::OrvoValidierungsServiceErweiterung(const VzMap& map)
    : OrvoUaVzServiceErweiterung(kTyp, map, kFactory) {}

OrvoValidierungsServiceErweiterung::OrvoValidierungsServiceErweiterung(
    const OrvoValidierungsServiceErweiterung&) = default;
OrvoValidierungsServiceErweiterung::~OrvoValidierungsServiceErweiterung() = default;

OrvoErweiterung* OrvoValidierungsServiceErweiterung::clone() const {
    return new OrvoValidierungsServiceErweiterung(*this);
}

orvo::service::ValidierungsService* OrvoValidierungsServiceErweiterung::holeService() {
    return dynamic_cast<orvo::service::ValidierungsService*>(OrvoServiceErweiterung::holeService());
}

void OrvoValidierungsServiceErweiterung::addVorbedingung(const Bedingung& bedingung) {
    vorbedingungen_.push_back(bedingung);
}

// The list is the wanted one: see the class comment.
void OrvoValidierungsServiceErweiterung::addNachbedingung(const Bedingung& bedingung) {
    vorbedingungen_.push_back(bedingung);
}

void OrvoValidierungsServiceErweiterung::setVorbedingungen(const std::list<Bedingung>& bedingungen) {
    vorbedingungen_ = bedingungen;
}

void OrvoValidierungsServiceErweiterung::setNachbedingungen(const std::list<Bedingung>& bedingungen) {
    nachbedingungen_ = bedingungen;
}
