#include "check/Vorschlag.h"

#include "check/Text.h"
#include "kern/Anzeige.h"

#include <orvoutil/StringUtil.h>

#include <algorithm>
#include <vector>

using namespace orvo::orvoutil;

namespace werkzeug::check {

namespace {

/// The largest edit distance at which a name counts as meant: one letter in six, because the names of the entry points
/// differ by more. A truncated name is near too.
std::size_t reichweite(std::string_view gewollt) { return gewollt.size() / 6; }

bool istAbgebrochen(std::string_view name, std::string_view gewollt) {
    return gewollt.starts_with(name) && name.size() > gewollt.size() / 2;
}

/// The function with the nearest name, if near enough.
const Bibliothekssymbol* naechste(const Bibliotheksinhalt& inhalt, std::string_view gewollt) {
    const Bibliothekssymbol* beste = nullptr;
    std::size_t kleinste = reichweite(gewollt) + 1;
    for (const Bibliothekssymbol& symbol : inhalt.exportierte) {
        if (symbol.art != Symbolart::Funktion)
            continue;
        const std::size_t weite =
            istAbgebrochen(symbol.name, gewollt) ? reichweite(gewollt) : abstand(symbol.name, gewollt);
        if (weite < kleinste) {
            kleinste = weite;
            beste = &symbol;
        }
    }
    return beste;
}

} // namespace

std::size_t abstand(std::string_view a, std::string_view b) {
    const std::string links = tolower(std::string(a)), rechts = tolower(std::string(b));
    std::vector<std::size_t> vorvorige(rechts.size() + 1), vorige(rechts.size() + 1),
        diese(rechts.size() + 1);
    for (std::size_t j = 0; j <= rechts.size(); ++j)
        diese[j] = j;
    for (std::size_t i = 1; i <= links.size(); ++i) {
        vorvorige = std::move(vorige);
        vorige = diese;
        diese[0] = i;
        for (std::size_t j = 1; j <= rechts.size(); ++j) {
            const bool gleich = links[i - 1] == rechts[j - 1];
            diese[j] = std::min({vorige[j] + 1, diese[j - 1] + 1, vorige[j - 1] + (gleich ? 0 : 1)});
            if (i > 1 && j > 1 && links[i - 1] == rechts[j - 2] && links[i - 2] == rechts[j - 1])
                diese[j] = std::min(diese[j], vorvorige[j - 2] + 1);
        }
    }
    return diese[rechts.size()];
}

std::string warumNichtExportiert(const Bibliotheksinhalt& inhalt, std::string_view name, bool fest) {
    const std::string was = zitiert(name);
    for (const Bibliothekssymbol& symbol : inhalt.exportierte) {
        if (symbol.name == name)
            return was + " is exported, but is no function";
        if (symbolname(symbol.name).starts_with(std::string(name) + "("))
            return was + " is exported as a C++ function: declare it extern \"C\"";
    }
    if (const Bibliothekssymbol* const nahe = naechste(inhalt, name))
        return zitiert(nahe->name) + " is exported, " + was + " is not: did you mean " +
               (fest ? std::string(name) : einzeilig(nahe->name)) + "?";
    // Misspelt or in a namespace, it does not match its extern "C" declaration, and so is not exported.
    if (name.starts_with("orvo_plugin_"))
        return was +
               " is not exported: include orvoplugin/plugin/PluginEntryPoints.h and define it as it stands "
               "there, with this very name, these parameters and in no namespace";
    return was + " is not exported: define it extern \"C\" and mark it ORVO_PLUGIN_EXPORT";
}

} // namespace werkzeug::check
