#pragma once

// The facts about a plugin directory. The child process gathers them through the library; the parent receives and shows
// them. See Sammler.h for how a command gets them. Plain data: everything here can be copied, compared and sent, and
// nothing points into the library.
//
// Encoding: texts are bytes as plugins and the file system gave them; Anzeige.h converts them for people and for JSON.
// Numbers are those of the library's own types.

#include <orvoplugin/plugin/LadeBeobachter.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>
#include <orvoplugin/registry/RegisterAuskunft.h>
#include <orvoplugin/registry/RegisterBeobachter.h>

#include <compare>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace werkzeug {

/// A period, `Veranlagungszeitraum`.
struct ZeitraumFakt {
    std::int32_t typ = 0;
    std::int32_t jahr = 0;
    std::int32_t zeitraum = 0;
    std::int32_t tag = 0;
    std::int32_t quartal = 0;
    std::string text;

    friend bool operator==(const ZeitraumFakt&, const ZeitraumFakt&) = default;
};

/// A sub-case type, `Unterfallart`.
struct UnterfallartFakt {
    std::int32_t nummer = 0;
    std::string name;

    friend bool operator==(const UnterfallartFakt&, const UnterfallartFakt&) = default;
};

/// Whether a kind is looked up without sub-case type and period: tax-office data have neither. Their key in the
/// registry is internal.
inline bool hatKeinePaare(std::int32_t typ) { return typ == ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG; }

/// Whether a plugin's library exports a function that the plugin names.
enum class Export : std::int32_t {
    UNGEPRUEFT = 0, ///< not checked; see `Auftrag::exporteVon`
    JA = 1,
    NEIN = 2,
};

/// The step of a plugin's life that its code was in when it ended the process.
enum class Schritt : std::int32_t {
    KEINER = 0,
    OEFFNEN,     ///< the library was opened
    TYPEN,       ///< orvo_plugin_get_types
    BESCHREIBEN, ///< orvo_plugin_initialize
    LADEHOOK,    ///< its OnLoad function
    FACTORY,     ///< it made a service
    RUECKGABE,   ///< a service was given back
    SCHLIESSEN,  ///< the OnUnload function, and the library was closed
    DANACH,      ///< a thread, timer or other leftover of it, after the library was closed
};

/// What came of making an extension's service.
struct ServiceFakt {
    enum class Art : std::int32_t {
        UNGEPRUEFT = 0,
        GEMACHT,
        NICHT_EXPORTIERT,     ///< the library does not export the factory
        NICHT_GEOEFFNET,      ///< the library could not be loaded when the service was needed
        NICHTS,               ///< the factory returned null
        AUSNAHME,             ///< it threw
        ANDERE_SCHNITTSTELLE, ///< it made an object of another interface than the extension declares
        STATISCH,             ///< the object is a static one, which the extension has the library delete
        ABGESTUERZT,
        BEENDET,
        ZEIT,
    };
    Art art = Art::UNGEPRUEFT;
    Schritt schritt = Schritt::KEINER; ///< for the last three
    std::string meldung;               ///< what the exception or the end of the process says

    friend bool operator==(const ServiceFakt&, const ServiceFakt&) = default;
};

struct ErweiterungFakt {
    std::int32_t typ = 0;
    std::string typName;
    std::string factory;
    Export factoryExport = Export::UNGEPRUEFT;
    bool bedientUnterfallarten = false; ///< false for tax-office data, and for classes that serve no pairs
    bool uebergangen = false; ///< skipped by the registry: its class serves no pairs, but its kind should
    std::vector<std::pair<UnterfallartFakt, std::vector<ZeitraumFakt>>> angebot; ///< in the library's order
    std::vector<std::int32_t> flags;                                             ///< those that are set
    std::vector<std::int32_t> abhaengigkeiten;                                   ///< the kind of each
    std::vector<std::int32_t> vorbedingungen;                                    ///< the kind of each
    std::vector<std::int32_t> nachbedingungen;                                   ///< the kind of each
    ServiceFakt service; ///< the parent's; see `probiereServices`

    /// Whether, as far as is known, a client gets the service.
    bool istZuHaben() const {
        return factoryExport != Export::NEIN &&
               (service.art == ServiceFakt::Art::UNGEPRUEFT || service.art == ServiceFakt::Art::GEMACHT);
    }

    friend bool operator==(const ErweiterungFakt&, const ErweiterungFakt&) = default;
};

struct LabelFakt {
    std::int32_t zahl1 = 0;
    std::string text1;
    ZeitraumFakt zeitraum;
    std::string text2;
    std::int32_t zahl2 = 0;
    std::string text3;
    std::string text4;

    friend bool operator==(const LabelFakt&, const LabelFakt&) = default;
};

/// The description that a plugin gives of itself.
struct PluginFakt {
    std::int32_t typ = 0;
    std::int32_t status = 0;
    std::string produktVersion;
    std::string fileVersion;
    bool resident = false;
    std::string onLoad;
    Export onLoadExport = Export::UNGEPRUEFT;
    std::string onUnload;
    Export onUnloadExport = Export::UNGEPRUEFT;
    std::vector<LabelFakt> labels;
    std::vector<ErweiterungFakt> erweiterungen;

