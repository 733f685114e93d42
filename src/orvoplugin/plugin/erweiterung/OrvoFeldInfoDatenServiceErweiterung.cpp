#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>

namespace {

constexpr tag_erweiterung_typ kTyp = ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG;
constexpr char kFactory[] = "orvo_plugin_get_feldinfo_daten_service";

} // namespace

OrvoFeldInfoDatenServiceErweiterung::OrvoFeldInfoDatenServiceErweiterung(const Unterfallart& ua,
                                                                         const Veranlagungszeitraum& vz)
    : OrvoUaVzServiceErweiterung(kTyp, ua, vz, kFactory) {}

OrvoFeldInfoDatenServiceErweiterung::OrvoFeldInfoDatenServiceErweiterung(const std::list<Unterfallart>& uas,
                                                                         const Veranlagungszeitraum& vz)
    : OrvoUaVzServiceErweiterung(kTyp, uas, vz, kFactory) {}

OrvoFeldInfoDatenServiceErweiterung::OrvoFeldInfoDatenServiceErweiterung(
    const Unterfallart& ua, const std::list<Veranlagungszeitraum>& vzs)
    : OrvoUaVzServiceErweiterung(kTyp, ua, vzs, kFactory) {}

OrvoFeldInfoDatenServiceErweiterung::OrvoFeldInfoDatenServiceErweiterung(const VzMap& map)
    : OrvoUaVzServiceErweiterung(kTyp, map, kFactory) {}

OrvoFeldInfoDatenServiceErweiterung::OrvoFeldInfoDatenServiceErweiterung(
    const OrvoFeldInfoDatenServiceErweiterung&) = default;
OrvoFeldInfoDatenServiceErweiterung::~OrvoFeldInfoDatenServiceErweiterung() = default;

OrvoErweiterung* OrvoFeldInfoDatenServiceErweiterung::clone() const {
    return new OrvoFeldInfoDatenServiceErweiterung(*this);
}

Service* OrvoFeldInfoDatenServiceErweiterung::holeService() { return OrvoServiceErweiterung::holeService(); }
