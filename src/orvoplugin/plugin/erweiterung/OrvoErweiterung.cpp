#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <ostream>
#include <stdexcept>

namespace {

template <std::size_t N>
std::size_t flagIndex(const std::bitset<N>&, orvo_erweiterung_flag_t flag) {
    const auto index = static_cast<std::size_t>(flag);
    if (index >= N)
        throw std::out_of_range("bitset::set");
    return index;
}

} // namespace

const char* erweiterungTypName(tag_erweiterung_typ typ) {
    switch (typ) {
    case NONE:
        return "NONE";
    case ORVO_CHECK_SERVICE_ERWEITERUNG:
        return "ORVO_CHECK_SERVICE_ERWEITERUNG";
    case ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG:
        return "ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG";
    case ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG:
        return "ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG";
    case ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG:
        return "ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG";
    case ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG:
        return "ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG";
    case ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG:
        return "ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG";
    }
    return "UNBEKANNT";
}

std::ostream& operator<<(std::ostream& out, const tag_erweiterung_typ& typ) {
    return out << erweiterungTypName(typ);
}

OrvoErweiterung::OrvoErweiterung(tag_erweiterung_typ typ) : typ_(typ) {}
OrvoErweiterung::OrvoErweiterung(const OrvoErweiterung&) = default;
OrvoErweiterung::~OrvoErweiterung() { plugin_ = nullptr; }

void OrvoErweiterung::setzeFlag(orvo_erweiterung_flag_t flag, bool wert) {
    flags_[flagIndex(flags_, flag)] = wert;
}

bool OrvoErweiterung::istFlagGesetzt(orvo_erweiterung_flag_t flag) const {
    return flags_[flagIndex(flags_, flag)];
}

void OrvoErweiterung::addAbhaengigkeit(const Abhaengigkeit& abhaengigkeit) {
    abhaengigkeiten_.push_back(abhaengigkeit);
}
