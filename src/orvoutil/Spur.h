#pragma once

#include <orvoutil/Logger.h>

#include <string_view>

namespace orvo::orvoutil {

/// Traces one operation: the constructor writes its entry, `ende` its exit, each when there is a logger and debug
/// is enabled at that moment. The end of its life writes nothing: exits are wanted only where the code says so.
///
///     const Spur spur(logger, "OrvoPluginV1::addErweiterung");
///     ...
///     spur.ende();
///
/// Ownership: refers to logger and name, both of which live as long as it does.
/// Errors: none.
template <void (Logger::*Eintritt)(std::string_view) noexcept,
          void (Logger::*Austritt)(std::string_view) noexcept>
class SpurFuer {
public:
    [[nodiscard]] SpurFuer(Logger* logger, const char* operation) noexcept
        : logger_(logger), operation_(operation) {
        schreibe(Eintritt);
    }

    void ende() const noexcept { schreibe(Austritt); }

private:
    void schreibe(void (Logger::*was)(std::string_view) noexcept) const noexcept {
        if (logger_ && logger_->isDebugEnabled())
            (logger_->*was)(operation_ ? operation_ : "");
    }

    Logger* logger_;
    const char* operation_;
};

using Spur = SpurFuer<&Logger::enter, &Logger::leave>;
using KonstruktorSpur = SpurFuer<&Logger::enterConstructor, &Logger::leaveConstructor>;
using DestruktorSpur = SpurFuer<&Logger::enterDestructor, &Logger::leaveDestructor>;

} // namespace orvo::orvoutil
