#pragma once

#include <orvoutil/Export.h>

#include <cstdint>
#include <string>

namespace orvo::orvoutil {

/// How much an entry matters, in rising order.
enum class LogLevel : std::int32_t { Debug, Info, Warn, Error };

/// What a log entry stands for.
enum class LogKind : std::int32_t {
    Message,          ///< `text` says something
    Enter,            ///< the operation `text` begins
    Leave,            ///< the operation `text` ends
    ConstructorEnter, ///< likewise for constructors
    ConstructorLeave,
    DestructorEnter, ///< likewise for destructors
    DestructorLeave,
    Tagged, ///< an event: `tag`, `code1`, `text`, `code2`
};

/// One entry of the log. It owns its texts, so a sink may keep a copy.
///
/// Encoding: texts are Latin-1; paths in them are bytes as the file system has them.
struct LogEntry {
    LogKind kind = LogKind::Message;
    LogLevel level = LogLevel::Info; ///< of traces Debug, of tagged entries Info
    std::string category;
    std::string text;
    std::string tag; ///< tagged entries only, as are the codes
    int code1 = 0;
    int code2 = 0;
};

/// Where the log goes: the one seam through which a host takes the log into its own; see `Logger::setSink`.
class ORVOUTIL_API LogSink {
public:
    /// Takes one entry.
    /// Errors: whatever it throws is swallowed.
    /// Threads: called on the thread that logs, by several at once where several log. It may itself log,
    /// but must not have plugins loaded or unloaded: the one of which it is told may be on its way.
    virtual void write(const LogEntry& eintrag) = 0;
    virtual ~LogSink();
};

} // namespace orvo::orvoutil
