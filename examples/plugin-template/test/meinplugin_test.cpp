// Loads the plugin as a client does, checks a good record and a bad one, and verifies that the library is unmapped.

#include <orvoplugin/domain/Konstanten.h>
#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/registry/HoleService.h>
#include <orvoutil/Einstellungen.h>
#include <orvoutil/Logger.h>
#include <orvoutil/SharedLib.h>
#include <orvoutil/StreamLogSink.h>

#include <dlfcn.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

namespace {

/// A submission of one record.
class EinSatz : public orvo::data::SteuerfallListe {
public:
    explicit EinSatz(std::string satz) : satz_(std::move(satz)) {}
    std::size_t getAnzahl() const override { return 1; }
    const std::string& getDatensatz(std::size_t) const override { return satz_; }

private:
    std::string satz_;
};

void erwarte(bool wahr, const char* was) {
    std::cout << (wahr ? "ok      " : "FAILED  ") << was << std::endl;
    if (!wahr)
        std::exit(1);
}

bool istEingeblendet(const std::string& bibliothek) {
    void* const griff = dlopen(bibliothek.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (griff)
        dlclose(griff);
    return griff != nullptr;
}

} // namespace

int main(int argc, char** argv) {
    using namespace orvo::orvoutil;
    if (argc != 2)
        return 2;
    Logger::setSink(std::make_shared<StreamLogSink>(std::cerr)); // says why, if the plugin is refused
    Einstellungen().setze("basis.home_dir", argv[1]);

    const Veranlagungszeitraum jahr(2009, "YYYY");
    auto pruefung = holeValidierungsService(UFA_10, jahr);
    erwarte(static_cast<bool>(pruefung), "the plugin serves UFA_10 for 2009");
    const std::string bibliothek = pruefung.getErweiterung()->getPlugin()->getSharedLib()->getName();

    PruefErgebnis gut;
    erwarte(pruefung->pruefe(EinSatz("Jahr=2009"), UFA_10, jahr, gut) == 0, "a good record passes");
    PruefErgebnis schlecht;
    erwarte(pruefung->pruefe(EinSatz(""), UFA_10, jahr, schlecht) == 1, "an empty record does not");
    erwarte(schlecht.getMeldungen().size() == 1, "and there is one message about it");

    erwarte(istEingeblendet(bibliothek), "the library is open while its service is held");
    pruefung.gibZurueck();
    erwarte(!istEingeblendet(bibliothek), "and has left the process when that was given back");
    erwarte(!holeValidierungsService(UFA_10, Veranlagungszeitraum(2010, "YYYY")), "2010 is not served");
    return 0;
}
