#include "Heim.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string_view>

std::string ersetze(std::string text, const std::string& was, const std::string& womit) {
    for (std::size_t i = 0; (i = text.find(was, i)) != std::string::npos; i += womit.size())
        text.replace(i, was.size(), womit);
    return text;
}

Ergebnis Heim::rufe(std::vector<std::string> argumente, const std::vector<std::string>& umgebung) const {
    argumente.insert(argumente.end(), {"--home", verzeichnis.pfad()});
    Ergebnis ergebnis = rufeTool(argumente, umgebung);
    ergebnis.ausgabe = ersetze(ergebnis.ausgabe, verzeichnis.pfad(), "@HOME@");
    ergebnis.fehler = ersetze(ergebnis.fehler, verzeichnis.pfad(), "@HOME@");
    return ergebnis;
}

std::string vergleicheMitMuster(const std::string& name, const std::string& text) {
    const std::string pfad = ORVO_GOLDEN_DIR "/" + name;
    const char* const schreibe = std::getenv("ORVO_GOLDEN");
    if (schreibe && std::string_view(schreibe) == "write") {
        std::ofstream(pfad, std::ios::binary) << text;
        return {};
    }
    std::ifstream datei(pfad, std::ios::binary);
    const std::string muster((std::istreambuf_iterator<char>(datei)), {});
    if (text == muster)
        return {};
    return "differs from tests/tool/golden/" + name + " (ORVO_GOLDEN=write rewrites it); it is now:\n" + text;
}
