#pragma once

#include <orvoutil/Standardbibliothek.h>

/// Marks what `liborvoutil` exports; everything else stays inside the library.
#define ORVOUTIL_API __attribute__((visibility("default")))