    friend bool operator==(const PluginFakt&, const PluginFakt&) = default;
};

/// The state of a file after loading.
enum class Zustand : std::int32_t {
    GELADEN = 0,
    GESPERRT = 1,    ///< on the block list
    UEBERGANGEN = 2, ///< not taken for a plugin; `grund` says why
    ABGELEHNT = 3,   ///< refused; `grund` says at which step, `meldung` why
    UNBESCHRIEBEN =
        4, ///< not loaded, with `Beschreibungen::NUR`; `meldung` says why its description is refused
    ABGESTUERZT = 5, ///< its code ended the process by a signal, `zahl`; 0 for the reason KANAL
    BEENDET = 6,     ///< its code ended the process with the exit code `zahl`
    ZEIT = 7,        ///< its code did not come back in time
};

/// Why a file is in its state: codes of the JSON output, see `grundcode`. Values beyond 100 are the tool's own.
enum class Grund : std::int32_t {
    KEINER = 0,
    DATEIPRUEFUNG = ABLEHNUNG_DATEIPRUEFUNG,
    OEFFNEN = ABLEHNUNG_OEFFNEN,
    OHNE_TYPEN = ABLEHNUNG_OHNE_TYPEN,
    AUSNAHME_TYPEN = ABLEHNUNG_AUSNAHME_TYPEN,
    LEERE_TYPEN = ABLEHNUNG_LEERE_TYPEN,
    PLUGINVERSION = ABLEHNUNG_PLUGINVERSION,
    OHNE_INITIALISIERUNG = ABLEHNUNG_OHNE_INITIALISIERUNG,
    AUSNAHME_INITIALISIERUNG = ABLEHNUNG_AUSNAHME_INITIALISIERUNG,
    INITIALISIERUNG = ABLEHNUNG_INITIALISIERUNG,
    BEOBACHTER = ABLEHNUNG_BEOBACHTER,
    SPERRLISTE = 101,        ///< on the block list
    KEINE_ENDUNG = 102,      ///< it does not have the suffix of plugins
    VERSTECKT = 103,         ///< its name begins with a dot
    OHNE_PUNKT = 104,        ///< its name has no dot, so the walk does not list it
    KEINE_DATEI = 105,       ///< neither a regular file nor a link to one
    VERZEICHNISLINK = 106,   ///< a link to a directory
    SIGNAL = 107,            ///< a signal ended the process
    PROZESSENDE = 108,       ///< its code ended the process
    ZEITLIMIT = 109,         ///< it took too long
    KANAL = 110,             ///< its code interfered with the tool's own way of reporting
    NICHT_BESCHRIEBEN = 111, ///< no description of the plugin in its file, or one that is refused
};

/// The cause behind a reason, where it is known more closely: the second half of the code, see `ursachencode`.
enum class Ursache : std::int32_t {
    KEINE = 0,
    RECHTE,               ///< no permission to read it
    FEHLT,                ///< it is not there (any more)
    ENDUNG,               ///< its suffix is in upper case, and the library looks for it in lower case
    DESKRIPTOREN,         ///< no file descriptor is left
    LESEFEHLER,           ///< another error of the system
    KEINE_DATEI,          ///< no regular file
    FREMDES_FORMAT,       ///< no library at all
    PROZESSOR,            ///< for another processor
    PROGRAMM,             ///< a program or an object file
    ABGESCHNITTEN,        ///< it ends too early
    NICHT_ZU_ENDE,        ///< its end was not written
    BESCHAEDIGT,          ///< its headers contradict each other
    AUSGABE,              ///< for another release of the libraries
    BIBLIOTHEK,           ///< a library that it needs is missing
    SYMBOL,               ///< a symbol that it needs is missing
    SYMBOLVERSION,        ///< a library that it needs is too old
    THREADSPEICHER,       ///< no room for its thread-local variables
    AUSFUEHRRECHT,        ///< its file system or the system's policy forbids its code
    SPEICHER,             ///< no memory
    ALTES_SYSTEM,         ///< built in a form that the system's loader does not know
    OHNE_BESCHREIBUNG,    ///< no description in the file
    FALSCHE_BESCHREIBUNG, ///< one that is refused
    FADEN,                ///< a thread of it still ran when its library was closed
    GETOETET,             ///< the system ended the process, mostly for want of memory
    BESCHAEDIGTE_HILFE,   ///< a library that it needs is cut off or damaged
};

/// What is in a file.
struct Inhalt {
    std::uint64_t groesse = 0;
    std::string sha256; ///< in hexadecimal digits

    friend bool operator==(const Inhalt&, const Inhalt&) = default;
};

