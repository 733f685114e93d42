#include "befehle/Dateisuche.h"

#include "kern/Anzeige.h"
#include "kern/Berichtsteile.h"
#include "kern/Naehe.h"
#include "kern/Sammler.h"

#include <orvoutil/PathUtil.h>

#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <vector>

namespace werkzeug {

namespace {

constexpr std::string_view kVorne = "lib";

/// The name without folder, "lib" and suffix.
std::string kern(const std::string& pfad) {
    const std::string name = pfad.substr(pfad.rfind('/') + 1);
    const std::size_t anfang = name.starts_with(kVorne) ? kVorne.size() : 0;
    return name.substr(anfang, name.rfind('.') - anfang);
}

/// Whether the file is not passed over for its name or kind.
bool istPlugin(const DateiFakt& datei) {
    return datei.zustand != Zustand::UEBERGANGEN || datei.grund == Grund::KEINER;
}

} // namespace

std::string einzelneDatei(const Optionen& optionen, const std::string& gemeint) {
    if (!optionen.dir.empty() || !optionen.home.empty() || gemeint.find('/') == std::string::npos)
        return {};
    if (access(gemeint.c_str(), R_OK) != 0)
        throw Unlesbar(satz("{1}: {2}", einzeilig(gemeint), systemtext(errno)));
    return orvo::orvoutil::getAbsolutePath(gemeint);
}

std::string keineDatei(const Bestand& bestand, const std::string& gemeint) {
    std::vector<std::string> kerne;
    for (const DateiFakt& datei : bestand.dateien)
        if (istPlugin(datei))
            kerne.push_back(kern(datei.name));
    const std::string naechster = naechstes(kern(gemeint), kerne); // empty if it is one of them
    std::string aehnliche;
    for (const DateiFakt& datei : bestand.dateien)
        if (istPlugin(datei) && kern(datei.name) == (naechster.empty() ? kern(gemeint) : naechster))
            aehnliche = kurzerPfad(bestand, datei);
    return satz("there is no file {1} below {2}", einzeilig(gemeint), einzeilig(bestand.suchpfad)) +
           rueckfrage(aehnliche);
}

std::optional<std::uint32_t> findeDatei(const Bestand& bestand, const std::string& gemeint) {
    const bool istPfad = gemeint.find('/') != std::string::npos;
    const std::string absolut = orvo::orvoutil::getAbsolutePath(gemeint);
    std::vector<std::uint32_t> genaue;
    std::vector<std::uint32_t> passende;
    for (std::uint32_t i = 0; i < bestand.dateien.size(); ++i) {
        const DateiFakt& datei = bestand.dateien[i];
        if (kurzerPfad(bestand, datei) == gemeint || (istPfad && bestand.fundort(datei) == absolut))
            genaue.push_back(i);
        else if (datei.name == gemeint || datei.name == "lib" + gemeint + ".dylib" ||
                 datei.name == gemeint + ".dylib")
            passende.push_back(i);
    }
    if (!genaue.empty())
        return genaue.front();
    if (passende.size() > 1) {
        std::string namen;
        for (const std::uint32_t i : passende)
            namen += "\n  " + einzeilig(kurzerPfad(bestand, bestand.dateien[i]));
        throw AufrufFehler(satz("several files are called {1}:{2}", einzeilig(gemeint), namen));
    }
    return passende.empty() ? std::nullopt : std::optional(passende.front());
}

} // namespace werkzeug
