#include "kern/Gruende.h"

#include "kern/Sprache.h"

#include <orvoplugin/domain/Veranlagungszeitraum.h>

#include <algorithm>
#include <iterator>

namespace werkzeug {

namespace {

struct GrundZeile {
    Grund grund;
    const char* code;
    const char* stufe;
    const char* erklaerung;
    const char* rat;
};

constexpr const char* kNimmHeraus =
    N_("Take the file out of the plugin directory before a client meets it, and report this to its author.");
constexpr const char* kMeldeGrund = N_("Report the reason to the plugin's author.");

constexpr GrundZeile kGruende[] = {
    {Grund::KEINER, "", "", "", ""},
    {Grund::DATEIPRUEFUNG, "file_not_loadable", "file_check",
     N_("The file is no library that this system and this release could load, so it was never opened."),
     N_("Copy the file again, and compare its size and checksum with the delivery.")},
    {Grund::OEFFNEN, "loader_refused", "open", N_("The system's loader refused the library."),
     N_("Show the reason to the plugin's author; \"ldd FILE\" shows what the library needs.")},
    {Grund::OHNE_TYPEN, "no_types_entry", "entry_points",
     N_("The library does not export orvo_plugin_get_types, so it is no plugin."),
     N_("If it should be one, have its author include PluginEntryPoints.h, which exports the entry points; "
        "else move the file out of the plugin directory.")},
    {Grund::AUSNAHME_TYPEN, "types_threw", "types", N_("Its orvo_plugin_get_types threw an exception."),
     kMeldeGrund},
    {Grund::LEERE_TYPEN, "no_types", "types", N_("Its orvo_plugin_get_types names no interface."),
     N_("Report this to the plugin's author: the function has to append a record of type 1.")},
    {Grund::PLUGINVERSION, "unknown_interface", "types",
     N_("The plugin is made for an interface that this version of the library does not know."),
     N_("Install a version of the plugin for interface 1, or a newer version of the library.")},
    {Grund::OHNE_INITIALISIERUNG, "no_initialize_entry", "entry_points",
     N_("The library does not export orvo_plugin_initialize."),
     N_("Report this to the plugin's author; \"orvoplugin check FILE\" shows what else is missing.")},
    {Grund::AUSNAHME_INITIALISIERUNG, "initialize_threw", "initialize",
     N_("An exception ended its orvo_plugin_initialize."), kMeldeGrund},
    {Grund::INITIALISIERUNG, "initialize_refused", "initialize",
     N_("Its orvo_plugin_initialize returned false: the plugin itself does not want to be loaded."),
     N_("Look for what the plugin needs (settings, data files, a licence) in its documentation; \"--log "
        "debug\" may show more.")},
    {Grund::BEOBACHTER, "observer_threw", "register",
     N_("Filing the plugin's extensions failed; the plugin is loaded, but some of its keys may be missing."),
     kMeldeGrund},
    {Grund::SPERRLISTE, "blocked_name", "filter",
     N_("The file's name is on the library's block list: such libraries once lay among the plugins and are "
        "none."),
     N_("Remove the file; if it is a plugin all the same, give it another name.")},
    {Grund::KEINE_ENDUNG, "not_plugin_suffix", "filter",
     N_("Only files whose names end in \".dylib\" are plugins."),
     N_("If the file is a plugin, rename it to end in \".dylib\".")},
    {Grund::VERSTECKT, "hidden", "walk", N_("Names that begin with a dot are passed over."),
     N_("If the file is a plugin, rename it so that its name begins with another character.")},
    {Grund::OHNE_PUNKT, "name_without_dot", "walk", N_("Names without a dot are passed over."),
     N_("If the file is a plugin, rename it to end in \".dylib\".")},
    {Grund::KEINE_DATEI, "not_a_file", "walk",
     N_("It is neither a regular file nor a link to one, or the link leads nowhere."),
     N_("Put the plugin's file itself there, or mend the link.")},
    {Grund::VERZEICHNISLINK, "link_to_directory", "walk", N_("Links to directories are not followed."),
     N_("Move or copy the directory itself into the plugin directory.")},
    {Grund::SIGNAL, "signal", "process",
     N_("Its code crashed; in a client the whole process would have ended."), kNimmHeraus},
    {Grund::PROZESSENDE, "exit", "process",
     N_("Its code ended the process; in a client that would have been the client's process."), kNimmHeraus},
    {Grund::ZEITLIMIT, "timeout", "process",
     N_("Its code did not come back within the time limit; a client would hang for as long."),
     N_("Take the file out of the plugin directory before a client meets it, or allow more time with "
        "--timeout.")},
    {Grund::KANAL, "channel", "process",
     N_("Its code closed or wrote to descriptors that are not its own, or overwrote memory, and so spoiled "
        "the report."),
     kNimmHeraus},
    {Grund::NICHT_BESCHRIEBEN, "not_described", "file_check",
     N_("The plugin's description in its file cannot be used, and the plugin was not asked for one."),
     N_("If you trust the plugin, leave --described out, so that it is asked.")},
};

struct UrsachenZeile {
    Ursache ursache;
    const char* code;
    const char* erklaerung;
    const char* rat;
};

constexpr UrsachenZeile kUrsachen[] = {
    {Ursache::RECHTE, "permission", N_("The file may not be read."),
     N_("Give the client's user the right to read the file and to enter the folders above it.")},
    {Ursache::FEHLT, "missing", N_("The file is not there any more."),
     N_("Look for what removes files here while plugins are loaded, and copy the file again.")},
    {Ursache::ENDUNG, "suffix_case",
     N_("The suffix is not in lower case, and the library looks for the file under the name in lower case."),
     N_("Rename the file so that its name ends in \".dylib\".")},
    {Ursache::DESKRIPTOREN, "descriptors", N_("The process may open no more files."),
     N_("Look for a plugin loaded before this one that leaves files open or lowers the limit (\"orvoplugin "
        "check\" names it), or raise the limit with \"ulimit -n\".")},
    {Ursache::LESEFEHLER, "read_error", N_("The system cannot read the file."),
     N_("See to the disk or the network drive that the file lies on, then copy the file again.")},
    {Ursache::KEINE_DATEI, "not_regular", N_("It is no regular file."),
     N_("Put the plugin's file itself there.")},
    {Ursache::FREMDES_FORMAT, "format", N_("The file is no library of this system."),
     N_("If it should be a plugin, copy it again from the delivery for this system; else move it out of the "
        "plugin directory.")},
    {Ursache::PROZESSOR, "machine", N_("The library is made for another processor."),
     N_("Install the plugin that was built for this machine's processor and word size.")},
    {Ursache::PROGRAMM, "program", N_("The file is a program or an object file, and no library."),
     N_("Have the plugin linked as a shared library; if it is none, move the file out of the plugin "
        "directory.")},
    {Ursache::ABGESCHNITTEN, "cut", N_("The file ends too early: it was not copied to its end."),
     N_("Copy the file again, and compare its size and checksum with the delivery.")},
    {Ursache::NICHT_ZU_ENDE, "unfinished",
     N_("The file has its full length, but its end is empty: it was not written to its end."),
     N_("Copy the file again once the disk has room, and compare its checksum with the delivery.")},
    {Ursache::BESCHAEDIGT, "damaged", N_("The file's headers contradict each other."),
     N_("Copy the file again, and compare its checksum with the delivery.")},
    {Ursache::AUSGABE, "release", N_("The plugin was built for another release of these libraries."),
     N_("Install the plugin that was built for this release, or this plugin's release of the libraries.")},
    {Ursache::BIBLIOTHEK, "needed_library", N_("A library that the plugin needs is not found."),
     N_("Install the library that the reason names; \"ldd FILE\" shows all that are missing.")},
    {Ursache::SYMBOL, "symbol", N_("No library has a symbol that the plugin needs."),
     N_("Install the version of the needed library that the plugin was built with; \"orvoplugin check FILE\" "
        "names all missing symbols.")},
    {Ursache::SYMBOLVERSION, "library_version", N_("A library that the plugin needs is too old."),
     N_("Install the version that the reason names, or have the plugin built on an older system.")},
    {Ursache::THREADSPEICHER, "thread_storage",
     N_("There is no room left for the plugin's thread-local variables."),
     N_("Have the plugin compiled with -ftls-model=global-dynamic.")},
    {Ursache::AUSFUEHRRECHT, "not_executable",
     N_("The file system or the system's policy does not allow code from this file."),
     N_("Move the plugins to a file system that is not mounted \"noexec\", or allow the file in the "
        "policy.")},
    {Ursache::SPEICHER, "memory", N_("There was no memory for it."),
     N_("Give the process more memory, or load fewer plugins.")},
    {Ursache::ALTES_SYSTEM, "loader_too_old",
     N_("The library has a form that this system's loader does not know."),
     N_("Have the plugin linked without packed relocations (-z nopack-relative-relocs), or use a newer "
        "system.")},
    {Ursache::OHNE_BESCHREIBUNG, "absent", N_("The file has no description of its plugin."),
     N_("Have \"orvoplugin describe\" write one into it, or, if you trust the plugin, leave --described "
        "out.")},
    {Ursache::FALSCHE_BESCHREIBUNG, "refused", N_("The description in the file is refused."),
     N_("Have \"orvoplugin describe\" write it again, or, if you trust the plugin, leave --described out.")},
    {Ursache::FADEN, "thread",
     N_("A thread that the plugin started still ran when the library was closed: its code was gone."),
     N_("Take the file out of the plugin directory; its author has to end the thread in the OnUnload "
        "function.")},
    {Ursache::GETOETET, "killed", N_("The system ended the process, mostly for want of memory."),
     N_("Look at the system's log; take the file out of the plugin directory if it uses up the memory.")},
};

struct ServiceZeile {
    ServiceFakt::Art art;
    const char* code;
    const char* satz; ///< the end of a sentence about the plugin
    const char* rat;
};

constexpr ServiceZeile kServices[] = {
    {ServiceFakt::Art::UNGEPRUEFT, "exported", N_("its library exports the factory"), ""},
    {ServiceFakt::Art::GEMACHT, "made", N_("its factory makes the service"), ""},
    {ServiceFakt::Art::NICHT_EXPORTIERT, "not_exported", N_("its library does not export the factory"),
     N_("Report this to the plugin's author: the factory has to be extern \"C\" and exported.")},
    {ServiceFakt::Art::NICHT_GEOEFFNET, "not_opened",
     N_("its library cannot be loaded any more when the service is needed"),
     N_("See what the file needs, and whether it was changed since it was loaded.")},
    {ServiceFakt::Art::NICHTS, "null", N_("its factory returns nothing"),
     N_("Look for what the plugin needs (settings, data files, a licence) in its documentation.")},
    {ServiceFakt::Art::AUSNAHME, "threw", N_("its factory throws an exception"), kMeldeGrund},
    {ServiceFakt::Art::ANDERE_SCHNITTSTELLE, "other_interface",
     N_("its factory makes an object of another interface than the extension declares"),
     N_("Report this to the plugin's author, who may have built it with other headers.")},
    {ServiceFakt::Art::STATISCH, "static_object",
     N_("its factory returns a static object, which the library is told to delete"),
     N_("Report this to the plugin's author: make a new object each time, or do not set "
        "FLAG_SERVICE_LOESCHEN.")},
    {ServiceFakt::Art::ABGESTUERZT, "crashed", N_("its code crashes"), kNimmHeraus},
    {ServiceFakt::Art::BEENDET, "exited", N_("its code ends the process"), kNimmHeraus},
    {ServiceFakt::Art::ZEIT, "timed_out", N_("its code does not come back"), kNimmHeraus},
};

const GrundZeile& zeile(Grund grund) {
    const auto fund = std::ranges::find(kGruende, grund, &GrundZeile::grund);
    return fund == std::end(kGruende) ? kGruende[0] : *fund;
}

const UrsachenZeile* zeile(Ursache ursache) {
    const auto fund = std::ranges::find(kUrsachen, ursache, &UrsachenZeile::ursache);
    return fund == std::end(kUrsachen) ? nullptr : fund;
}

const ServiceZeile& zeile(const ErweiterungFakt& erweiterung) {
    const bool fehlt = erweiterung.factoryExport == Export::NEIN;
    const auto art = fehlt ? ServiceFakt::Art::NICHT_EXPORTIERT : erweiterung.service.art;
    return *std::ranges::find(kServices, art, &ServiceZeile::art);
}

} // namespace

const char* code(Zustand zustand) {
    switch (zustand) {
    case Zustand::GELADEN:
        return "loaded";
    case Zustand::GESPERRT:
        return "blocked";
    case Zustand::UEBERGANGEN:
        return "ignored";
    case Zustand::ABGELEHNT:
        return "refused";
    case Zustand::UNBESCHRIEBEN:
        return "not_described";
    case Zustand::ABGESTUERZT:
        return "crashed";
    case Zustand::BEENDET:
        return "exited";
    case Zustand::ZEIT:
        return "timed_out";
    }
    return "";
}

const char* code(Grund grund) { return zeile(grund).code; }
const char* stufe(Grund grund) { return zeile(grund).stufe; }

const char* code(Ursache ursache) {
    const UrsachenZeile* const nahe = zeile(ursache);
    return nahe ? nahe->code : "";
}

std::string erklaerung(const DateiFakt& datei) {
    const UrsachenZeile* const nahe = zeile(datei.ursache);
    return uebersetzt(nahe ? nahe->erklaerung : zeile(datei.grund).erklaerung);
}

std::string rat(const DateiFakt& datei) {
    const UrsachenZeile* const nahe = zeile(datei.ursache);
    return uebersetzt(nahe ? nahe->rat : zeile(datei.grund).rat);
}

const char* code(Schritt schritt) {
    constexpr const char* kCodes[] = {"",        "open",    "types", "describe", "hook",
                                      "factory", "release", "close", "after"};
    return kCodes[static_cast<int>(schritt)];
}

std::string wobei(Schritt schritt) {
    constexpr const char* kTexte[] = {"",
                                      N_("when it was opened"),
                                      N_("in orvo_plugin_get_types"),
                                      N_("in orvo_plugin_initialize"),
                                      N_("in its OnLoad function"),
                                      N_("in the factory"),
                                      N_("when the service was given back"),
                                      N_("when it was closed"),
                                      N_("after it was closed")};
    return uebersetzt(kTexte[static_cast<int>(schritt)]);
}

const char* servicecode(const ErweiterungFakt& erweiterung) {
    const ServiceZeile& z = zeile(erweiterung);
    return z.art == ServiceFakt::Art::UNGEPRUEFT && erweiterung.factoryExport == Export::UNGEPRUEFT
               ? "unchecked"
               : z.code;
}

std::string servicesatz(const ErweiterungFakt& erweiterung) { return uebersetzt(zeile(erweiterung).satz); }
std::string servicerat(const ErweiterungFakt& erweiterung) { return uebersetzt(zeile(erweiterung).rat); }

const char* code(Export export_) {
    switch (export_) {
    case Export::JA:
        return "yes";
    case Export::NEIN:
        return "no";
    default:
        return "unchecked";
    }
}

const char* regelcode(std::int32_t regel) {
    switch (regel) {
    case REGEL_HOEHERE_VERSION:
        return "higher_version";
    case REGEL_GLEICHE_VERSION:
        return "equal_version_first_stays";
    case REGEL_NIEDRIGERE_VERSION:
        return "lower_version";
    case REGEL_ERSTER_BLEIBT:
        return "first_stays";
    default:
        return "free";
    }
}

const char* regelsatz(std::int32_t regel) {
    switch (regel) {
    case REGEL_HOEHERE_VERSION:
        return N_("the higher product version takes the key");
    case REGEL_GLEICHE_VERSION:
        return N_("the product versions are equal, and the first one stays");
    case REGEL_NIEDRIGERE_VERSION:
        return N_("its product version is lower");
    case REGEL_ERSTER_BLEIBT:
        return N_("of tax-office data the first one stays, whatever the versions");
    default:
        return N_("the key was free");
    }
}

const char* treffercode(std::int32_t treffer) {
    switch (treffer) {
    case RegisterAuskunft::GENAU:
        return "exact";
    case RegisterAuskunft::GLEICHES_JAHR:
        return "same_year";
    case RegisterAuskunft::UNABHAENGIG:
        return "period_independent";
    default:
        return "none";
    }
}

const char* zeitraumcode(std::int32_t typ) {
    switch (typ) {
    case Veranlagungszeitraum::UNGELESEN:
        return "unread";
    case Veranlagungszeitraum::JAHR:
        return "year";
    case Veranlagungszeitraum::TAG:
        return "day";
    case Veranlagungszeitraum::MONAT:
        return "month";
    case Veranlagungszeitraum::QUARTAL:
        return "quarter";
    case Veranlagungszeitraum::IMMER:
        return "always";
    case Veranlagungszeitraum::UNABHAENGIG:
        return "independent";
    case Veranlagungszeitraum::QUARTAL_ALTERNATIV:
        return "quarter_alternative";
    default:
        return "other";
    }
}

} // namespace werkzeug
