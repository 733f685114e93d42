#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/domain/Abhaengigkeit.h>

#include <bitset>
#include <cstdint>
#include <iosfwd>
#include <list>

class OrvoPlugin;

/// Kind of an extension. Any value is carried; those without a name here print as "UNBEKANNT".
enum tag_erweiterung_typ : std::int32_t {
    NONE = 0,
    ORVO_CHECK_SERVICE_ERWEITERUNG = 1,
    ORVO_FELD_INFORMATION_SERVICE_ERWEITERUNG = 2,
    ORVO_FEHLER_TEXT_DATEN_SERVICE_ERWEITERUNG = 3,
    ORVO_FINANZAMTS_DATEN_SERVICE_ERWEITERUNG = 4,
    ORVO_XPATH_MAPPING_SERVICE_ERWEITERUNG = 5,
    ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG = 6,
};

/// Name of the kind, as log lines, print-outs and the registry's hash use it.
ORVOPLUGIN_API const char* erweiterungTypName(tag_erweiterung_typ typ);
/// Writes the name of the kind.
ORVOPLUGIN_API std::ostream& operator<<(std::ostream& out, const tag_erweiterung_typ& typ);

/// Flags of an extension. Only the first one has an effect.
enum orvo_erweiterung_flag_t : std::int32_t {
    FLAG_SERVICE_LOESCHEN = 0, ///< a service object is deleted when it is given back
    FLAG_RESERVIERT_1 = 1,
    FLAG_RESERVIERT_2 = 2,
    FLAG_RESERVIERT_3 = 3,
    FLAG_RESERVIERT_4 = 4,
};

/// Extension ("Erweiterung"): something that a plugin offers, with its kind, flags and dependencies.
///
/// A plugin makes an extension, sets it up and hands it to `OrvoPluginV1::addErweiterung`, which keeps a clone
/// that points back to the plugin. The classes come from this library or from the host: an extension class of the
/// plugin's own is refused, because the clone outlives the plugin's code.
///
/// Ownership: an extension does not own its plugin; a plugin owns its clones.
class ORVOPLUGIN_API OrvoErweiterung {
public:
    OrvoErweiterung& operator=(const OrvoErweiterung&) = delete;
    virtual ~OrvoErweiterung();

    /// Returns: a new copy of the most derived extension, owned by the caller.
    virtual OrvoErweiterung* clone() const = 0;

    /// Both throw `std::out_of_range` for a flag that is not one of the five.
    void setzeFlag(orvo_erweiterung_flag_t flag, bool wert);
    bool istFlagGesetzt(orvo_erweiterung_flag_t flag) const;

    void setPlugin(OrvoPlugin* plugin) { plugin_ = plugin; }

    /// Appends a copy. By contract, of the base part: only the kind of a dependency can be read from the list.
    void addAbhaengigkeit(const Abhaengigkeit& abhaengigkeit);

    tag_erweiterung_typ getTyp() const { return typ_; }
    /// The plugin that offers the extension; null for one that was never added to a plugin.
    OrvoPlugin* getPlugin() const { return plugin_; }
    const std::list<Abhaengigkeit>& getAbhaengigkeiten() const { return abhaengigkeiten_; }
    /// Number of service objects handed out and not given back.
    std::int32_t getAusgegeben() const { return ausgegeben_; }

protected:
    explicit OrvoErweiterung(tag_erweiterung_typ typ);
    OrvoErweiterung(const OrvoErweiterung&);

    void zaehleAusgabe() { ++ausgegeben_; }
    void zaehleRueckgabe() { --ausgegeben_; }

private:
    tag_erweiterung_typ typ_;
    OrvoPlugin* plugin_ = nullptr;
    std::bitset<5> flags_;
    std::list<Abhaengigkeit> abhaengigkeiten_;
    std::int32_t ausgegeben_ = 0;
};
