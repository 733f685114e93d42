#pragma once

#include <orvoutil/Export.h>

#include <string>

namespace orvo::orvoutil {

/// Tells an observer what changed.
class ORVOUTIL_API AenderungsNachricht {
public:
    /// Kind of the message that a setting has a new value.
    enum : int { EINSTELLUNG_GEAENDERT = 3 };

    AenderungsNachricht(int art, const std::string& schluessel);

    int getArt() const { return art_; }
    const std::string& getSchluessel() const { return schluessel_; }

private:
    int art_;
    std::string schluessel_;
};

/// Observer of changes; see `Einstellungen::beobachterAnmelden`.
class ORVOUTIL_API AenderungsBeobachter {
public:
    /// Called after the change, on the thread that made it.
    virtual void empfangeAenderungsNachricht(const AenderungsNachricht& nachricht) = 0;
    virtual ~AenderungsBeobachter();
};

} // namespace orvo::orvoutil
