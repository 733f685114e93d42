#pragma once

#include <orvoutil/Export.h>

#include <string>
#include <vector>

namespace orvo::orvoutil {

/// A shared library's file, open or not. It is opened with all its symbols bound at once and visible to nobody
/// else. Before that its file is looked at: one that was cut off would end the process instead of failing to open.
///
/// Ownership: holds one use of the library while it is open, and gives it back when destroyed.
/// Errors: every operation that fails leaves a text for `getLastError`; one that succeeds clears it. None throws,
/// but for want of memory and for what the library's own start-up code throws.
/// Encoding: the path is bytes, kept as given; the texts are Latin-1 around it.
/// Threads: one object by one thread at a time.
class ORVOUTIL_API SharedLib {
public:
    /// Parameters: `pfad` names a file, also when it holds no slash: the system's library path is not searched.
    /// With `sofortLaden` the library is opened here; `isLoaded` then says whether it was.
    explicit SharedLib(const std::string& pfad, bool sofortLaden = false);
    SharedLib(const SharedLib&) = delete;
    SharedLib& operator=(const SharedLib&) = delete;
    /// Closes the library.
    virtual ~SharedLib();

    /// The path as given.
    virtual const std::string& getName() const;
    /// Whether the library is open through this object.
    virtual bool isLoaded() const;
    /// Opens the library. Returns: whether it is open now.
    virtual bool load();
    /// Closes the library. Returns: false also when it was not open.
    virtual bool unload();
    /// Returns: the address of an exported symbol; null when there is none. Addresses once found are remembered
    /// until the library is closed.
    virtual void* getSymbol(const std::string& name);
    /// Why the last operation failed, with the name of the file; empty when it did not.
    virtual std::string getLastError() const;
    /// Whether the address lies in this library, or in one that was loaded after it, as are those that it brought
    /// along; what holds this class's own code never counts. False when the library is not open.
    virtual bool enthaelt(const void* adresse) const;

    /// Whether the last `load` failed before the system's loader saw the file: its name or what is in it is at
    /// fault.
    bool scheiterteVorDemOeffnen() const { return scheiterteVorDemOeffnen_; }

private:
    /// A symbol of the open library.
    struct Symbol {
        std::string name;
        void* adresse;
    };

    std::string grundGegen(const std::string& dateipfad) const;
    void behalteSymbol(const std::string& name, void* adresse) noexcept;
    bool schlageFehl(const std::string& grund);

    std::string name_;
    void* griff_ = nullptr; // null while closed
    std::string fehler_;
    bool scheiterteVorDemOeffnen_ = false;
    std::vector<Symbol> gefundene_;
};

} // namespace orvo::orvoutil
