#include "kern/Protokoll.h"

#include "kern/Kindprozess.h"

#include <orvoutil/Logger.h>

#include <unistd.h>

#include <cerrno>

using namespace orvo::orvoutil;

namespace werkzeug {

namespace {

LogLevel stufeVon(const std::string& name) {
    if (name == "debug")
        return LogLevel::Debug;
    if (name == "warn")
        return LogLevel::Warn;
    return name == "error" ? LogLevel::Error : LogLevel::Info;
}

} // namespace

std::shared_ptr<Protokoll> Protokoll::beginne(const std::string& stufe) {
    if (stufe.empty()) {
        schliesseProtokollDeskriptor();
        return nullptr;
    }
    auto protokoll = std::make_shared<Protokoll>(protokollDeskriptor());
    Logger::setLevel(stufeVon(stufe));
    Logger::setSink(protokoll);
    return protokoll;
}

Protokoll::Puffer::int_type Protokoll::Puffer::overflow(int_type zeichen) {
    const char c = traits_type::to_char_type(zeichen);
    return xsputn(&c, 1) == 1 ? zeichen : traits_type::eof();
}

std::streamsize Protokoll::Puffer::xsputn(const char* text, std::streamsize anzahl) {
    std::streamsize geschrieben = 0;
    while (geschrieben < anzahl) {
        const ssize_t n =
            ::write(deskriptor_, text + geschrieben, static_cast<std::size_t>(anzahl - geschrieben));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        geschrieben += n;
    }
    return geschrieben;
}

} // namespace werkzeug
