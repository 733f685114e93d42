#pragma once

#include <orvoplugin/Export.h>

/// \file
/// The library's own versions, for hosts that use no class of it. Each copies a text and its NUL into the caller's buffer,
/// which has at least 16 bytes.

extern "C" {

/// The product version, such as "17, 4, 6, 64001".
ORVOPLUGIN_API void getOrvoSharedLibProductversion(char* puffer);
/// The file version, such as "2013, 3, 15, 0".
ORVOPLUGIN_API void getOrvoSharedLibFileversion(char* puffer);
}
