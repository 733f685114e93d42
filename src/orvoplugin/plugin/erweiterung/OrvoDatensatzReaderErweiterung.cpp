#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>

namespace {

constexpr tag_erweiterung_typ kTyp = ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG;
constexpr char kFactory[] = "orvo_plugin_get_datensatz_reader_service";

} // namespace

OrvoDatensatzReaderErweiterung::OrvoDatensatzReaderErweiterung(const Unterfallart& ua,
                                                               const Veranlagungszeitraum& vz)
    : OrvoUaVzServiceErweiterung(kTyp, ua, vz, kFactory) {}

OrvoDatensatzReaderErweiterung::OrvoDatensatzReaderErweiterung(const std::list<Unterfallart>& uas,
                                                               const Veranlagungszeitraum& vz)
    : OrvoUaVzServiceErweiterung(kTyp, uas, vz, kFactory) {}

OrvoDatensatzReaderErweiterung::OrvoDatensatzReaderErweiterung(const Unterfallart& ua,
                                                               const std::list<Veranlagungszeitraum>& vzs)
    : OrvoUaVzServiceErweiterung(kTyp, ua, vzs, kFactory) {}

OrvoDatensatzReaderErweiterung::OrvoDatensatzReaderErweiterung(const VzMap& map)
    : OrvoUaVzServiceErweiterung(kTyp, map, kFactory) {}

OrvoDatensatzReaderErweiterung::OrvoDatensatzReaderErweiterung(const OrvoDatensatzReaderErweiterung&) =
    default;
OrvoDatensatzReaderErweiterung::~OrvoDatensatzReaderErweiterung() = default;

OrvoErweiterung* OrvoDatensatzReaderErweiterung::clone() const {
    return new OrvoDatensatzReaderErweiterung(*this);
}

orvo::service::DatensatzReaderService* OrvoDatensatzReaderErweiterung::holeService() {
    return dynamic_cast<orvo::service::DatensatzReaderService*>(OrvoServiceErweiterung::holeService());
}

void OrvoDatensatzReaderErweiterung::addVorbedingung(const Bedingung& bedingung) {
    vorbedingungen_.push_back(bedingung);
}

// The list is the wanted one: see the class comment.
void OrvoDatensatzReaderErweiterung::addNachbedingung(const Bedingung& bedingung) {
    vorbedingungen_.push_back(bedingung);
}

void OrvoDatensatzReaderErweiterung::setVorbedingungen(const std::list<Bedingung>& bedingungen) {
    vorbedingungen_ = bedingungen;
}

void OrvoDatensatzReaderErweiterung::setNachbedingungen(const std::list<Bedingung>& bedingungen) {
    nachbedingungen_ = bedingungen;
}
