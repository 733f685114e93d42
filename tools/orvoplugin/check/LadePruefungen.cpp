// Checks of whether and how the library can be opened.

#include "check/Katalog.h"
#include "check/Pluginnutzung.h"
#include "check/Text.h"
#include "kern/Anzeige.h"
#include "kern/Arbeitsverzeichnis.h"
#include "kern/Gruende.h"
#include "kern/Kindprozess.h"
#include "kern/Sprache.h"
#include "kern/Ursachen.h"

#include <orvoplugin/plugin/LadeBeobachter.h>
#include <orvoplugin/plugin/OrvoPluginManager.h>
#include <orvoutil/PathUtil.h>
#include <orvoutil/SharedLib.h>

#include <dlfcn.h>

#include <fstream>
#include <optional>

using namespace orvo::orvoutil;

namespace werkzeug::check {

namespace {

/// The loader's result for opening the file.
struct Oeffnung {
    bool gelungen = false;
    std::string grund;                 ///< why not
    std::vector<std::string> fehlende; ///< the undefined symbols, as far as they can be determined
};

bool istGrundEinSymbol(const std::string& grund) {
    return grund.find("undefined symbol") != std::string::npos;
}

/// All missing symbols, when only functions are missing: the library then opens with lazy binding.
std::vector<std::string> fehlendeFunktionen(const Pruefling& p) {
    std::vector<std::string> fehlende;
    const std::string name = p.pfad.find('/') == std::string::npos ? "./" + p.pfad : p.pfad;
    void* const griff = dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (!griff)
        return fehlende;
    for (const Bibliothekssymbol& symbol : p.bild.getInhalt().undefinierte)
        if (symbol.bindung != Symbolbindung::Schwach && !dlsym(griff, symbol.name.c_str()) &&
            !dlsym(RTLD_DEFAULT, symbol.name.c_str()))
            fehlende.push_back(symbol.name);
    return fehlende; // left open: the process ends here
}

/// Opens the library in a child process: its start-up code may crash or hang, which another check reports.
/// Returns: nothing in that case. Everything that the library needs was found then, because start-up code runs last.
std::optional<Oeffnung> oeffneImKind(const Pruefling& p) {
    std::optional<Oeffnung> oeffnung;
    laufeImKind(
        [&](const Sender& sende) {
            SharedLib bibliothek(p.pfad);
            const bool gelungen = bibliothek.load();
            sende(gelungen ? std::string() : bibliothek.getLastError());
            if (!gelungen && istGrundEinSymbol(bibliothek.getLastError()))
                for (const std::string& name : fehlendeFunktionen(p))
                    sende(name);
        },
        [&](std::string_view satz) {
            if (oeffnung)
                oeffnung->fehlende.emplace_back(satz);
            else
                oeffnung = Oeffnung{satz.empty(), std::string(satz), {}};
        },
        p.zeitlimit / 2); // leaves time for this check itself
    return oeffnung;
}

/// The symbol's name in the loader's message.
std::string symbolAus(const std::string& grund) {
    constexpr std::string_view kVor = "undefined symbol: ";
    const std::size_t stelle = grund.find(kVor);
    const std::string rest = grund.substr(stelle + kVor.size());
    return rest.substr(0, rest.find_first_of(", \t\n"));
}

/// How the plugin manager treats a file name.
struct Namensurteil : LadeBeobachter {
    bool istGefunden = false;
    Dateiart art = UEBERGANGEN;
    std::string geladenAls; ///< the name under which it would be loaded

