#pragma once

#include <orvoutil/LogSink.h>

#include <iosfwd>
#include <mutex>

namespace orvo::orvoutil {

/// Writes the log to a stream, one line for each entry, with local time, level and category. Arrows mark where
/// an operation begins and ends; of an event the line has tag and text.
///
/// Ownership: the stream stays the caller's and outlives the sink.
/// Errors: those of the stream.
/// Encoding: lines are UTF-8; see `toUtf8`. Control characters are written as "\n", "\x1b" or "\u202e", so that no
/// text can pass for another line, or turn a line's direction.
/// Threads: any.
class ORVOUTIL_API StreamLogSink : public LogSink {
public:
    explicit StreamLogSink(std::ostream& ausgabe);
    ~StreamLogSink() override;

    void write(const LogEntry& eintrag) override;

private:
    std::ostream& ausgabe_;
    std::mutex sperre_;
};

} // namespace orvo::orvoutil
