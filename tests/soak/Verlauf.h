#pragma once

#include <array>
#include <cstddef>
#include <iosfwd>
#include <vector>

/// One of the figures that a long run watches.
struct Messgroesse {
    const char* name;
    const char* einheit;
    double spielraum; ///< how far its line may rise
};

/// The heap's spare room is what the loader and the log keep of a run. The resident memory's is the allocator's, which
/// settles late; mappings come with it.
constexpr std::array<Messgroesse, 6> kMessgroessen{{{"heap in use", "bytes", 16 * 1024},
                                                    {"resident memory", "KiB", 1024},
                                                    {"mappings", "", 2.5},
                                                    {"descriptors", "", 0.5},
                                                    {"libraries", "", 0.5},
                                                    {"services in use", "", 0.5}}};

/// The figures at one time, in the order of `kMessgroessen`.
using Messung = std::array<double, kMessgroessen.size()>;

/// The figures of this process. `dienste` is the number of services in use.
Messung jetzigeMessung(int dienste);

/// The figures over a run.
///
/// A figure is level if its line over the last three quarters of the run rises no further than its spare room: a leak
/// in each cycle adds up without end, while the allocator settles in the first quarter or jumps now and then. The
/// line's slope is the median of the slopes between every two samples (Theil-Sen), which single jumps do not move. The longer
/// the run, the smaller the leak that it finds.
class Verlauf {
public:
    /// Writes each sample to `csv`, too.
    explicit Verlauf(std::ostream& csv);

    void nimmAuf(long zyklus, const Messung& messung);

    /// Rise of the line from the first to the last sample of the last three quarters; 0 for fewer than two samples.
    double anstieg(std::size_t groesse) const;
    bool istEben(std::size_t groesse) const { return anstieg(groesse) <= kMessgroessen[groesse].spielraum; }
    /// A line for each figure, and the verdict over all. Returns: whether all are level.
    bool urteile(std::ostream& ausgabe) const;

private:
    std::size_t ersteGewertete() const { return proben_.size() / 4; }

    struct Probe {
        long zyklus;
        Messung messung;
    };

    std::ostream& csv_;
    std::vector<Probe> proben_;
};
