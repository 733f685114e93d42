#pragma once

#include <orvoplugin/Export.h>

#include <cstddef>

namespace pruefpaket {

/// Counts a check: the number of records and of messages.
void zaehlePruefung(std::size_t datensaetze, std::size_t meldungen);

} // namespace pruefpaket

/// The plugin's hooks. Counting begins when the library is opened for its first user; the result is logged under the
/// category "beispiel.pruefpaket" after the last one.
extern "C" {
ORVO_PLUGIN_EXPORT void pruefpaket_onload();
ORVO_PLUGIN_EXPORT void pruefpaket_onunload();
}
