#pragma once

#include <string>

class Erwartungen;

/// Shows a client at work: with the plugins of a first home directory, and after a change to a second one.
/// Errors: whatever stops the work, as a `std::exception` whose text is UTF-8.
class Vorfuehrung {
public:
    Vorfuehrung(std::string erstesHome, std::string zweitesHome, std::string datenverzeichnis);

    /// Prints everything to the standard output. Returns: whether all came as expected.
    bool laufe() const;

private:
    std::string erstesHome_;
    std::string zweitesHome_;
    std::string datenverzeichnis_;
};
