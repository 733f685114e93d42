#pragma once

#include <filesystem>
#include <span>
#include <string>

/// A kind of plugin: its size for people, its file as built, and in which numbers it is measured.
struct Sorte {
    const char* groesse;
    const char* datei;
    std::span<const int> anzahlen;
};

/// Home directories with copies of the plugins, each copy a library of its own, written through to the disk.
/// Errors: `std::runtime_error` when they cannot be made.
class Heime {
public:
    /// Made below an empty directory, which is the caller's to remove.
    /// Parameters: `beschreibe` has a home's plugins described in their files.
    Heime(std::filesystem::path pfad, std::span<const Sorte> sorten,
          void (*beschreibe)(const std::string& home));

    std::string mit(const Sorte& sorte, int anzahl) const {
        return pfad_ / sorte.groesse / std::to_string(anzahl);
    }

private:
    void lege(const Sorte& sorte, void (*beschreibe)(const std::string& home)) const;

    std::filesystem::path pfad_;
};

/// Drops the contents of a home's plugin files from memory.
/// Returns: false if one of their pages is still there, as in a file system that has no disk.
bool verdraenge(const std::string& home);
