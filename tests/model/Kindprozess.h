#pragma once

#include <functional>
#include <optional>
#include <string>

/// Runs `ruf` in a child process, so that the caller survives whatever comes of it.
/// Returns: what `ruf` returned; when the process did not end well, the way it ended.
std::optional<std::string> imKindprozess(const std::function<std::optional<std::string>()>& ruf);
