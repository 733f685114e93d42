#pragma once

#include <orvoutil/Logger.h>

#include <string_view>
#include <type_traits>

namespace orvo::orvoutil {

/// The log of one class: a logger, or none without a sink. Callers write without testing for it.
///
///     log_.warn("Konnte OnUnload Funktion in Plugin nicht laden");
///     log_.error([&] { return "Konnte Plugin nicht laden: " + grund; });
///
/// A text is given as it is, or as a callable that makes it; the callable runs only if the entry is written.
///
/// Errors: none. When building a text throws, the entry is lost.
class Log {
public:
    /// Both codes of every event.
    enum : int { EREIGNISCODE = 99 };

    constexpr Log(Logger* logger = nullptr) noexcept
        : logger_(logger) {} // NOLINT(google-explicit-constructor)
    /// The log of that category; none on allocation failure.
    explicit Log(std::string_view kategorie) noexcept : logger_(hole(kategorie)) {}
    /// The log of that category while debug entries are written, else none: for operations that only trace.
    static Log nurFuerDebug(std::string_view kategorie) noexcept {
        return schreibtDebug() ? Log(kategorie) : Log();
    }
    /// Whether debug entries are written.
    static bool schreibtDebug() noexcept { return Logger::istAn(LogLevel::Debug); }

    void debug(const auto& text) const noexcept { schreibe(LogLevel::Debug, &Logger::debug, text); }
    void info(const auto& text) const noexcept { schreibe(LogLevel::Info, &Logger::info, text); }
    void warn(const auto& text) const noexcept { schreibe(LogLevel::Warn, &Logger::warn, text); }
    void error(const auto& text) const noexcept { schreibe(LogLevel::Error, &Logger::error, text); }

    /// A trace such as `Logger::leave`, written at debug level.
    void spure(void (Logger::*art)(std::string_view) noexcept, const auto& text) const noexcept {
        schreibe(LogLevel::Debug, art, text);
    }

    /// An event, written whatever the level.
    void ereignis(const auto& marke, const auto& text) const noexcept {
        if (!logger_ || !Logger::hatSenke())
            return;
        try {
            logger_->schreibeEreignis(gelesen(marke), EREIGNISCODE, gelesen(text), EREIGNISCODE);
        } catch (...) { // no text, no entry
        }
    }

private:
    ORVOUTIL_API static Logger* hole(std::string_view kategorie) noexcept;

    /// The text itself, or what the callable makes.
    template <class Text>
    static decltype(auto) gelesen(const Text& text) {
        if constexpr (std::is_invocable_v<const Text&>)
            return text();
        else
            return std::string_view(text);
    }

    void schreibe(LogLevel stufe, void (Logger::*art)(std::string_view) noexcept,
                  const auto& text) const noexcept {
        if (!logger_ || !Logger::istAn(stufe))
            return;
        try {
            (logger_->*art)(gelesen(text));
        } catch (...) { // no text, no entry
        }
    }

    Logger* logger_;
};

} // namespace orvo::orvoutil
