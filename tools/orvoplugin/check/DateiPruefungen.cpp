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

void pruefeDateiformat(const Pruefling& p, Fundliste& funde) {
    if (!p.bild.istLadbar())
        funde.fehler(einzeilig(p.bild.getGrund()), "not_loadable");
}

void pruefeEinsprungpunkte(const Pruefling& p, Fundliste& funde) {
    for (const char* const name : {"orvo_plugin_get_types", "orvo_plugin_initialize"})
        if (!p.bild.exportiertFunktion(name))
            funde.fehler(warumNichtExportiert(p.bild.getInhalt(), name, true), "not_exported");
}

void pruefeExporte(const Pruefling& p, Fundliste& funde) {
    for (const Bibliothekssymbol& symbol : p.bild.getInhalt().exportierte)
        if (symbol.name.starts_with("_Z"))
            funde.warnung(satz("exports {1}", symbolname(symbol.name)), "cxx_symbol");
}

void pruefeEinmaligeSymbole(const Pruefling& p, Fundliste& funde) {
    for (const Bibliothekssymbol& symbol : p.bild.getInhalt().exportierte)
        if (symbol.bindung == Symbolbindung::Einmalig)
            funde.fehler(
                satz("{1} is unique and keeps the library in the process: compile with -fno-gnu-unique",
                     symbolname(symbol.name)),
                "unique_symbol");
}

void pruefeBleiben(const Pruefling& p, Fundliste& funde) {
    if (p.bild.getInhalt().bleibtGeladen)
        funde.fehler(satz("the library is linked with -z nodelete and is never unmapped"), "nodelete");
}

void pruefeThreadDestruktoren(const Pruefling& p, Fundliste& funde) {
    if (p.bild.hatThreadDestruktoren())
        funde.warnung(
            satz(
                "has a thread-local variable with a destructor: once a thread has used it, the library stays in the process until that thread ends; use a variable without a destructor, or a member of the service"),
            "thread_destructor");
}

void pruefeEigeneCxxBibliothek(const Pruefling& p, Fundliste& funde) {
    if (const std::string eigenes = eigenesCxx(p.bild); !eigenes.empty())
        funde.warnung(eigenes, "own_cxx_library");
}

void pruefeCodeAenderung(const Pruefling& p, Fundliste& funde) {
    if (p.bild.getInhalt().aendertCode)
        funde.fehler(satz("the code is written to when the library is opened: compile all of it with -fPIC"),
                     "text_relocation");
}

void pruefeSuchpfade(const Pruefling& p, Fundliste& funde) {
    for (const std::string& pfad : p.bild.getInhalt().suchpfade)
        if (!pfad.starts_with('/') && !pfad.starts_with("$ORIGIN") && !pfad.starts_with("${ORIGIN}"))
            funde.fehler(
                satz("looks for libraries in {1}, which depends on the directory that the process runs in",
                     zitiert(pfad)),
                "relative_path");
}

void pruefeStapel(const Pruefling& p, Fundliste& funde) {
    if (p.bild.getInhalt().stapelMitCode)
        funde.fehler(satz("makes the stack of the whole process executable: link with -z noexecstack"),
                     "executable_stack");
    else if (!p.bild.getInhalt().nenntStapel)
        funde.fehler(
            satz(
                "does not say whether code runs on the stack, which the system's loader takes for a yes: link with -z noexecstack"),
            "executable_stack");
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

void pruefeBaseline(const Pruefling& p, Fundliste& funde) {
    for (const auto& [name, vorsatz] :
         {std::pair("glibc", "GLIBC_"), std::pair("libstdc++", "GLIBCXX_"), std::pair("cxxabi", "CXXABI_")}) {
        const std::string version = neuesteVersion(p.bild.getInhalt(), vorsatz);
        funde.zahlen[name] = version.empty() ? Json() : jsonText(version);
        const auto grenze = p.vorgaben->baseline.find(name);
        if (grenze != p.vorgaben->baseline.end() && OrvoVersion(version) > OrvoVersion(grenze->second))
            funde.fehler(
                satz("needs {1} {2}, newer than {3}", name, einzeilig(version), einzeilig(grenze->second)),
                "newer_than_baseline");
    }
}

} // namespace

std::vector<Pruefung> dateiPruefungen() {
    return {{"file-format", pruefeDateiformat},
            {"entry-points", pruefeEinsprungpunkte},
            {"exports", pruefeExporte},
            {"unique-symbols", pruefeEinmaligeSymbole},
            {"nodelete", pruefeBleiben},
            {"thread-destructors", pruefeThreadDestruktoren},
            {"cxx-library", pruefeEigeneCxxBibliothek},
            {"text-relocations", pruefeCodeAenderung},
            {"search-paths", pruefeSuchpfade},
            {"executable-stack", pruefeStapel},
            {"baseline", pruefeBaseline}};
}

} // namespace werkzeug::check