    void findetDatei(const std::string&, const std::string&, Dateiart wofuer,
                     const std::string& pfad) noexcept override {
        istGefunden = true;
        art = wofuer;
        geladenAls = getOnlyFilenameOfFullFilename(pfad);
    }
    bool ladeDatei(const std::string&) noexcept override { return false; }
};

/// Makes the manager walk a directory with an empty file of that name.
Namensurteil urteilUeber(const std::string& name) {
    const Arbeitsverzeichnis verzeichnis;
    std::ofstream(getFullFilename(verzeichnis.pfad(), name)).put('\n');
    beginneOhnePlugins();
    OrvoPluginManager manager(nullptr);
    Namensurteil urteil;
    OrvoPluginManager::setLadeBeobachter(&urteil);
    manager.ladePluginsRekursiv(verzeichnis.pfad());
    OrvoPluginManager::setLadeBeobachter(nullptr);
    return urteil;
}

void pruefeDateiname(const Pruefling& p, Fundliste& funde) {
    const std::string name = getOnlyFilenameOfFullFilename(p.pfad);
    const Namensurteil urteil = urteilUeber(name);
    if (!urteil.istGefunden)
        funde.fehler(satz("{1} is passed over: it is hidden, or has no suffix", zitiert(name)),
                     "passed_over");
    else if (urteil.art == LadeBeobachter::GESPERRT)
        funde.fehler(satz("{1} is on the block list: the plugin manager passes over it", zitiert(name)),
                     "blocked");
    else if (urteil.art == LadeBeobachter::UEBERGANGEN)
        funde.fehler(satz("{1} is not taken for a plugin: its name has to end in .dylib", zitiert(name)),
                     "wrong_suffix");
    else if (urteil.geladenAls != name)
        funde.fehler(satz("{1} is looked for as {2}, and so not found: write the suffix in lower case",
                          zitiert(name), zitiert(urteil.geladenAls)),
                     "upper_case_suffix");
}

void pruefeBenoetigteBibliotheken(const Pruefling& p, Fundliste& funde) {
    const std::optional<Oeffnung> oeffnung = oeffneImKind(p);
    if (!oeffnung || oeffnung->gelungen || istGrundEinSymbol(oeffnung->grund))
        return;
    if (oeffnung->grund.find("DT_RELR without") != std::string::npos)
        return funde.fehler(
            satz(
                "has packed relocations (RELR), but its linker left out the version GLIBC_ABI_DT_RELR, without "
                "which no system opens it: link it with -z nopack-relative-relocs, or with another linker"),
            "not_opened");
    DateiFakt datei;
    datei.grund = Grund::OEFFNEN;
    datei.ursache = sucheUrsache(ABLEHNUNG_OEFFNEN, p.pfad, {}, oeffnung->grund);
    funde.fehler(einzeilig(oeffnung->grund) + ". " + erklaerung(datei) + " " + rat(datei),
                 liegtAmRechner(datei.ursache) ? kFehltHier : "not_opened");
}

void pruefeUndefinierteSymbole(const Pruefling& p, Fundliste& funde) {
    std::optional<Oeffnung> oeffnung = oeffneImKind(p);
    if (!oeffnung || oeffnung->gelungen || !istGrundEinSymbol(oeffnung->grund))
        return;
    if (oeffnung->fehlende.empty())
        oeffnung->fehlende.push_back(symbolAus(oeffnung->grund));
    for (const std::string& name : oeffnung->fehlende)
        funde.fehler(satz("{1} is provided by nobody", symbolname(name)), "undefined_symbol");
}

void pruefeBindung(const Pruefling& p, Fundliste& funde) {
    if (!p.bild.getInhalt().bindetSofort)
        funde.warnung(
            satz(
                "not linked with -z now: opened by others, a missing function would end the process at its first call"),
            "lazy_binding");
}

void pruefeOeffnen(const Pruefling& p, Fundliste& funde) {
    SharedLib bibliothek(p.pfad);
    if (!bibliothek.load())
        funde.fehler(einzeilig(bibliothek.getLastError()), "not_opened");
}

} // namespace

std::vector<Pruefung> ladePruefungen() {
    return {{"file-name", pruefeDateiname},
            {"needed-libraries", pruefeBenoetigteBibliotheken},
            {"undefined-symbols", pruefeUndefinierteSymbole},
            {"immediate-binding", pruefeBindung},
            {"loads", pruefeOeffnen}};
}

} // namespace werkzeug::check
