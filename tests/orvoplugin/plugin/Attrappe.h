#pragma once

#include <orvoutil/SharedLib.h>

#include <map>
#include <string>
#include <vector>

/// A fake shared library: it does what a test sets, and records the calls.
class Attrappe : public orvo::orvoutil::SharedLib {
public:
    /// Outlives the object.
    struct Notizen {
        std::vector<std::string> aufrufe; ///< "load", "unload", "symbol NAME"
        int zerstoert = 0;
    };

    Attrappe(Notizen& notizen, const std::string& pfad = "/irgendwo/libattrappe.dylib")
        : SharedLib(pfad), notizen_(notizen) {}
    ~Attrappe() override { ++notizen_.zerstoert; }

    bool isLoaded() const override { return offen; }
    bool load() override {
        notizen_.aufrufe.push_back("load");
        offen = laesstSichOeffnen;
        fehler_ = laesstSichOeffnen ? "" : "geht nicht auf";
        return laesstSichOeffnen;
    }
    bool unload() override {
        notizen_.aufrufe.push_back("unload");
        fehler_ = laesstSichSchliessen ? "" : "geht nicht zu";
        offen = offen && !laesstSichSchliessen;
        return laesstSichSchliessen;
    }
    void* getSymbol(const std::string& name) override {
        notizen_.aufrufe.push_back("symbol " + name);
        const auto symbol = symbole.find(name);
        return symbol == symbole.end() ? nullptr : symbol->second;
    }
    std::string getLastError() const override { return fehler_; }
    bool enthaelt(const void*) const override { return enthaeltAlles; }

    template <class Ergebnis, class... Argumente>
    void exportiere(const std::string& name, Ergebnis (*funktion)(Argumente...)) {
        symbole[name] = reinterpret_cast<void*>(funktion);
    }

    bool offen = false;
    bool laesstSichOeffnen = true;
    bool laesstSichSchliessen = true;
    bool enthaeltAlles = false;
    std::map<std::string, void*> symbole;

private:
    Notizen& notizen_;
    std::string fehler_;
};
