#include <orvoutil/LogSink.h>

namespace orvo::orvoutil {

LogSink::~LogSink() = default;

} // namespace orvo::orvoutil
