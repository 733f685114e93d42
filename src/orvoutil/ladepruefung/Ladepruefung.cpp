#include <orvoutil/ladepruefung/Ladepruefung.h>

#include <orvoutil/Latin1.h>
#include <orvoutil/Vorwissen.h>
#include <orvoutil/ladepruefung/Bytequelle.h>
#if defined(__APPLE__)
#include <orvoutil/ladepruefung/MachOPruefung.h>
#elif defined(__linux__)
#include <orvoutil/ladepruefung/ElfInhalt.h>
#include <orvoutil/ladepruefung/ElfPruefung.h>
#endif

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string_view>
#include <system_error>
#include <utility>

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

    /// Takes as much of the file into memory as there is room for, which is all of most plugins. Returns: whether that
    /// was anything. A file that fits is taken to end where the reading does: what passes the check so would pass it
    /// too if there were more.
    bool liesAnfang() {
        ssize_t gelesen;
        do
            gelesen = read(deskriptor_, anfang_, sizeof(anfang_));
        while (gelesen < 0 && errno == EINTR);
        if (gelesen <= 0)
            return false;
        groesse_ = imSpeicher_ = static_cast<std::size_t>(gelesen);
        return imSpeicher_ < sizeof(anfang_) || istDatei();
    }

    /// Looks what it is. Returns: whether that is a regular file.
    bool istDatei() {
        struct stat zustand;
        if (fstat(deskriptor_, &zustand) != 0 || !S_ISREG(zustand.st_mode))
            return false;
        groesse_ = static_cast<std::uint64_t>(zustand.st_size);
        return true;
    }

    std::uint64_t groesse() const override { return groesse_; }
    std::span<const unsigned char> anfang() const override { return {anfang_, imSpeicher_}; }

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
    std::size_t imSpeicher_ = 0;
    unsigned char anfang_[std::size_t{32} << 10];
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

std::string liesInhalt(Bytequelle& quelle, [[maybe_unused]] Bibliotheksinhalt& inhalt) {
#if defined(__linux__)
    return liesElf(quelle, inhalt);
#else
    return pruefeInhalt(quelle);
#endif
}

std::int64_t nanosekunden(const timespec& zeit) {
    return std::int64_t{zeit.tv_sec} * 1'000'000'000 + zeit.tv_nsec;
}

/// The state of a regular file; that of none for everything else.
Dateizustand zustandVon(const std::string& pfad) {
    struct stat z;
    if (stat(pfad.c_str(), &z) != 0 || !S_ISREG(z.st_mode))
        return {};
#if defined(__APPLE__)
    const timespec &inhalt = z.st_mtimespec, &angaben = z.st_ctimespec;
#else
    const timespec &inhalt = z.st_mtim, &angaben = z.st_ctim;
#endif
    return {static_cast<std::uint64_t>(z.st_dev), static_cast<std::uint64_t>(z.st_ino),
            static_cast<std::uint64_t>(z.st_size), nanosekunden(inhalt), nanosekunden(angaben)};
}

/// Whether a further change would show in the times. The coarsest file systems count in steps of two seconds; one that
/// tells parts of a second counts in steps of a few hundredths at most.
bool istGesetzt(const Dateizustand& zustand) {
    using namespace std::chrono;
    const bool fein = zustand.angabenSeit % nanoseconds(seconds(1)).count() != 0;
    const nanoseconds schritt = fein ? milliseconds(100) : seconds(2);
    const nanoseconds jetzt = system_clock::now().time_since_epoch();
    return jetzt.count() - std::max(zustand.inhaltSeit, zustand.angabenSeit) > schritt.count();
}

/// The look that nearly every library passes, with one reading. Returns: false where a longer look has to say more.
bool bestehtKurz(const std::string& pfad) {
    if (!platzhalter(pfad).empty())
        return false;
    Datei datei(pfad.c_str());
    return datei.istOffen() && datei.liesAnfang() && pruefeInhalt(datei).empty();
}

/// Opens the file, if it is a regular one, and has its bytes looked at.
template <class Pruefung>
std::string pruefeDatei(const std::string& pfad, Pruefung&& pruefung) {
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
    return datei.istDatei() ? pruefung(datei) : std::string(kKeineDatei);
}

} // namespace

std::string grundGegenLaden(const std::string& pfad) { return pruefeDatei(pfad, pruefeInhalt); }

std::string grundGegenLaden(const std::string& pfad, Vorwissen& vorwissen) {
    const Vorwissen frueher = std::exchange(vorwissen, {});
    const Dateizustand jetzt = frueher.gelistet ? Dateizustand() : zustandVon(pfad);
    const bool istDatei = frueher.gelistet || jetzt.istDatei();
    // Asked before the bytes are read: a change in the meantime has to show later on.
    const bool merkbar = jetzt.istDatei() && istGesetzt(jetzt);
    const bool unveraendert = jetzt.istDatei() && jetzt == frueher.geprueft;
    if (!unveraendert && !(istDatei && bestehtKurz(pfad)))
        return grundGegenLaden(pfad);
    if (merkbar)
        vorwissen.geprueft = jetzt;
    return {};
}

std::string grundGegenLaden(const std::string& pfad, Bibliotheksinhalt& inhalt) {
    return pruefeDatei(pfad, [&](Bytequelle& quelle) { return liesInhalt(quelle, inhalt); });
}

} // namespace orvo::orvoutil
