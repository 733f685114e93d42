#pragma once

#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <steuer/Datum.h>

#include <list>
#include <optional>

namespace pruefung {

/// The days of an assessment period ("Veranlagungszeitraum").
/// Returns: nothing for a period that bounds no dates, such as the period-independent one. A period that the
/// calendar does not have, such as a 13th month, has no days.
std::optional<steuer::Zeitspanne> zeitspanneVon(const Veranlagungszeitraum& vz);

/// The years from `von` to `bis`, both included, as an extension declares them.
std::list<Veranlagungszeitraum> jahre(int von, int bis);

} // namespace pruefung
