#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// The longest description that is written and read.
constexpr std::size_t kHoechstlaengeEinerBeschreibung = 32000;

/// The note with the room for a description, near the beginning of a plugin's file. The file is read like a text, in three
/// system calls, or four where the beginning is not enough.
class Notiz {
public:
    /// A file that cannot be opened, or is no library of this machine's kind, has no note.
    explicit Notiz(const std::string& pfad);
    Notiz(const Notiz&) = delete;
    ~Notiz();

    /// Returns: the first bytes of the room; null if there are fewer in the room or in what is read of the file.
    const unsigned char* bytes(std::size_t anzahl) {
        return anzahl <= platz ? hole(stelle, anzahl) : nullptr;
    }

    std::uint64_t stelle = 0; ///< where the room begins in the file; 0 without one
    std::uint32_t platz = 0;  ///< its size in bytes

private:
    void suche();
    void sucheIn(std::uint64_t ab, std::uint64_t ende, std::uint64_t ausrichtung);
    const unsigned char* hole(std::uint64_t ab, std::size_t anzahl);
    void liesBis(std::size_t laenge);

    int deskriptor_;
    std::size_t gelesen_ = 0;
    unsigned char bytes_[kHoechstlaengeEinerBeschreibung + (std::size_t{8} << 10)];
};
