#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <orvoplugin/plugin/erweiterung/ErweiterungTypName.h>

#include <ostream>
#include <stdexcept>

namespace {

std::size_t flagIndex(orvo_erweiterung_flag_t flag) {
    if (flag < FLAG_SERVICE_LOESCHEN || flag > FLAG_RESERVIERT_4)
        throw std::out_of_range("bitset::set");
    return static_cast<std::size_t>(flag);
}

} // namespace

const char* erweiterungTypName(tag_erweiterung_typ typ) {
    return kErweiterungTypNamen[erweiterungTypPlatz(typ)];
}

std::ostream& operator<<(std::ostream& out, const tag_erweiterung_typ& typ) {
    return out << erweiterungTypName(typ);
}

OrvoErweiterung::OrvoErweiterung(tag_erweiterung_typ typ) : typ_(typ) {}
OrvoErweiterung::OrvoErweiterung(const OrvoErweiterung&) = default;
OrvoErweiterung::~OrvoErweiterung() { plugin_ = nullptr; }

void OrvoErweiterung::setzeFlag(orvo_erweiterung_flag_t flag, bool wert) { flags_[flagIndex(flag)] = wert; }
bool OrvoErweiterung::istFlagGesetzt(orvo_erweiterung_flag_t flag) const { return flags_[flagIndex(flag)]; }

void OrvoErweiterung::addAbhaengigkeit(const Abhaengigkeit& abhaengigkeit) {
    abhaengigkeiten_.push_back(abhaengigkeit);
}
