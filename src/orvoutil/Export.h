#pragma once

#include <orvoutil/Standardbibliothek.h>

// Unless a class says otherwise, the library may be used by any number of threads, each object by one at a time.

/// Marks what `liborvoutil` exports; everything else stays inside the library.
#define ORVOUTIL_API __attribute__((visibility("default")))
