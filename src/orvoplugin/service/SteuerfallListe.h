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
    virtual ~SteuerfallListe();

    virtual std::size_t getAnzahl() const = 0;
    /// The record of tax case `index`, counted from 0. The list defines what an index beyond the last gives.
    virtual const std::string& getDatensatz(std::size_t index) const = 0;
};

} // namespace orvo::data
