#pragma once

#include <orvoutil/Export.h>

#include <cstdint>
#include <string>

namespace orvo::orvoutil {

/// A shared library's file, open or not. It is opened with immediate binding and local scope, after a look at its file:
/// a truncated file would end the process instead of failing to open.
///
/// Ownership: holds one use of the library while it is open.
/// Errors: every operation that fails leaves a text for `getLastError`; one that succeeds clears it. Throws only
/// `std::bad_alloc` and what the library's start-up code throws.
/// Encoding: the path is bytes, kept as given; the texts are Latin-1 around it.
/// Threads: one object by one thread at a time.
class ORVOUTIL_API SharedLib {
public:
    /// Parameters: `pfad` names a file, also when it holds no slash: the system's library path is not searched.
    /// With `sofortLaden` the library is opened here; `isLoaded` then says whether it was.
    explicit SharedLib(const std::string& pfad, bool sofortLaden = false);
    SharedLib(const SharedLib&) = delete;
    SharedLib& operator=(const SharedLib&) = delete;
    virtual ~SharedLib();

    virtual const std::string& getName() const;
    virtual bool isLoaded() const;
    /// Returns: whether the library is open now.
    virtual bool load();
    /// Returns: false also when the library was not open.
    virtual bool unload();
    /// Returns: the address of an exported symbol; null when there is none.
    virtual void* getSymbol(const std::string& name);
    /// Why the last operation failed, with the name of the file; empty when it did not.
    virtual std::string getLastError() const;
    /// Whether the address lies in this library or in one loaded after it, such as those that it needs. The library with
    /// this class's own code never counts.
    virtual bool enthaelt(const void* adresse) const;

    /// Whether the last `load` failed before the system's loader saw the file, by its name or content.
    bool scheiterteVorDemOeffnen() const { return scheiterteVorDemOeffnen_; }
    /// The number of this opening, which no other one in the process has: symbols found in it are valid as long as it
    /// stays the same. 0 while the library is closed, and in a derived class that opens it by itself: search each time.
    std::uintptr_t getOeffnung() const { return oeffnung_; }

private:
    std::string pruefeDatei(const std::string& dateipfad) const;
    bool schlageFehl(const std::string& grund);

    std::string name_;
    void* griff_ = nullptr; // null while closed
    std::string fehler_;
    bool scheiterteVorDemOeffnen_ = false;
    std::uintptr_t oeffnung_ = 0;
};

} // namespace orvo::orvoutil
