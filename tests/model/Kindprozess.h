#pragma once

#include <functional>
#include <optional>
#include <string>

/// Runs `ruf` in a child process, so that the caller survives a crash.
/// Returns: the result of `ruf`; if the process failed, how it ended.
std::optional<std::string> imKindprozess(const std::function<std::optional<std::string>()>& ruf);
