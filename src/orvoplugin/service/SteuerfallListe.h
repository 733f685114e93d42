#pragma once

#include <orvoplugin/Export.h>

#include <cstddef>
#include <string>

namespace orvo::data {

/// The tax cases ("Steuerfall") of one submission, each as the text of its record. The client implements it.
///
/// Ownership: the list owns its texts; they stay valid while the list lives.
class ORVOPLUGIN_API SteuerfallListe {
public:
    SteuerfallListe() = default;
    SteuerfallListe(const SteuerfallListe&) = default;
    SteuerfallListe& operator=(const SteuerfallListe&) = default;
    virtual ~SteuerfallListe();

    virtual std::size_t getAnzahl() const = 0;
    /// The record of tax case `index`, counted from 0. What an index beyond the last gives is the list's choice.
    virtual const std::string& getDatensatz(std::size_t index) const = 0;
};

} // namespace orvo::data
