#pragma once

#include <string>

class Erwartungen;

/// A client in use: with the plugins of a first home directory, and after a change to a second one.
/// Errors: any failure, as a `std::exception` whose text is UTF-8.
class Vorfuehrung {
public:
    Vorfuehrung(std::string erstesHome, std::string zweitesHome, std::string datenverzeichnis);

    /// Prints everything to standard output. Returns: whether all results were as expected.
    bool laufe() const;

private:
    std::string erstesHome_;
    std::string zweitesHome_;
    std::string datenverzeichnis_;
};
