#pragma once

#include <orvoplugin/Export.h>

#include <string>
#include <vector>

/// What a check reports: messages in the order in which they were found.
class ORVOPLUGIN_API PruefErgebnis {
public:
    /// One message.
    struct Meldung {
        int code = 0;     ///< what is wrong, in the numbers of the check service
        std::string feld; ///< the field at fault, empty when it is the record as a whole
        std::string text; ///< what to tell a person
    };

    PruefErgebnis();
    PruefErgebnis(const PruefErgebnis&);
    PruefErgebnis& operator=(const PruefErgebnis&);
    ~PruefErgebnis();

    void fuegeHinzu(int code, const std::string& feld, const std::string& text);
    const std::vector<Meldung>& getMeldungen() const { return meldungen_; }

private:
    std::vector<Meldung> meldungen_;
};
