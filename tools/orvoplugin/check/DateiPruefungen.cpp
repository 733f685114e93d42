// Checks that read the file and run none of its code.

#include "check/Katalog.h"
#include "check/Text.h"
#include "check/Vorschlag.h"
#include "kern/Anzeige.h"

namespace werkzeug::check {

Befund pruefeDateiformat(const Pruefling& p) {
    return p.bild.istLadbar() ? bestanden() : durchgefallen(einzeilig(p.bild.getGrund()));
}

Befund pruefeEinsprungpunkte(const Pruefling& p) {
    Fundliste funde;
    for (const char* const name : {"orvo_plugin_get_types", "orvo_plugin_initialize"})
        if (!p.bild.exportiertFunktion(name))
            funde.fehler(warumNichtExportiert(p.bild.getInhalt(), name, true));
    return funde.befund();
}

Befund pruefeExporte(const Pruefling& p) {
    Fundliste funde;
    for (const Bibliothekssymbol& symbol : p.bild.getInhalt().exportierte)
        if (symbol.name.starts_with("_Z"))
            funde.warnung("exports " + symbolname(symbol.name));
    return funde.befund();
}

Befund pruefeEinmaligeSymbole(const Pruefling& p) {
    Fundliste funde;
    for (const Bibliothekssymbol& symbol : p.bild.getInhalt().exportierte)
        if (symbol.bindung == Symbolbindung::Einmalig)
            funde.fehler(symbolname(symbol.name) +
                         " is unique and keeps the library in the process: compile with -fno-gnu-unique");
    return funde.befund();
}

Befund pruefeBleiben(const Pruefling& p) {
    return p.bild.getInhalt().bleibtGeladen
               ? durchgefallen("the library is linked with -z nodelete and is never unmapped")
               : bestanden();
}

Befund pruefeThreadDestruktoren(const Pruefling& p) {
    return p.bild.hatThreadDestruktoren()
               ? warnung(
                     "has a thread-local variable with a destructor: once a thread has used it, the library "
                     "stays in the process until that thread ends")
               : bestanden();
}

Befund pruefeBindung(const Pruefling& p) {
    return p.bild.getInhalt().bindetSofort
               ? bestanden()
               : warnung(
                     "not linked with -z now: opened by others, a missing function would end the process at "
                     "its first call");
}

Befund pruefeCodeAenderung(const Pruefling& p) {
    return p.bild.getInhalt().aendertCode
               ? durchgefallen(
                     "the code is written to when the library is opened: compile all of it with -fPIC")
               : bestanden();
}

Befund pruefeSuchpfade(const Pruefling& p) {
    Fundliste funde;
    for (const std::string& pfad : p.bild.getInhalt().suchpfade)
        if (!pfad.starts_with('/') && !pfad.starts_with("$ORIGIN") && !pfad.starts_with("${ORIGIN}"))
            funde.fehler("looks for libraries in " + zitiert(pfad) +
                         ", which depends on the directory that the process runs in");
    return funde.befund();
}

} // namespace werkzeug::check
