#pragma once

#include <orvoutil/Export.h>
#include <orvoutil/LogSink.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace orvo::orvoutil {

/// Writes the log of one category to the sink that the host installed. Without a sink callers get no logger.
///
/// Ownership: loggers belong to the process and are never destroyed.
/// Errors: an entry is lost when a sink throws or memory runs out; nothing else changes.
class ORVOUTIL_API Logger {
public:
    /// Returns: the logger of that category, always the same; null while no sink is installed.
    /// Errors: `std::bad_alloc`.
    static Logger* getInstance(std::string_view kategorie);
    /// Installs the sink that all loggers write to; null for none. Entries under way on other threads may still
    /// reach the one before. Ownership: shared, until the next call or the end of the process.
    static void setSink(std::shared_ptr<LogSink> senke);
    /// Sets the lowest level that is written; at first `LogLevel::Info`.
    static void setLevel(LogLevel stufe);
    static bool hatSenke() noexcept { return schwelle_.load(std::memory_order_relaxed) != AUS; }

    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    bool isDebugEnabled() const noexcept { return istAn(LogLevel::Debug); }
    bool isInfoEnabled() const noexcept { return istAn(LogLevel::Info); }
    bool isWarnEnabled() const noexcept { return istAn(LogLevel::Warn); }
    bool isErrorEnabled() const noexcept { return istAn(LogLevel::Error); }

    void debug(std::string_view text) noexcept;
    void info(std::string_view text) noexcept;
    void warn(std::string_view text) noexcept;
    void error(std::string_view text) noexcept;

    /// Traces of the operation `text`, written at debug level. `Spur` writes them in pairs.
    void enter(std::string_view text) noexcept;
    void leave(std::string_view text) noexcept;
    void enterConstructor(std::string_view text) noexcept;
    void leaveConstructor(std::string_view text) noexcept;
    void enterDestructor(std::string_view text) noexcept;
    void leaveDestructor(std::string_view text) noexcept;

    /// An event, written whatever the level. Null texts count as empty.
    void tagged(const char* tag, int code1, const char* text, int code2) noexcept;
    void tagged(const std::string& tag, int code1, const std::string& text, int code2) noexcept;

private:
    friend class Log; // writes without copying its texts first

    struct Zustand;
    enum : std::int32_t { AUS = static_cast<std::int32_t>(LogLevel::Error) + 1 };

    explicit Logger(std::string_view kategorie);
    ~Logger() = delete;

    static bool istAn(LogLevel stufe) noexcept {
        return static_cast<std::int32_t>(stufe) >= schwelle_.load(std::memory_order_relaxed);
    }
    void schreibe(LogKind art, LogLevel stufe, std::string_view text) noexcept;
    void schreibeEreignis(std::string_view tag, int code1, std::string_view text, int code2) noexcept;
    __attribute__((visibility("hidden"))) void uebergib(LogKind art, LogLevel stufe, std::string_view tag,
                                                        int code1, std::string_view text, int code2) noexcept;

    static std::atomic<std::int32_t> schwelle_; // lowest level written; AUS while there is no sink

    const std::string kategorie_;
};

} // namespace orvo::orvoutil
