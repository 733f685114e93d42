#pragma once

#include <orvoplugin/Export.h>

/// \file
/// The library's own versions, for hosts that use no class of it. Each copies a fixed text and its NUL into the
/// caller's buffer, which has at least 16 bytes; nothing is checked, allocated or logged.

extern "C" {

ORVOPLUGIN_API void getOrvoSharedLibProductversion(char* puffer);
ORVOPLUGIN_API void getOrvoSharedLibFileversion(char* puffer);
}
