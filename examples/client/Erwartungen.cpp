#include "Erwartungen.h"

#include <ostream>

const char* Erwartungen::pruefe(bool erfuellt, const std::string& was) {
    ++anzahl_;
    if (!erfuellt)
        verfehlte_.push_back(was);
    return erfuellt ? "✓" : "✗";
}

std::ostream& operator<<(std::ostream& aus, const Erwartungen& erwartungen) {
    aus << "  " << erwartungen.anzahl_ << " Erwartungen geprüft, ";
    if (erwartungen.sindErfuellt())
        return aus << "alle erfüllt.\n";
    aus << erwartungen.verfehlte_.size() << " nicht erfüllt:\n";
    for (const std::string& was : erwartungen.verfehlte_)
        aus << "  ✗ " << was << '\n';
    return aus;
}
