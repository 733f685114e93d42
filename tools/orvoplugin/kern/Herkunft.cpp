#include "kern/Herkunft.h"

#include "kern/Sprache.h"

#include <orvoplugin/plugin/LibraryVersion.h>

namespace werkzeug {

namespace {

constexpr char kUnverfaenglich[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-./,:=@%+";

} // namespace

std::string fuerDieShell(const std::string& wort) {
    if (!wort.empty() && wort.find_first_not_of(kUnverfaenglich) == std::string::npos)
        return wort;
    std::string text = "'";
    for (const char c : wort)
        text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}

std::string versionen() {
    char produkt[16] = "";
    char datei[16] = "";
    getOrvoSharedLibProductversion(produkt);
    getOrvoSharedLibFileversion(datei);
    return satz("orvoplugin {1} (liborvoplugin {2}; file {3})", ORVO_TOOL_VERSION, produkt, datei);
}

std::string befehlszeile(int argc, char** argv) {
    std::string text = "orvoplugin";
    for (int i = 1; i < argc; ++i)
        text += " " + fuerDieShell(argv[i]);
    return text;
}

} // namespace werkzeug
