#include "check/Vorschlag.h"

#include "check/Text.h"
#include "kern/Anzeige.h"
#include "kern/Naehe.h"
#include "kern/Sprache.h"

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

std::string warumNichtExportiert(const Bibliotheksinhalt& inhalt, std::string_view name, bool fest) {
    const std::string was = zitiert(name);
    for (const Bibliothekssymbol& symbol : inhalt.exportierte) {
        if (symbol.name == name)
            return satz("{1} is exported, but is no function", was);
        if (symbolname(symbol.name).starts_with(std::string(name) + "("))
            return satz("{1} is exported as a C++ function: declare it extern \"C\"", was);
    }
    if (const Bibliothekssymbol* const nahe = naechste(inhalt, name))
        return satz("{1} is exported, {2} is not: did you mean {3}?", zitiert(nahe->name), was,
                    fest ? std::string(name) : einzeilig(nahe->name));
    // Misspelt or in a namespace, it does not match its extern "C" declaration, and so is not exported.
    if (name.starts_with("orvo_plugin_"))
        return satz(
            "{1} is not exported: include orvoplugin/plugin/PluginEntryPoints.h and define it as it stands there, with this very name, these parameters and in no namespace",
            was);
    return satz("{1} is not exported: define it extern \"C\" and mark it ORVO_PLUGIN_EXPORT", was);
}

} // namespace werkzeug::check
