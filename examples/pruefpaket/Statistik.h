#pragma once

#include <orvoplugin/Export.h>

#include <cstddef>

namespace pruefpaket {

/// Counts a check: how many records were looked at, and how many messages there were.
void zaehlePruefung(std::size_t datensaetze, std::size_t meldungen);

} // namespace pruefpaket

/// The plugin's hooks. The count begins when the library is opened for its first user, and goes to the log, under
/// the category "beispiel.pruefpaket", when the last one has gone.
extern "C" {
ORVO_PLUGIN_EXPORT void pruefpaket_onload();
ORVO_PLUGIN_EXPORT void pruefpaket_onunload();
}
