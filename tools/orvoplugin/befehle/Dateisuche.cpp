#include "befehle/Dateisuche.h"

#include "kern/Anzeige.h"
#include "kern/Berichtsteile.h"
#include "kern/Optionen.h"

#include <orvoutil/PathUtil.h>

#include <vector>

namespace werkzeug {

std::optional<std::uint32_t> findeDatei(const Bestand& bestand, const std::string& gemeint) {
    const bool istPfad = gemeint.find('/') != std::string::npos;
    const std::string absolut = orvo::orvoutil::getAbsolutePath(gemeint);
    std::vector<std::uint32_t> genaue;
    std::vector<std::uint32_t> passende;
    for (std::uint32_t i = 0; i < bestand.dateien.size(); ++i) {
        const DateiFakt& datei = bestand.dateien[i];
        if (kurzerPfad(bestand, datei) == gemeint || (istPfad && bestand.fundort(datei) == absolut))
            genaue.push_back(i);
        else if (datei.name == gemeint || datei.name == "lib" + gemeint + ".dylib")
            passende.push_back(i);
    }
    if (!genaue.empty())
        return genaue.front();
    if (passende.size() > 1) {
        std::string namen;
        for (const std::uint32_t i : passende)
            namen += "\n  " + einzeilig(kurzerPfad(bestand, bestand.dateien[i]));
        throw AufrufFehler("several files are called " + einzeilig(gemeint) + ":" + namen);
    }
    return passende.empty() ? std::nullopt : std::optional(passende.front());
}

} // namespace werkzeug
