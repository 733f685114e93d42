#pragma once

#include <orvoplugin/domain/Unterfallart.h>
#include <pruefung/Satzaufbau.h>

namespace pruefpaket {

/// The structure of the records of a sub-case type ("Unterfallart"): wage-tax certificates, advance returns (10) and
/// annual returns (50).
/// Returns: null for any other. Valid as long as the library is open.
const pruefung::Satzaufbau* aufbauFuer(const Unterfallart& ua);

} // namespace pruefpaket
