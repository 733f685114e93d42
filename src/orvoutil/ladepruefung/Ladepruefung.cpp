#include <orvoutil/ladepruefung/Ladepruefung.h>

#include <orvoutil/Latin1.h>
#include <orvoutil/ladepruefung/Bytequelle.h>
#if defined(__APPLE__)
#include <orvoutil/ladepruefung/MachOPruefung.h>
#elif defined(__linux__)
#include <orvoutil/ladepruefung/ElfPruefung.h>
#endif

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <system_error>

namespace orvo::orvoutil {

namespace {

constexpr Latin1Text kKeineDatei{u8"keine gewöhnliche Datei"};
constexpr Latin1Text kNichtZuOeffnen{u8"kann nicht geöffnet werden: "};

bool istNamenszeichen(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

/// The first word in a path for which the loader would put something else; empty when there is none.
std::string_view platzhalter(std::string_view pfad) {
    for (std::size_t i = pfad.find('$'); i != std::string_view::npos; i = pfad.find('$', i + 1)) {
        const bool geklammert = pfad.substr(i + 1).starts_with('{');
        const std::string_view rest = pfad.substr(i + (geklammert ? 2 : 1));
        for (const std::string_view name : {"ORIGIN", "LIB", "PLATFORM"}) {
            if (!rest.starts_with(name))
                continue;
            const std::string_view danach = rest.substr(name.size());
            if (geklammert ? danach.starts_with('}') : danach.empty() || !istNamenszeichen(danach.front()))
                return pfad.substr(i, name.size() + (geklammert ? 3 : 1));
        }
    }
    return {};
}

/// An open file. Opening never waits, and never makes a terminal the process's own.
class Datei final : public Bytequelle {
public:
    explicit Datei(const char* pfad)
        : deskriptor_(open(pfad, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY)) {}
    Datei(const Datei&) = delete;
    Datei& operator=(const Datei&) = delete;
    ~Datei() {
        if (istOffen())
            close(deskriptor_);
    }

    bool istOffen() const { return deskriptor_ >= 0; }

    /// Looks what it is. Returns: whether that is a regular file.
    bool istDatei() {
        struct stat zustand;
        if (fstat(deskriptor_, &zustand) != 0 || !S_ISREG(zustand.st_mode))
            return false;
        groesse_ = static_cast<std::uint64_t>(zustand.st_size);
        return true;
    }

    std::uint64_t groesse() const override { return groesse_; }

    bool lies(std::uint64_t ab, void* ziel, std::size_t anzahl) override {
        auto* schreibe = static_cast<char*>(ziel);
        while (anzahl > 0) {
            const ssize_t gelesen = pread(deskriptor_, schreibe, anzahl, static_cast<off_t>(ab));
            if (gelesen < 0 && errno == EINTR)
                continue;
            if (gelesen <= 0) // an error, or the file has become shorter
                return false;
            schreibe += gelesen;
            ab += static_cast<std::uint64_t>(gelesen);
            anzahl -= static_cast<std::size_t>(gelesen);
        }
        return true;
    }

private:
    int deskriptor_;
    std::uint64_t groesse_ = 0;
};

std::string nichtZuOeffnen() { return kNichtZuOeffnen.c_str() + std::generic_category().message(errno); }

std::string pruefeInhalt([[maybe_unused]] Bytequelle& quelle) {
#if defined(__APPLE__)
    return pruefeMachO(quelle);
#elif defined(__linux__)
    return pruefeElf(quelle);
#else
    return {};
#endif
}

} // namespace

std::string grundGegenLaden(const std::string& pfad) {
    if (const std::string_view wort = platzhalter(pfad); !wort.empty())
        return "Platzhalter im Namen: " + std::string(wort);
    // Opening a device may already do something to it, so a first look goes by the name.
    struct stat zustand;
    if (stat(pfad.c_str(), &zustand) != 0)
        return nichtZuOeffnen();
    if (!S_ISREG(zustand.st_mode))
        return kKeineDatei;
    Datei datei(pfad.c_str());
    if (!datei.istOffen())
        return nichtZuOeffnen();
    return datei.istDatei() ? pruefeInhalt(datei) : std::string(kKeineDatei);
}

} // namespace orvo::orvoutil
