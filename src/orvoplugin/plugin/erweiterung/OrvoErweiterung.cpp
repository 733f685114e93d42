#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>

#include <orvoplugin/plugin/erweiterung/ErweiterungTypName.h>

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
    return kErweiterungTypNamen[erweiterungTypPlatz(typ)];
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
