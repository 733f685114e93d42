#include <orvoutil/Logger.h>

#include <algorithm>
#include <map>
#include <mutex>

namespace orvo::orvoutil {

/// The log of the process. Never destroyed: it is written until the process is gone.
struct __attribute__((visibility("hidden"))) Logger::Zustand {
    std::mutex sperre;
    std::shared_ptr<LogSink> senke;
    LogLevel stufe = LogLevel::Info;
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
    if (!gefunden->second)
        gefunden->second = new Logger(kategorie);
    return gefunden->second;
}

void Logger::setSink(std::shared_ptr<LogSink> senke) {
    Zustand& zustand = Zustand::hole();
    const std::lock_guard halter(zustand.sperre);
    zustand.senke.swap(senke); // the former one goes with the argument, when no lock is held any more
    zustand.stelleSchwelle();
}

void Logger::setLevel(LogLevel stufe) {
    Zustand& zustand = Zustand::hole();
    const std::lock_guard halter(zustand.sperre);
    zustand.stufe = std::min(stufe, LogLevel::Error);
    zustand.stelleSchwelle();
}

void Logger::debug(std::string_view text) noexcept { schreibe(LogKind::Message, LogLevel::Debug, text); }
void Logger::info(std::string_view text) noexcept { schreibe(LogKind::Message, LogLevel::Info, text); }
void Logger::warn(std::string_view text) noexcept { schreibe(LogKind::Message, LogLevel::Warn, text); }
void Logger::error(std::string_view text) noexcept { schreibe(LogKind::Message, LogLevel::Error, text); }

void Logger::enter(std::string_view operation) noexcept {
    schreibe(LogKind::Enter, LogLevel::Debug, operation);
}
void Logger::leave(std::string_view operation) noexcept {
    schreibe(LogKind::Leave, LogLevel::Debug, operation);
}
void Logger::enterConstructor(std::string_view operation) noexcept {
    schreibe(LogKind::ConstructorEnter, LogLevel::Debug, operation);
}
void Logger::leaveConstructor(std::string_view operation) noexcept {
    schreibe(LogKind::ConstructorLeave, LogLevel::Debug, operation);
}
void Logger::enterDestructor(std::string_view operation) noexcept {
    schreibe(LogKind::DestructorEnter, LogLevel::Debug, operation);
}
void Logger::leaveDestructor(std::string_view operation) noexcept {
    schreibe(LogKind::DestructorLeave, LogLevel::Debug, operation);
}

void Logger::tagged(const char* tag, int code1, const char* text, int code2) noexcept {
    schreibeEreignis(tag ? tag : "", code1, text ? text : "", code2);
}
void Logger::tagged(const std::string& tag, int code1, const std::string& text, int code2) noexcept {
    schreibeEreignis(tag, code1, text, code2);
}

void Logger::schreibe(LogKind art, LogLevel stufe, std::string_view text) noexcept {
    if (!istAn(stufe))
        return;
    try {
        Zustand::uebergib({art, stufe, kategorie_, std::string(text), {}, 0, 0});
    } catch (...) { // logging changes nothing else
    }
}

void Logger::schreibeEreignis(std::string_view tag, int code1, std::string_view text, int code2) noexcept {
    if (!hatSenke())
        return;
    try {
        Zustand::uebergib(
            {LogKind::Tagged, LogLevel::Info, kategorie_, std::string(text), std::string(tag), code1, code2});
    } catch (...) { // logging changes nothing else
    }
}

} // namespace orvo::orvoutil
