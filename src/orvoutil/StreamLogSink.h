#pragma once

#include <orvoutil/LogSink.h>

#include <iosfwd>
#include <mutex>

namespace orvo::orvoutil {

/// Writes the log to a stream, one line for each entry, with local time, level and category. Arrows mark where
/// an operation begins and ends; an event has its tag before the text.
///
/// Ownership: the stream stays the caller's and outlives the sink.
/// Errors: those of the stream.
/// Encoding: lines are UTF-8; see `toUtf8`. Control characters are escaped, as "\n", "\x1b" or "\u202e", so that no
/// text can fake a line or change its direction.
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
