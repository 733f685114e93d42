#include "kern/Gruende.h"

#include <orvoplugin/domain/Veranlagungszeitraum.h>

namespace werkzeug {

namespace {

struct GrundZeile {
    Grund grund;
    const char* code;
    const char* stufe;
    const char* erklaerung;
    const char* rat;
};

constexpr GrundZeile kGruende[] = {
    {Grund::KEINER, "", "", "", ""},
    {Grund::DATEIPRUEFUNG, "file_not_loadable", "file_check",
     "The file is no library that this system and this release could load, so it was never opened.",
     "If the reason names another release, install the plugin that was built for this one; else copy the "
     "file "
     "again, and compare its size and checksum with the delivery."},
    {Grund::OEFFNEN, "loader_refused", "open", "The system's loader refused the library.",
     "Install the library, or the version of it, that the reason names; \"ldd FILE\" shows what is missing."},
    {Grund::OHNE_TYPEN, "no_types_entry", "entry_points",
     "The library does not export orvo_plugin_get_types, so it is no plugin.",
     "If it should be one, have its author include PluginEntryPoints.h, which exports the entry points; else "
     "move the "
     "file out of the plugin directory."},
    {Grund::AUSNAHME_TYPEN, "types_threw", "types", "Its orvo_plugin_get_types threw an exception.",
     "Report the reason to the plugin's author."},
    {Grund::LEERE_TYPEN, "no_types", "types", "Its orvo_plugin_get_types names no interface.",
     "Report this to the plugin's author: the function has to append a record of type 1."},
    {Grund::PLUGINVERSION, "unknown_interface", "types",
     "The plugin is made for an interface that this version of the library does not know.",
     "Install a version of the plugin for interface 1, or a newer version of the library."},
    {Grund::OHNE_INITIALISIERUNG, "no_initialize_entry", "entry_points",
     "The library does not export orvo_plugin_initialize.",
     "Report this to the plugin's author; \"orvoplugin check FILE\" shows what else is missing."},
    {Grund::AUSNAHME_INITIALISIERUNG, "initialize_threw", "initialize",
     "An exception ended its orvo_plugin_initialize.", "Report the reason to the plugin's author."},
    {Grund::INITIALISIERUNG, "initialize_refused", "initialize",
     "Its orvo_plugin_initialize returned false: the plugin itself does not want to be loaded.",
     "Look for what the plugin needs (settings, data files, a licence) in its documentation; \"--log debug\" "
     "may show "
     "more."},
    {Grund::BEOBACHTER, "observer_threw", "register",
     "Filing the plugin's extensions failed; the plugin is loaded, but some of its keys may be missing.",
     "Report the reason to the plugin's author."},
    {Grund::SPERRLISTE, "blocked_name", "filter",
     "The file's name is on the library's block list: such libraries once lay among the plugins and are "
     "none.",
     "Remove the file; if it is a plugin all the same, give it another name."},
    {Grund::KEINE_ENDUNG, "not_plugin_suffix", "filter",
     "Only files whose names end in \".dylib\" are plugins.",
     "If the file is a plugin, rename it to end in \".dylib\"."},
    {Grund::VERSTECKT, "hidden", "walk", "Names that begin with a dot are passed over.",
     "If the file is a plugin, rename it so that its name begins with another character."},
    {Grund::OHNE_PUNKT, "name_without_dot", "walk", "Names without a dot are passed over.",
     "If the file is a plugin, rename it to end in \".dylib\"."},
    {Grund::KEINE_DATEI, "not_a_file", "walk",
     "It is neither a regular file nor a link to one, or the link leads nowhere.",
     "Put the plugin's file itself there, or mend the link."},
    {Grund::VERZEICHNISLINK, "link_to_directory", "walk", "Links to directories are not followed.",
     "Move or copy the directory itself into the plugin directory."},
    {Grund::SIGNAL, "signal", "process", "Its code crashed; in a client the whole process would have ended.",
     "Take the file out of the plugin directory before a client meets it, and report the signal to its "
     "author."},
    {Grund::PROZESSENDE, "exit", "process",
     "Its code ended the process; in a client that would have been the client's process.",
     "Take the file out of the plugin directory before a client meets it, and report this to its author."},
    {Grund::ZEITLIMIT, "timeout", "process",
     "Its code did not come back within the time limit; a client would hang for as long.",
     "Take the file out of the plugin directory before a client meets it, or allow more time with "
     "--timeout."},
    {Grund::KANAL, "channel", "process",
     "Its code closed or wrote to descriptors that are not its own, or overwrote memory, and so spoiled the "
     "report.",
     "Take the file out of the plugin directory before a client meets it, and report this to its author."},
    {Grund::NICHT_BESCHRIEBEN, "not_described", "file_check",
     "The file has no description of its plugin, which was not asked for one.",
     "If you trust the plugin, leave --described out, so that it is asked."},
};

const GrundZeile& zeile(Grund grund) {
    for (const GrundZeile& z : kGruende)
        if (z.grund == grund)
            return z;
    return kGruende[0];
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
const char* erklaerung(Grund grund) { return zeile(grund).erklaerung; }
const char* rat(Grund grund) { return zeile(grund).rat; }

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
        return "the higher product version takes the key";
    case REGEL_GLEICHE_VERSION:
        return "the product versions are equal, and the first one stays";
    case REGEL_NIEDRIGERE_VERSION:
        return "its product version is lower";
    case REGEL_ERSTER_BLEIBT:
        return "of tax-office data the first one stays, whatever the versions";
    default:
        return "the key was free";
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
