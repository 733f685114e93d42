#pragma once

#include <orvoutil/Log.h>

#include <string_view>

namespace orvo::orvoutil {

/// Traces one operation: the constructor writes its entry, `ende` its exit. The destructor writes nothing, because not
/// every path of an operation has an exit line.
///
///     const Spur spur(log_, "OrvoPluginV1::addErweiterung");
///     ...
///     spur.ende();
///
/// Ownership: refers to the operation's name, which outlives it.
template <void (Logger::*Eintritt)(std::string_view) noexcept,
          void (Logger::*Austritt)(std::string_view) noexcept>
class SpurFuer {
public:
    [[nodiscard]] SpurFuer(Log log, const char* operation) noexcept
        : log_(log), operation_(operation ? operation : "") {
        log_.spure(Eintritt, operation_);
    }

    void ende() const noexcept { log_.spure(Austritt, operation_); }

private:
    Log log_;
    const char* operation_;
};

using Spur = SpurFuer<&Logger::enter, &Logger::leave>;
using KonstruktorSpur = SpurFuer<&Logger::enterConstructor, &Logger::leaveConstructor>;
using DestruktorSpur = SpurFuer<&Logger::enterDestructor, &Logger::leaveDestructor>;

} // namespace orvo::orvoutil
