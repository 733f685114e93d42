#pragma once

#include <orvoplugin/plugin/Beschreibungsplatz.h>

#include <fcntl.h>
#ifdef __ELF__
#include <link.h>
#endif
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

/// The longest description that is written and read, without its head.
constexpr std::size_t kHoechstlaengeEinerBeschreibung = 32000;

#ifdef __ELF__
/// The header of the library that this code is in: class, byte order and processor must be the same.
extern "C" __attribute__((visibility("hidden"))) const ElfW(Ehdr) dieserKopf __asm__("__ehdr_start");
#endif

/// The note with the room for a description, near the beginning of a plugin's file. The file is read like a text, in three
/// system calls, or four where its first page is not enough. A file without the note has no room.
class Notiz {
public:
    /// Opening never waits for a FIFO or a device, and never makes a terminal the process's own.
    explicit Notiz(const std::string& pfad)
        : deskriptor_(pfad.find('\0') == pfad.npos
                          ? open(pfad.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)
                          : -1) {
#ifdef __ELF__ // other systems' files have no notes
        ElfW(Ehdr) kopf;
        ElfW(Phdr) segment;
        if (!lies(0, kopf) || kopf.e_type != ET_DYN || kopf.e_machine != dieserKopf.e_machine ||
            std::memcmp(kopf.e_ident, dieserKopf.e_ident, EI_VERSION + 1) != 0 ||
            kopf.e_phentsize != sizeof(segment))
            return;
        for (std::size_t i = 0;
             i < kopf.e_phnum && platz == 0 && lies(kopf.e_phoff + i * sizeof(segment), segment); ++i)
            if (segment.p_type == PT_NOTE && segment.p_offset < sizeof(bytes_) &&
                segment.p_filesz <= sizeof(bytes_))
                suche(segment.p_offset, segment.p_offset + segment.p_filesz);
#endif
    }
    Notiz(const Notiz&) = delete;
    ~Notiz() {
        if (deskriptor_ >= 0)
            close(deskriptor_);
    }
    /// Returns: the first bytes of the room; null if there are fewer in the room or in what is read of the file.
    const char* bytes(std::size_t anzahl) { return anzahl <= platz ? hole(stelle, anzahl) : nullptr; }

    std::uint64_t stelle = 0; ///< where the room begins in the file
    std::uint32_t platz = 0;  ///< its size

private:
    /// All notes are aligned to 4 bytes, also in segments of which the header says 8.
    void suche(std::uint64_t ab, std::uint64_t ende) {
        constexpr OrvoNotizkopf gesucht{.platz = 0};
        const auto aufgerundet = [](std::uint64_t n) { return (n + 3) & ~std::uint64_t{3}; };
        for (OrvoNotizkopf kopf; ab < ende && lies(ab, kopf); ab += aufgerundet(kopf.platz)) {
            ab += aufgerundet(offsetof(OrvoNotizkopf, name) + std::uint64_t{kopf.namenslaenge});
            if (kopf.namenslaenge == gesucht.namenslaenge && kopf.art == gesucht.art &&
                ab + kopf.platz <= ende && std::memcmp(kopf.name, gesucht.name, gesucht.namenslaenge) == 0) {
                stelle = ab;
                platz = kopf.platz;
                return;
            }
        }
    }
    bool lies(std::uint64_t ab, auto& ziel) {
        const char* const bytes = hole(ab, sizeof(ziel));
        return bytes && std::memcpy(&ziel, bytes, sizeof(ziel));
    }
    const char* hole(std::uint64_t ab, std::size_t anzahl) {
        if (ab > sizeof(bytes_) || anzahl > sizeof(bytes_) - ab)
            return nullptr;
        if (ab + anzahl > gelesen_ && (gelesen_ == 0 || gelesen_ == kErsteLesung)) {
            const std::size_t hoechstens = gelesen_ == 0 ? kErsteLesung : sizeof(bytes_) - kErsteLesung;
            const auto neue = pread(deskriptor_, bytes_ + gelesen_, hoechstens, off_t(gelesen_));
            gelesen_ += static_cast<std::size_t>(std::max<ssize_t>(neue, 0));
        }
        return ab + anzahl <= gelesen_ ? bytes_ + ab : nullptr;
    }

    static constexpr std::size_t kErsteLesung = 4096;
    int deskriptor_;
    std::size_t gelesen_ = 0;
    char bytes_[2 * kErsteLesung + kHoechstlaengeEinerBeschreibung];
};
