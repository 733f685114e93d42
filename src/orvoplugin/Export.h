#pragma once

#include <orvoutil/Standardbibliothek.h>

// Unless a class says otherwise, the library is used by one thread at a time, and texts are Latin-1.

/// Marks what `liborvoplugin` exports; everything else stays inside the library.
#define ORVOPLUGIN_API __attribute__((visibility("default")))

/// Marks what a plugin library exports: its entry points, factories and hooks.
#define ORVO_PLUGIN_EXPORT __attribute__((visibility("default")))
