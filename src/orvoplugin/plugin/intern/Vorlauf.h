#pragma once

#include <list>
#include <string>

/// Reads the plugin files of a directory ahead of their loading, if the first of them is not in memory: the system's
/// loader reads piece by piece and waits for each. Where files are in memory, a directory costs three system calls; where
/// the system cannot tell, nothing is read ahead.
///
/// Ownership: refers to the name and the list.
/// Errors: none. What cannot be read ahead is left to the loader.
class Vorlauf {
public:
    using Dateien = std::list<std::string>;

    /// Parameters: `istPlugin` selects the files that will be loaded; of each, `bytes` are read, 0 for all.
    Vorlauf(const std::string& verzeichnis, const Dateien& dateien, bool (*istPlugin)(const std::string&),
            int bytes)
        : verzeichnis_(verzeichnis),
          istPlugin_(istPlugin),
          bytes_(bytes),
          naechste_(dateien.begin()),
          ende_(dateien.end()) {}

    /// Call before each of them is loaded.
    void rueckeVor() noexcept;

private:
    [[maybe_unused]] const std::string& verzeichnis_;
    [[maybe_unused]] bool (*istPlugin_)(const std::string&);
    [[maybe_unused]] const int bytes_;
    Dateien::const_iterator naechste_, ende_; ///< what is still to be read
    [[maybe_unused]] int voraus_ = 0;         ///< how many files are read and not loaded yet
};
