#include <orvoutil/Logger.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

namespace orvo::orvoutil {

using enum LogKind;
using enum LogLevel;

/// The log of the process. Never destroyed: destructors log to the end of the process.
struct __attribute__((visibility("hidden"))) Logger::Zustand {
    std::mutex sperre;
    std::shared_ptr<LogSink> senke;
    LogLevel stufe = Info;
    std::map<std::string, Logger*, std::less<>> logger; // by category

    static Zustand& hole() {
        static auto& zustand = *new Zustand;
        return zustand;
    }

    /// Call with the lock held.
    void stelleSchwelle() const {
        const auto niedrigste = static_cast<std::int32_t>(stufe);
        schwelle_.store(senke ? niedrigste : std::int32_t{AUS}, std::memory_order_relaxed);
    }

    /// Hands the entry over while no lock is held: the sink may log, or install another.
    static void uebergib(const LogEntry& eintrag) {
        Zustand& zustand = hole();
        std::unique_lock sperre(zustand.sperre);
        const std::shared_ptr<LogSink> senke = zustand.senke;
        sperre.unlock();
        if (senke)
            senke->write(eintrag);
    }
};

namespace {

/// Each thread reuses one entry, so that its texts seldom need memory.
struct Faden {
    LogEntry* frei = nullptr; // null while a sink has the entry, and at the end of the thread
    bool hatEintrag = false;
};
thread_local constinit Faden faden;

/// The thread's entry, as long as this lives; or one of its own.
class Leihe {
public:
    Leihe() : faden_(faden), eintrag_(faden_.hatEintrag ? std::exchange(faden_.frei, nullptr) : erster()) {}
    Leihe(const Leihe&) = delete;
    ~Leihe() {
        if (eintrag_)
            faden_.frei = eintrag_;
    }
    LogEntry& operator*() { return eintrag_ ? *eintrag_ : eigener_.emplace(); }

private:
    LogEntry* erster() {
        struct Besitzer {
            ~Besitzer() { faden.frei = nullptr; }
            LogEntry eintrag;
        };
        static thread_local Besitzer besitzer;
        faden_.hatEintrag = true;
        return &besitzer.eintrag;
    }

    Faden& faden_;
    LogEntry* const eintrag_;
    std::optional<LogEntry> eigener_;
};

} // namespace

constinit std::atomic<std::int32_t> Logger::schwelle_{AUS};

Logger::Logger(std::string_view kategorie) : kategorie_(kategorie) {}

Logger* Logger::getInstance(std::string_view kategorie) {
    if (!hatSenke())
        return nullptr;
    Zustand& zustand = Zustand::hole();
    const std::lock_guard halter(zustand.sperre);
    auto gefunden = zustand.logger.find(kategorie);
    if (gefunden == zustand.logger.end())
        gefunden = zustand.logger.emplace(kategorie, nullptr).first;
    if (!gefunden->second) // also after an earlier call ran out of memory here
        gefunden->second = new Logger(kategorie);
    return gefunden->second;
}

void Logger::setSink(std::shared_ptr<LogSink> senke) {
    Zustand& zustand = Zustand::hole();
    const std::lock_guard halter(zustand.sperre);
    zustand.senke.swap(senke); // the former one is destroyed with the argument, after the lock
    zustand.stelleSchwelle();
}

void Logger::setLevel(LogLevel stufe) {
    Zustand& zustand = Zustand::hole();
    const std::lock_guard halter(zustand.sperre);
    zustand.stufe = std::min(stufe, Error);
    zustand.stelleSchwelle();
}

void Logger::debug(std::string_view text) noexcept { schreibe(Message, Debug, text); }
void Logger::info(std::string_view text) noexcept { schreibe(Message, Info, text); }
void Logger::warn(std::string_view text) noexcept { schreibe(Message, Warn, text); }
void Logger::error(std::string_view text) noexcept { schreibe(Message, Error, text); }

void Logger::enter(std::string_view text) noexcept { schreibe(Enter, Debug, text); }
void Logger::leave(std::string_view text) noexcept { schreibe(Leave, Debug, text); }
void Logger::enterConstructor(std::string_view text) noexcept { schreibe(ConstructorEnter, Debug, text); }
void Logger::leaveConstructor(std::string_view text) noexcept { schreibe(ConstructorLeave, Debug, text); }
void Logger::enterDestructor(std::string_view text) noexcept { schreibe(DestructorEnter, Debug, text); }
void Logger::leaveDestructor(std::string_view text) noexcept { schreibe(DestructorLeave, Debug, text); }

void Logger::tagged(const char* tag, int code1, const char* text, int code2) noexcept {
    schreibeEreignis(tag ? tag : "", code1, text ? text : "", code2);
}
void Logger::tagged(const std::string& tag, int code1, const std::string& text, int code2) noexcept {
    schreibeEreignis(tag, code1, text, code2);
}

void Logger::schreibe(LogKind art, LogLevel stufe, std::string_view text) noexcept {
    if (istAn(stufe))
        uebergib(art, stufe, {}, 0, text, 0);
}

void Logger::schreibeEreignis(std::string_view tag, int code1, std::string_view text, int code2) noexcept {
    if (hatSenke())
        uebergib(Tagged, Info, tag, code1, text, code2);
}

void Logger::uebergib(LogKind art, LogLevel stufe, std::string_view tag, int code1, std::string_view text,
                      int code2) noexcept {
    try {
        Leihe leihe;
        LogEntry& eintrag = *leihe;
        eintrag.kind = art;
        eintrag.level = stufe;
        if (eintrag.category != kategorie_)
            eintrag.category = kategorie_;
        eintrag.text = text;
        if (!tag.empty() || !eintrag.tag.empty())
            eintrag.tag = tag;
        eintrag.code1 = code1;
        eintrag.code2 = code2;
        Zustand::uebergib(eintrag);
    } catch (...) { // logging changes nothing else
    }
}

} // namespace orvo::orvoutil
