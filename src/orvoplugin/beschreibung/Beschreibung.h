#pragma once

#include <orvoplugin/Export.h>

#include <cstdint>
#include <string>

class OrvoPlugin;

/// \file
/// The description of a plugin inside its file ("Beschreibung"): all that a loaded plugin's record says, as bytes in a
/// note of the file (`Beschreibungsplatz.h`). A client that sets "basis.plugin_beschreibungen" to "eingebettet" has its
/// plugins' records made from their descriptions; a plugin is then opened only when one of its services is first asked
/// for. docs/description-format.md explains the bytes, which are the same on every machine.

/// The description of a plugin, for the room in its file.
///
/// Parameters: `plugin` is what `OrvoPluginLoader::loadPlugin` returned, unused and unchanged since.
/// Errors: `std::runtime_error` that names what a description cannot say, such as an extension of a class that is not the
/// library's, or a description that is longer than a reader takes.
ORVOPLUGIN_API std::string schreibeBeschreibung(const OrvoPlugin& plugin);

/// What a file has of a description.
struct Beschreibungsfund {
    enum Stand : std::int32_t {
        OHNE_PLATZ, ///< no room for one, or no library of this machine's kind
        LEER,       ///< room that is not filled
        GEFUNDEN,   ///< a sound description of this release
        ABGELEHNT,  ///< an unsound one, or one of another release; `grund` says why
    };

    Stand stand = OHNE_PLATZ;
    std::uint64_t stelle = 0; ///< where the room begins in the file; 0 without one
    std::uint32_t platz = 0;  ///< its size in bytes
    std::string bytes;        ///< the description that was found, as `schreibeBeschreibung` gives it
    std::string grund;        ///< in Latin-1
};

/// Reads a file's description without opening the file as a library.
ORVOPLUGIN_API Beschreibungsfund liesBeschreibung(const std::string& pfad);
