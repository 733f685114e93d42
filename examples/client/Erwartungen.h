#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

/// Records whether the results are as this client expects.
class Erwartungen {
public:
    /// Records one expectation. `was` names it in the report of failures.
    /// Returns: the mark to print beside it.
    const char* pruefe(bool erfuellt, const std::string& was);

    bool sindErfuellt() const { return verfehlte_.empty(); }

    /// Prints how many there were, and each that failed.
    friend std::ostream& operator<<(std::ostream& aus, const Erwartungen& erwartungen);

private:
    std::size_t anzahl_ = 0;
    std::vector<std::string> verfehlte_;
};
