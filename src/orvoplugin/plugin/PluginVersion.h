#pragma once

#include <cstdint>

/// Type record of a plugin: the number of an interface that it implements. The only interface has the number 1.
/// The layout is fixed: list nodes of records are made in the plugin and freed in this library.
struct orvo_plugin_version_t {
    std::int32_t type;
};
