// Checks that read the file and run none of its code.

#include "check/Katalog.h"
#include "check/Text.h"
#include "check/Vorschlag.h"
#include "kern/Anzeige.h"
#include "kern/Sprache.h"

#include <orvoutil/OrvoVersion.h>

#include <utility>

using orvo::orvoutil::OrvoVersion;

namespace werkzeug::check {

namespace {

Befund pruefeDateiformat(const Pruefling& p) {
    return p.bild.istLadbar() ? bestanden() : durchgefallen(einzeilig(p.bild.getGrund()), "not_loadable");
}

Befund pruefeEinsprungpunkte(const Pruefling& p) {
    Fundliste funde;
    for (const char* const name : {"orvo_plugin_get_types", "orvo_plugin_initialize"})
        if (!p.bild.exportiertFunktion(name))
            funde.fehler(warumNichtExportiert(p.bild.getInhalt(), name, true), "not_exported");
    return funde.befund();
}

Befund pruefeExporte(const Pruefling& p) {
    Fundliste funde;
    for (const Bibliothekssymbol& symbol : p.bild.getInhalt().exportierte)
        if (symbol.name.starts_with("_Z"))
            funde.warnung("exports " + symbolname(symbol.name), "cxx_symbol");
    return funde.befund();
}

Befund pruefeEinmaligeSymbole(const Pruefling& p) {
    Fundliste funde;
    for (const Bibliothekssymbol& symbol : p.bild.getInhalt().exportierte)
        if (symbol.bindung == Symbolbindung::Einmalig)
            funde.fehler(symbolname(symbol.name) +
                             " is unique and keeps the library in the process: compile with -fno-gnu-unique",
                         "unique_symbol");
    return funde.befund();
}

Befund pruefeBleiben(const Pruefling& p) {
    return p.bild.getInhalt().bleibtGeladen
               ? durchgefallen("the library is linked with -z nodelete and is never unmapped", "nodelete")
               : bestanden();
}

Befund pruefeThreadDestruktoren(const Pruefling& p) {
    return p.bild.hatThreadDestruktoren()
               ? warnung(
                     "has a thread-local variable with a destructor: once a thread has used it, the library "
                     "stays in the process until that thread ends",
                     "thread_destructor")
               : bestanden();
}

Befund pruefeCodeAenderung(const Pruefling& p) {
    return p.bild.getInhalt().aendertCode
               ? durchgefallen(
                     "the code is written to when the library is opened: compile all of it with -fPIC",
                     "text_relocation")
               : bestanden();
}

Befund pruefeSuchpfade(const Pruefling& p) {
    Fundliste funde;
    for (const std::string& pfad : p.bild.getInhalt().suchpfade)
        if (!pfad.starts_with('/') && !pfad.starts_with("$ORIGIN") && !pfad.starts_with("${ORIGIN}"))
            funde.fehler("looks for libraries in " + zitiert(pfad) +
                             ", which depends on the directory that the process runs in",
                         "relative_path");
    return funde.befund();
}

Befund pruefeStapel(const Pruefling& p) {
    if (p.bild.getInhalt().stapelMitCode)
        return durchgefallen(
            satz("makes the stack of the whole process executable: link with -z noexecstack"),
            "executable_stack");
    return p.bild.getInhalt().nenntStapel
               ? bestanden()
               : durchgefallen(
                     satz("does not say whether code runs on the stack, which the system's loader takes for "
                          "a yes: link with -z noexecstack"));
}

/// The newest version of that prefix that the file needs; empty for none. Those without numbers, such as GLIBC_PRIVATE,
/// are left out.
std::string neuesteVersion(const Bibliotheksinhalt& inhalt, const std::string& vorsatz) {
    std::string neueste;
    for (const Versionsbedarf& bedarf : inhalt.versionen) {
        const std::string name = bedarf.version == "GLIBC_ABI_DT_RELR" ? "GLIBC_2.36" : bedarf.version;
        const std::string version = name.starts_with(vorsatz) ? name.substr(vorsatz.size()) : "";
        if (OrvoVersion(version).hatNurZahlen() && OrvoVersion(version) > OrvoVersion(neueste))
            neueste = version;
    }
    return neueste;
}

Befund pruefeBaseline(const Pruefling& p) {
    Fundliste funde;
    Json zahlen;
    for (const auto& [name, vorsatz] :
         {std::pair("glibc", "GLIBC_"), std::pair("libstdc++", "GLIBCXX_"), std::pair("cxxabi", "CXXABI_")}) {
        const std::string version = neuesteVersion(p.bild.getInhalt(), vorsatz);
        zahlen[name] = version.empty() ? Json() : jsonText(version);
        const auto grenze = p.vorgaben->baseline.find(name);
        if (grenze != p.vorgaben->baseline.end() && OrvoVersion(version) > OrvoVersion(grenze->second))
            funde.fehler(
                satz("needs {1} {2}, newer than {3}", name, einzeilig(version), einzeilig(grenze->second)),
                "newer_than_baseline");
    }
    Befund befund = funde.befund();
    befund.zahlen = std::move(zahlen);
    return befund;
}

} // namespace

std::vector<Pruefung> dateiPruefungen() {
    return {
        {"file-format",
         N_("The file is a whole shared library for this machine and for this release of the libraries."),
         {},
         Ort::DATEI,
         pruefeDateiformat},
        {"entry-points",
         N_("The library exports the functions orvo_plugin_get_types and orvo_plugin_initialize."),
         {},
         Ort::DATEI,
         pruefeEinsprungpunkte},
        {"exports",
         N_("The library exports C functions only, so that none of its C++ names meet those of others."),
         {},
         Ort::DATEI,
         pruefeExporte},
        {"unique-symbols",
         N_("The library exports no unique symbol, which would keep it in the process for good."),
         {},
         Ort::DATEI,
         pruefeEinmaligeSymbole},
        {"nodelete",
         N_("The library is not marked as one that stays in the process."),
         {},
         Ort::DATEI,
         pruefeBleiben},
        {"thread-destructors",
         N_("The library has no thread-local variable with a destructor, which would keep it in the process."),
         {},
         Ort::DATEI,
         pruefeThreadDestruktoren},
        {"text-relocations",
         N_("The library's code need not be written to when it is opened."),
         {},
         Ort::DATEI,
         pruefeCodeAenderung},
        {"search-paths",
         N_("The library looks for others in directories with full names only, or beside itself."),
         {},
         Ort::DATEI,
         pruefeSuchpfade},
        {"executable-stack",
         N_("The library does not make the stack of its process executable."),
         {},
         Ort::DATEI,
         pruefeStapel},
        {"baseline",
         N_("The library needs no newer glibc and libstdc++ than those of the baseline."),
         {},
         Ort::DATEI,
         pruefeBaseline},
    };
}

} // namespace werkzeug::check
