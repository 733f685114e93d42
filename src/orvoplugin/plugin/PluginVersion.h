#pragma once

#include <cstdint>

/// Type record of a plugin: which plugin interface the library implements. A plugin's `orvo_plugin_get_types`
/// appends one record per interface; the only interface there is has the number 1.
///
/// The record stays this one number: its list nodes are made in the plugin and freed in this library.
struct orvo_plugin_version_t {
    std::int32_t type;
};
