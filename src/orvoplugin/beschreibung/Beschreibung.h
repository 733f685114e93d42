#pragma once

#include <orvoplugin/Export.h>

#include <cstdint>
#include <string>

class OrvoPlugin;

/// \file
/// The description of a plugin inside its file ("Beschreibung"): all that the record of a loaded plugin says. A client that
/// sets "basis.plugin_beschreibungen" to "eingebettet" has the records made from it, without opening the libraries.

/// The description of a plugin, for the room that its file reserves (`Beschreibungsplatz.h`).
/// Parameters: `plugin` is what `OrvoPluginLoader::loadPlugin` returned, not used or changed since.
/// Errors: `std::runtime_error` that names what cannot be said, such as an extension of a class that is not the library's.
ORVOPLUGIN_API std::string schreibeBeschreibung(const OrvoPlugin& plugin);

/// What a file holds of a description.
struct Beschreibungsfund {
    /// State of the room.
    enum Stand : std::int32_t {
        OHNE_PLATZ, ///< no room for one, no library of this machine's kind, or not readable
        LEER,       ///< room that is not filled
        GEFUNDEN,   ///< a sound description of this release
        ABGELEHNT,  ///< another one
    };
    Stand stand = OHNE_PLATZ;
    std::uint64_t stelle = 0; ///< where the room begins in the file
    std::uint32_t platz = 0;  ///< its size in bytes
    std::string bytes;        ///< the description found, as `schreibeBeschreibung` gives it
    std::string grund;        ///< why it is refused, in Latin-1
};

/// Reads a file's description. Does not open the file as a library.
ORVOPLUGIN_API Beschreibungsfund liesBeschreibung(const std::string& pfad);
