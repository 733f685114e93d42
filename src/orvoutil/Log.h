#pragma once

#include <orvoutil/Logger.h>

#include <string_view>
#include <type_traits>

namespace orvo::orvoutil {

/// The log of one class: a logger, or none while nobody listens. Callers write without asking first.
///
///     log_.warn("Konnte OnUnload Funktion in Plugin nicht laden");
///     log_.error([&] { return "Konnte Plugin nicht laden: " + grund; });
///
/// A text is given as it is, or as a callable that makes it; the callable runs only if the entry is written.
///
/// Ownership: refers to a logger, which lives as long as the process.
/// Errors: none. What building a text throws is swallowed, and the entry with it.
/// Threads: any.
class Log {
public:
    /// Both codes of every event.
    enum : int { EREIGNISCODE = 99 };

    constexpr Log(Logger* logger = nullptr) noexcept
        : logger_(logger) {} // NOLINT(google-explicit-constructor)
    /// The log of that category. Without memory for it there is none.
    explicit Log(std::string_view kategorie) noexcept : logger_(hole(kategorie)) {}
    /// The log of that category if debug entries are written at the moment, else none: for operations that write
    /// nothing but traces and must cost nothing without them.
    static Log nurFuerDebug(std::string_view kategorie) noexcept {
        return Logger::istAn(LogLevel::Debug) ? Log(kategorie) : Log();
    }

    template <class Text>
    void debug(const Text& text) const noexcept {
        schreibe(LogLevel::Debug, &Logger::debug, text);
    }
    template <class Text>
    void info(const Text& text) const noexcept {
        schreibe(LogLevel::Info, &Logger::info, text);
    }
    template <class Text>
    void warn(const Text& text) const noexcept {
        schreibe(LogLevel::Warn, &Logger::warn, text);
    }
    template <class Text>
    void error(const Text& text) const noexcept {
        schreibe(LogLevel::Error, &Logger::error, text);
    }

    /// A trace such as `Logger::leave`, written at debug level.
    template <class Text>
    void spure(void (Logger::*art)(std::string_view) noexcept, const Text& text) const noexcept {
        schreibe(LogLevel::Debug, art, text);
    }

    /// An event, written whatever the level.
    template <class Marke, class Text>
    void ereignis(const Marke& marke, const Text& text) const noexcept {
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

    template <class Text>
    void schreibe(LogLevel stufe, void (Logger::*art)(std::string_view) noexcept,
                  const Text& text) const noexcept {
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
