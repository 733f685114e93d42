#pragma once

#include <orvoutil/LogSink.h>

/// A sink that ignores all entries.
class StummeSenke : public orvo::orvoutil::LogSink {
    void write(const orvo::orvoutil::LogEntry&) override {}
};
