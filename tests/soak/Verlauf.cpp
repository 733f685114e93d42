#include "soak/Verlauf.h"

#include "support/Prozess.h"

#include <link.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>

namespace {

constexpr std::size_t kPlatz = 1024; // so that samples take no memory while the run is measured

double belegterHaufen() {
#if defined(__GLIBC__) && __GLIBC_PREREQ(2, 33)
    const struct mallinfo2 stand = mallinfo2();
    return static_cast<double>(stand.uordblks + stand.hblkhd);
#else
    return 0;
#endif
}

int zaehle(dl_phdr_info*, std::size_t, void* anzahl) {
    ++*static_cast<int*>(anzahl);
    return 0; // goes on
}

int bibliotheken() {
    int anzahl = 0;
    dl_iterate_phdr(zaehle, &anzahl);
    return anzahl;
}

} // namespace

Messung jetzigeMessung(int dienste) {
    const double haufen = belegterHaufen();
    long seiten = 0, residente = 0;
    std::ifstream("/proc/self/statm") >> seiten >> residente;
    std::ifstream karte("/proc/self/maps");
    const auto zeilen =
        std::count(std::istreambuf_iterator<char>(karte), std::istreambuf_iterator<char>(), '\n');
    karte.close();
    return {haufen,
            static_cast<double>(residente * (sysconf(_SC_PAGESIZE) / 1024)),
            static_cast<double>(zeilen),
            static_cast<double>(offeneDeskriptoren()),
            static_cast<double>(bibliotheken()),
            static_cast<double>(dienste)};
}

Verlauf::Verlauf(std::ostream& csv) : csv_(csv) {
    proben_.reserve(kPlatz);
    csv_ << "cycle";
    for (const Messgroesse& groesse : kMessgroessen)
        csv_ << ',' << groesse.name << (*groesse.einheit ? std::string(" (") + groesse.einheit + ")" : "");
    csv_ << '\n' << std::fixed;
    csv_.precision(0);
}

void Verlauf::nimmAuf(long zyklus, const Messung& messung) {
    proben_.push_back({zyklus, messung});
    csv_ << zyklus;
    for (const double wert : messung)
        csv_ << ',' << wert;
    csv_ << std::endl; // a run that crashes leaves its samples
}

double Verlauf::anstieg(std::size_t groesse) const {
    std::vector<double> steigungen;
    for (std::size_t i = ersteGewertete(); i < proben_.size(); ++i)
        for (std::size_t j = i + 1; j < proben_.size(); ++j)
            steigungen.push_back((proben_[j].messung[groesse] - proben_[i].messung[groesse]) /
                                 static_cast<double>(proben_[j].zyklus - proben_[i].zyklus));
    if (steigungen.empty())
        return 0;
    const auto mitte = steigungen.begin() + static_cast<std::ptrdiff_t>(steigungen.size() / 2);
    std::nth_element(steigungen.begin(), mitte, steigungen.end());
    return *mitte * static_cast<double>(proben_.back().zyklus - proben_[ersteGewertete()].zyklus);
}

bool Verlauf::urteile(std::ostream& ausgabe) const {
    bool eben = true;
    ausgabe << std::fixed;
    ausgabe.precision(1);
    for (std::size_t i = 0; i < kMessgroessen.size(); ++i) {
        ausgabe << (istEben(i) ? "level      " : "NOT LEVEL  ") << kMessgroessen[i].name << ": rises by "
                << anstieg(i) << (*kMessgroessen[i].einheit ? " " : "") << kMessgroessen[i].einheit
                << " (up to " << kMessgroessen[i].spielraum << ")\n";
        eben = eben && istEben(i);
    }
    return eben;
}
