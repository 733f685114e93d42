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

/// One entry of the log.
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

/// Takes the log into that of the host; see `Logger::setSink`.
class ORVOUTIL_API LogSink {
public:
    /// Takes one entry, which is valid until this returns and is then used for another: copy what is to be kept.
    /// It may log, but must not load or unload plugins. What it throws is swallowed.
    /// Threads: called on the thread that logs, so on several at once.
    virtual void write(const LogEntry& eintrag) = 0;
    virtual ~LogSink();
};

} // namespace orvo::orvoutil
