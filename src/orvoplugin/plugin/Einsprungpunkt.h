#pragma once

// Internal: knows whether one of the two entry points of a plugin that describe it is running.

/// Stands for the time in which such an entry point runs. The registry and the manager refuse requests meanwhile:
/// they are at work on that very plugin.
class Einsprungpunkt {
public:
    Einsprungpunkt() { ++laufende_; }
    Einsprungpunkt(const Einsprungpunkt&) = delete;
    Einsprungpunkt& operator=(const Einsprungpunkt&) = delete;
    ~Einsprungpunkt() { --laufende_; }

    static bool laeuft() { return laufende_ != 0; }

private:
    static int laufende_;
};
