// A client that has the records of its command line checked, for UFA_10 and the year 2009.

#include <orvoplugin/domain/Konstanten.h>
#include <orvoplugin/registry/HoleService.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/Logger.h>
#include <orvoutil/StreamLogSink.h>

#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

/// The submission: records in memory.
class Einreichung : public orvo::data::SteuerfallListe {
public:
    explicit Einreichung(std::vector<std::string> saetze) : saetze_(std::move(saetze)) {}
    std::size_t getAnzahl() const override { return saetze_.size(); }
    const std::string& getDatensatz(std::size_t index) const override { return saetze_.at(index); }

private:
    std::vector<std::string> saetze_;
};

} // namespace

int main(int argc, char** argv) {
    using namespace orvo::orvoutil;
    if (argc < 3) {
        std::cerr << "usage: meinclient HOME RECORD...\n";
        return 2;
    }
    Logger::setSink(std::make_shared<StreamLogSink>(std::cerr)); // says why, if a plugin is refused
    Logger::setLevel(LogLevel::Warn);
    Einstellungen().setze("basis.home_dir", argv[1]); // before the first request, which loads all plugins

    const Veranlagungszeitraum jahr(2009, "YYYY");
    const auto pruefung = holeValidierungsService(UFA_10, jahr); // given back at the end of main
    if (!pruefung) {
        std::cerr << "no plugin below " << argv[1] << "/plugins checks UFA_10 for 2009\n";
        return 3;
    }
    PruefErgebnis ergebnis;
    const int status = pruefung->pruefe(Einreichung({argv + 2, argv + argc}), UFA_10, jahr, ergebnis);
    for (const PruefErgebnis::Meldung& meldung : ergebnis.getMeldungen())
        std::cout << meldung.code << latin1ToUtf8(" " + meldung.feld + ": " + meldung.text) << "\n";
    std::cout << (status == 0 ? "accepted\n" : "refused\n");
    return status == 0 ? 0 : 1;
}