struct DateiFakt {
    std::uint32_t verzeichnis = 0; ///< place in `Bestand::verzeichnisse`
    std::string name;              ///< as in the directory
    std::string pfad;              ///< under which it is loaded, its suffix in lower case
    Zustand zustand = Zustand::UEBERGANGEN;
    Grund grund = Grund::KEINER;
    Ursache ursache = Ursache::KEINE;
    Schritt schritt = Schritt::KEINER; ///< for ABGESTUERZT, BEENDET and ZEIT
    std::string
        meldung; ///< for ABGELEHNT what the log says; for the last three states what happened, in English
    std::int32_t zahl = 0;
    std::string
        ausgabe; ///< for ABGESTUERZT, BEENDET and ZEIT: the last that was written to the standard streams
    std::optional<PluginFakt> plugin; ///< whenever the manager lists the plugin
    std::optional<Inhalt> inhalt;     ///< not gathered with the other facts; see bestandsliste/Inhalt.h
};

struct VerzeichnisFakt {
    std::string pfad;
    std::int32_t fehler = 0; ///< errno when it cannot be read, else 0
};

/// An extension of a plugin: places in `Bestand::dateien` and in that plugin's `erweiterungen`.
struct ErweiterungsOrt {
    std::uint32_t datei = 0;
    std::uint32_t erweiterung = 0;

    friend auto operator<=>(const ErweiterungsOrt&, const ErweiterungsOrt&) = default;
};

/// One event in the life of a key.
struct SchluesselEreignis {
    enum class Art : std::int32_t {
        EINGETRAGEN = 0, ///< `wer` got the free key
        VERDRAENGT = 1,  ///< `wer` took the key over from `gegen`
        ABGEWIESEN = 2,  ///< `wer` did not get the key: `gegen` kept it
    };
    Art art = Art::EINGETRAGEN;
    ErweiterungsOrt wer;
    ErweiterungsOrt gegen;  ///< unused for EINGETRAGEN
    std::int32_t regel = 0; ///< `orvo_register_regel_t`; 0 for EINGETRAGEN
    ZeitraumFakt zeitraum;  ///< offered by `wer`; may be another period of the key's year
};

/// A key of the registry and its events in their order.
struct SchluesselFakt {
    std::int32_t typ = 0;
    std::string typName;
    UnterfallartFakt unterfallart;
    ZeitraumFakt zeitraum;
    ErweiterungsOrt inhaber; ///< the extension that answers
    std::vector<SchluesselEreignis> ereignisse;
    std::optional<ErweiterungsOrt> zweiter; ///< answers if the holder's plugin is missing; `Auftrag::deckung`
};

/// The answer to `Auftrag::frage`.
struct AntwortFakt {
    /// `RegisterAuskunft::Treffer`; UNABHAENGIG for a kind without pairs, which answers whatever was asked for
    std::int32_t treffer = RegisterAuskunft::KEINER;
    std::uint32_t schluessel = 0; ///< place in `Bestand::schluessel`, when something was found
    ZeitraumFakt gefragt;         ///< the period, as the library read it
};

/// A range of years with the same answer from the registry.
struct SpanneFakt {
    std::int32_t von = 0;
    std::int32_t bis = 0;                            ///< the last of them; `kOffen`: and all later ones
    std::int32_t treffer = RegisterAuskunft::KEINER; ///< `RegisterAuskunft::Treffer`
    std::uint32_t schluessel = 0; ///< place in `Bestand::schluessel`, when something was found

    static constexpr std::int32_t kErstesJahr = 1000; ///< years of fewer digits are completed to more
    static constexpr std::int32_t kOffen = 0x7FFFFFFF;
};

/// What the registry answers for a sub-case type, year by year.
struct ZeileFakt {
    std::int32_t typ = 0;
    std::string typName;
    UnterfallartFakt unterfallart;
    std::vector<SpanneFakt> spannen;           ///< by year, from the first to the last without a hole
    std::optional<std::uint32_t> ohneZeitraum; ///< the key that answers when no period is asked for
};

/// All facts about a plugin directory.
struct Bestand {
    std::string suchpfad;
    std::vector<VerzeichnisFakt> verzeichnisse; ///< in the order of the walk; the first is the search path
    std::vector<DateiFakt> dateien;             ///< by directory in that order, then bytewise by name
    std::vector<SchluesselFakt> schluessel;     ///< by kind, sub-case type (numbers before names) and year
    std::optional<AntwortFakt> antwort;         ///< when something was asked
    std::vector<AntwortFakt> antworten;         ///< one to each of `Auftrag::fragen`
    std::vector<ZeileFakt> zeilen;              ///< in the order of the keys; only with `Auftrag::deckung`

    const ErweiterungFakt& erweiterung(const ErweiterungsOrt& ort) const {
        return dateien.at(ort.datei).plugin.value().erweiterungen.at(ort.erweiterung);
    }
    const DateiFakt& datei(const ErweiterungsOrt& ort) const { return dateien.at(ort.datei); }
    const PluginFakt& plugin(const ErweiterungsOrt& ort) const { return datei(ort).plugin.value(); }
    /// The extensions that hold a key.
    std::set<ErweiterungsOrt> inhaber() const {
        std::set<ErweiterungsOrt> orte;
        for (const SchluesselFakt& einer : schluessel)
            orte.insert(einer.inhaber);
        return orte;
    }
    /// Full path of a file, by its name in the directory.
    std::string fundort(const DateiFakt& datei) const {
        return verzeichnisse.at(datei.verzeichnis).pfad + "/" + datei.name;
    }
};

} // namespace werkzeug
