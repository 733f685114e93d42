#include <orvoplugin/beschreibung/Notiz.h>

#ifdef __linux__
#include <orvoplugin/plugin/Beschreibungsplatz.h>

#include <fcntl.h>
#include <link.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

/// The header of the library that this code is in: class, byte order and processor must be the same.
extern "C" const ElfW(Ehdr) kopfDieserBibliothek __asm__("__ehdr_start")
    __attribute__((visibility("hidden")));

namespace {

constexpr OrvoNotizkopf kGesucht{.platz = 0};
constexpr std::size_t kErsteLesung = std::size_t{8} << 10;

constexpr std::uint64_t aufgerundet(std::uint64_t wert, std::uint64_t ausrichtung) {
    return (wert + ausrichtung - 1) & ~(ausrichtung - 1);
}

} // namespace

// Opening never waits for a FIFO or a device, and never makes a terminal the process's own.
Notiz::Notiz(const std::string& pfad)
    : deskriptor_(open(pfad.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
    if (deskriptor_ < 0 || pfad.find('\0') != std::string::npos)
        return;
    liesBis(kErsteLesung);
    suche();
}

Notiz::~Notiz() {
    if (deskriptor_ >= 0)
        close(deskriptor_);
}

void Notiz::suche() {
    ElfW(Ehdr) kopf;
    const ElfW(Ehdr)& eigener = kopfDieserBibliothek;
    if (gelesen_ < sizeof(kopf))
        return;
    std::memcpy(&kopf, bytes_, sizeof(kopf));
    const std::size_t laenge = kopf.e_phnum * sizeof(ElfW(Phdr));
    if (std::memcmp(kopf.e_ident, eigener.e_ident, EI_VERSION + 1) != 0 || kopf.e_type != ET_DYN ||
        kopf.e_machine != eigener.e_machine || kopf.e_phentsize != sizeof(ElfW(Phdr)) || laenge > gelesen_ ||
        kopf.e_phoff > gelesen_ - laenge)
        return;
    for (std::size_t i = 0; i < kopf.e_phnum && stelle == 0; ++i) {
        ElfW(Phdr) segment;
        std::memcpy(&segment, bytes_ + kopf.e_phoff + i * sizeof(segment), sizeof(segment));
        if (segment.p_type == PT_NOTE && segment.p_offset < sizeof(bytes_) && segment.p_filesz <= UINT32_MAX)
            sucheIn(segment.p_offset, segment.p_offset + segment.p_filesz, segment.p_align == 8 ? 8 : 4);
    }
}

void Notiz::sucheIn(std::uint64_t ab, std::uint64_t ende, std::uint64_t ausrichtung) {
    std::uint32_t kopf[3]; // length of the name, length of the content, kind
    while (const unsigned char* const bytes = ab < ende ? hole(ab, sizeof(OrvoNotizkopf)) : nullptr) {
        std::memcpy(kopf, bytes, sizeof(kopf));
        const std::uint64_t inhalt = ab + aufgerundet(sizeof(kopf) + std::uint64_t{kopf[0]}, ausrichtung);
        if (inhalt + kopf[1] > ende)
            return;
        if (kopf[0] == kGesucht.namenslaenge && kopf[2] == kGesucht.art &&
            std::memcmp(bytes + sizeof(kopf), kGesucht.name, kGesucht.namenslaenge) == 0) {
            stelle = inhalt;
            platz = kopf[1];
            return;
        }
        ab = inhalt + aufgerundet(kopf[1], ausrichtung);
    }
}

const unsigned char* Notiz::hole(std::uint64_t ab, std::size_t anzahl) {
    if (ab > sizeof(bytes_) || anzahl > sizeof(bytes_) - ab)
        return nullptr;
    if (ab + anzahl > gelesen_ && gelesen_ == kErsteLesung)
        liesBis(sizeof(bytes_));
    return ab + anzahl <= gelesen_ ? bytes_ + ab : nullptr;
}

void Notiz::liesBis(std::size_t laenge) {
    ssize_t gelesene;
    do
        gelesene = pread(deskriptor_, bytes_ + gelesen_, laenge - gelesen_, static_cast<off_t>(gelesen_));
    while (gelesene < 0 && errno == EINTR);
    gelesen_ += gelesene < 0 ? 0 : static_cast<std::size_t>(gelesene);
}

#else
Notiz::Notiz(const std::string&) : deskriptor_(-1) {} // only ELF files have notes
Notiz::~Notiz() = default;
const unsigned char* Notiz::hole(std::uint64_t, std::size_t) { return nullptr; }
#endif
