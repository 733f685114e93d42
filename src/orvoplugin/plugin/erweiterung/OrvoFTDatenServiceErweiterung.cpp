#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>

namespace {

constexpr tag_erweiterung_typ kTyp = ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG;
constexpr char kFactory[] = "orvo_plugin_get_fehlertext_daten_service";

} // namespace

OrvoFTDatenServiceErweiterung::OrvoFTDatenServiceErweiterung(const Unterfallart& ua,
                                                             const Veranlagungszeitraum& vz)
    : OrvoUaVzServiceErweiterung(kTyp, ua, vz, kFactory) {}

OrvoFTDatenServiceErweiterung::OrvoFTDatenServiceErweiterung(const std::list<Unterfallart>& uas,
                                                             const Veranlagungszeitraum& vz)
    : OrvoUaVzServiceErweiterung(kTyp, uas, vz, kFactory) {}

OrvoFTDatenServiceErweiterung::OrvoFTDatenServiceErweiterung(const Unterfallart& ua,
                                                             const std::list<Veranlagungszeitraum>& vzs)
    : OrvoUaVzServiceErweiterung(kTyp, ua, vzs, kFactory) {}

OrvoFTDatenServiceErweiterung::OrvoFTDatenServiceErweiterung(const VzMap& map)
    : OrvoUaVzServiceErweiterung(kTyp, map, kFactory) {}

OrvoFTDatenServiceErweiterung::OrvoFTDatenServiceErweiterung(const OrvoFTDatenServiceErweiterung&) = default;
OrvoFTDatenServiceErweiterung::~OrvoFTDatenServiceErweiterung() = default;

OrvoErweiterung* OrvoFTDatenServiceErweiterung::clone() const {
    return new OrvoFTDatenServiceErweiterung(*this);
}

Service* OrvoFTDatenServiceErweiterung::holeService() { return OrvoServiceErweiterung::holeService(); }
